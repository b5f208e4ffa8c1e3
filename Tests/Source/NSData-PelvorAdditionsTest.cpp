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

namespace {

using Additions = NSData_PelvorAdditions;
using Bytes = std::vector<std::uint8_t>;

NSData* dataOf(std::string_view text) {
    return NSData::dataWithBytes_length(text.data(), static_cast<NSUInteger>(text.size()));
}

std::string textOf(NSData* data) {
    return data ? std::string(static_cast<const char*>(data->bytes()), data->length()) : "null";
}

Bytes scrambledBytes(std::size_t size) {
    Bytes bytes(size);
    std::uint32_t state = 7;
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

TEST(Base64, BreaksLinesAfterWholeGroups) {
    expectAll({"ABC 0 -> QUJD", "AB 0 -> QUI=", "A 0 -> QQ==", "ABC 4 -> QUJD\n", " 4 -> ",
               "ABCDEFG 8 -> QUJDREVG\nRw==", "ABCDEF 5 -> QUJDREVG\n", "ABCD 1 -> QUJD\nRA==\n",
               "ABC 4294967295 -> QUJD"},
              [](const std::string& row) {
                  std::size_t blank = row.find(' ');
                  auto length = static_cast<NSUInteger>(std::stoul(row.substr(blank)));
                  return textOf(base64DataWithLineLength(dataOf(row.substr(0, blank)), length));
              });
    EXPECT_EQ(base64String(dataOf("ABCD"))->toUTF8(), "QUJDRA==");
}

TEST(Base64, IsReadPastEverythingForeign) {
    registerLibrary(baseLibrary);
    id read = send<id>(NSMutableData::classObject(), "dataWithBase64String:"_sel, u"QUJD"_ns);
    cast<NSMutableData>(read)->appendBytes_length("D", 1);
    EXPECT_EQ(textOf(cast<NSData>(read)), "ABCD");
    expectAll(
        {"QUJD -> ABC", "QU\nJ D -> ABC", "QQ==garbage -> A", "QUI=QUJD -> AB", " -> ", "QUJDé -> ",
         "===A -> ", "QQ=AQUJD -> A", "Q=QQ -> ", "QUJD=QUJ -> ABC", "-_. -> "},
        [](const std::string& text) { return textOf(Additions::dataWithBase64String(inPieces(text))); });
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
    expectAll({" 0XABC -> 0abc", "12 G -> (null)", "G1 -> (null)", "12  -> (null)", " \t\r\n\v\f -> ",
               "0x -> ", "\u0130A -> 0a", "f -> 0f", "xff -> (null)", "0x0x12 -> (null)", " -> "},
              [](const std::string& text) {
                  NSData* data = Additions::dataWithHexString(inPieces(text));
                  return data ? unadornedLowercaseHexString(data) : nullptr;
              });
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
