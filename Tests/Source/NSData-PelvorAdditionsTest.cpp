// SPDX-License-Identifier: Apache-2.0
#include "NSData-PelvorAdditions.h"

#include <optional>

#include "BaseLibrary.h"
#include "Foundation/NSMutableData.h"
#include "Prelude.h"
#include "Private/HexText.h"
#include "Shared/Base64.h"
#include "Shared/SequenceSearch.h"
#include "Shared/WideInstructions.h"
#include "Source/TextInPieces.h"

namespace pelvor::testing {
namespace {

using Additions = NSData_PelvorAdditions;
using Bytes = std::vector<std::uint8_t>;

NSData* dataOf(std::string_view text) {
    return NSData::dataWithBytes_length(text.data(), static_cast<NSUInteger>(text.size()));
}

std::string textOf(NSData* data) {
    return data ? std::string(static_cast<const char*>(data->bytes()), data->length()) : "none";
}

Bytes scrambledBytes(std::size_t size) {
    Bytes bytes(size);
    std::uint32_t state = 7;
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

TEST(Base64, BreaksLinesAfterWholeGroups) {
    auto lines = [](const char* bytes, NSUInteger length) {
        return textOf(base64DataWithLineLength(dataOf(bytes), length));
    };
    EXPECT_EQ(lines("ABC", 0), "QUJD");
    EXPECT_EQ(lines("AB", 0), "QUI=");
    EXPECT_EQ(lines("A", 0), "QQ==");
    EXPECT_EQ(lines("ABC", 4), "QUJD\n");
    EXPECT_EQ(lines("", 4), "");
    EXPECT_EQ(lines("ABCDEFG", 8), "QUJDREVG\nRw==");
    EXPECT_EQ(lines("ABCDEF", 5), "QUJDREVG\n");
    EXPECT_EQ(lines("ABCD", 1), "QUJD\nRA==\n");
    EXPECT_EQ(lines("ABC", 0xFFFFFFFF), "QUJD");
    EXPECT_EQ(base64String(dataOf("ABCD"))->toUTF8(), "QUJDRA==");
}

TEST(Base64, IsReadPastEverythingForeign) {
    registerLibrary(baseLibrary);
    id read = send<id>(NSMutableData::classObject(), "dataWithBase64String:"_sel, u"QUJD"_ns);
    cast<NSMutableData>(read)->appendBytes_length("D", 1);
    EXPECT_EQ(textOf(cast<NSData>(read)), "ABCD");
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"QUJD", "ABC"}, {u"QU\nJ D", "ABC"},  {u"QQ==garbage", "A"}, {u"QUI=QUJD", "AB"},
        {u"", ""},        {u"QUJDé", ""},       {u"===A", ""},         {u"QQ=AQUJD", "A"},
        {u"Q=QQ", ""},    {u"QUJD=QUJ", "ABC"}, {u"-_.", ""}};
    for (auto [text, bytes] : rows) EXPECT_EQ(textOf(Additions::dataWithBase64String(inPieces(text))), bytes);
    for (NSString* text : {u"QUI"_ns, u"QUJD="_ns, u"Q"_ns, u"QUJDQU\n"_ns})
        EXPECT_EQ(reasonOf(Base64Error, [&] { Additions::dataWithBase64String(text); }),
                  "Premature end of Base64 string");
}

// The bytes that the text stands for, or that it is not ASCII.
std::optional<Bytes> readBase64(std::u16string_view text) {
    Bytes bytes(Base64Reader::roomFor(text.size()));
    Base64Reader reader(bytes.data());
    if (!reader.read(text)) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(reader.end() - bytes.data()));
    return bytes;
}

TEST(Base64, IsTheSameWithWideAndPlainInstructions) {
    const Bytes all = scrambledBytes(300);
    for (std::size_t size = 0; size <= all.size(); ++size) {
        Bytes bytes(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size));
        Bytes text(base64LengthOf(size)), plainText(text);
        std::u16string units(text.size(), u' ');
        ASSERT_EQ(writeBase64(bytes, text.data()), text.data() + text.size());
        writeBase64(bytes, units.data());
        ASSERT_TRUE(std::ranges::equal(text, units)) << size;
        if (size % 7 == 3) units.insert(size / 2, 1, u'\n');
        ASSERT_EQ(readBase64(units), bytes) << size;
        PlainInstructionsScope plain;
        writeBase64(bytes, plainText.data());
        ASSERT_EQ(text, plainText) << size;
        ASSERT_EQ(readBase64(units), bytes) << size;
    }
}

TEST(Base64, NoticesEveryForeignUnitInAWideBlock) {
    for (unsigned unit = 0; unit < 0x10000; unit += unit < 256 ? 1 : 255) {
        std::u16string text(96, u'Q');
        text[40] = static_cast<char16_t>(unit);
        auto wide = readBase64(text);
        ASSERT_EQ(wide.has_value(), unit < 128) << unit;
        PlainInstructionsScope plain;
        ASSERT_EQ(wide, readBase64(text)) << unit;
    }
}

TEST(HexText, IsReadAndWritten) {
    EXPECT_EQ(lowercaseHexString(dataOf("\x0A\xFF"))->toUTF8(), "0x0aff");
    EXPECT_EQ(unadornedLowercaseHexString(dataOf("\x0A\xFF"))->toUTF8(), "0aff");
    EXPECT_EQ(lowercaseHexString(NSData::data())->toUTF8(), "0x");
    const std::pair<const char16_t*, const char*> rows[] = {{u" 0XABC", "\x0A\xBC"},
                                                            {u"12 G", "none"},
                                                            {u"G1", "none"},
                                                            {u"12 ", "none"},
                                                            {u" \t\r\n\v\f", ""},
                                                            {u"0x", ""},
                                                            {u"\u0130A", "\x0A"},
                                                            {u"f", "\x0F"},
                                                            {u"xff", "none"},
                                                            {u"0x0x12", "none"},
                                                            {u"", ""}};
    for (auto [text, bytes] : rows)
        EXPECT_EQ(textOf(Additions::dataWithHexString(inPieces(text))), bytes) << NSString::of(text);
}

TEST(HexText, IsTheSameInBlocksAndByteByByte) {
    const Bytes all = scrambledBytes(100);
    for (std::size_t size = 0; size <= all.size(); ++size) {
        std::u16string text(2 * size, u' '), single(text);
        writeHex({all.data(), size}, text.data());
        for (std::size_t i = 0; i < size; ++i) writeHex({&all[i], 1}, single.data() + 2 * i);
        ASSERT_EQ(text, single);
        Bytes read(size);
        ASSERT_TRUE(readHex(text, read.data()));
        ASSERT_TRUE(std::equal(read.begin(), read.end(), all.begin()));
    }
    for (unsigned unit = 0; unit < 0x200; ++unit) {
        std::u16string text(64, u'a');
        text[21] = static_cast<char16_t>(unit);
        Bytes read(32, 0xAA);
        const unsigned value = valueOfHexDigit(text[21]);
        ASSERT_EQ(readHex(text, read.data()), value < 16) << unit;
        if (value < 16) {
            ASSERT_EQ(read[10], 0xA0 | value) << unit;
        }
    }
}

TEST(ByteSearch, FindsTheFirstPlaceInsideTheRange) {
    NSData* data = dataOf("abcabcabd");
    auto find = [=](const char* bytes, NSRange range) {
        return rangeOfBytes_length_range(data, bytes, static_cast<NSUInteger>(std::strlen(bytes)), range);
    };
    EXPECT_EQ(rangeOfData(data, dataOf("abd")), NSMakeRange(6, 3));
    EXPECT_EQ(find("abc", {1, 5}), NSMakeRange(3, 3));
    EXPECT_EQ(find("abc", {4, 5}), NSMakeRange(NSNotFound, 0));
    EXPECT_EQ(rangeOfBytes_length(data, "a", 0), NSMakeRange(NSNotFound, 0));
    EXPECT_EQ(rangeOfData(data, nullptr), NSMakeRange(NSNotFound, 0));
    for (NSRange outside : {NSRange{9, 1}, NSRange{4, 0xFFFFFFFE}})
        EXPECT_THROW(find("a", outside), NSException);
    registerLibrary(baseLibrary);
    EXPECT_EQ(send<NSRange>(data, "rangeOfData:"_sel, dataOf("c")), NSMakeRange(2, 1));
}

TEST(ByteSearch, AgreesWithThePlainSearchOnRepetitiveBytes) {
    Bytes bytes = scrambledBytes(20000);
    for (auto& byte : bytes) byte = byte < 250;
    for (std::size_t length : {1u, 2u, 3u, 31u, 40u, 200u, 5000u})
        for (std::size_t from : {0u, 1u, 9000u, 14999u}) {
            std::span<const std::uint8_t> pattern(bytes.data() + from, length);
            auto expected = std::search(bytes.begin(), bytes.end(), pattern.begin(), pattern.end());
            auto place = static_cast<std::size_t>(expected - bytes.begin());
            ASSERT_EQ(findSequence<std::uint8_t>(bytes, pattern), place);
        }
    Bytes absent(300, 1);
    absent[150] = 2;
    EXPECT_EQ(findSequence<std::uint8_t>(bytes, absent), kNoPlace);
}

}  // namespace
}  // namespace pelvor::testing
