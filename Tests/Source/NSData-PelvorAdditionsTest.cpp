// SPDX-License-Identifier: Apache-2.0
#include "NSData-PelvorAdditions.h"

#include <optional>

#include "Foundation/NSMutableData.h"
#include "Prelude.h"
#include "Private/HexText.h"
#include "Shared/Base64.h"
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

// The fuzz target DataEncoding compares texts and bytes of all kinds with readers that go unit by unit.

TEST(Base64, IsWrittenInLinesAndReadPastEverythingForeign) {
    EXPECT_EQ(textOf(base64DataWithLineLength(dataOf("ABCDEFG"), 5)), "QUJDREVG\nRw==");
    EXPECT_EQ(textOf(base64DataWithLineLength(dataOf("ABC"), 0xFFFFFFFF)), "QUJD");
    EXPECT_EQ(base64String(dataOf("ABCD"))->toUTF8(), "QUJDRA==");
    NSData* read =
        Additions::initWithBase64String(inPieces(u"QU\nJ D"), NSMutableData::classObject()).autorelease();
    cast<NSMutableData>(read)->appendBytes_length("D", 1);
    EXPECT_EQ(textOf(read), "ABCD");
    EXPECT_EQ(reasonOf(Base64Error, [] { Additions::dataWithBase64String(u"QUI"_ns); }),
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
    EXPECT_EQ(unadornedLowercaseHexString(Additions::dataWithHexString(inPieces(u" \t0XABC")))->toUTF8(),
              "0abc");
    for (std::u16string_view text : {u"12 G", u"12  ", u"xff"})
        EXPECT_EQ(Additions::dataWithHexString(inPieces(text)), nullptr) << NSString::of(text);
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

// The fuzz target ByteSearch compares bytes of all kinds with the plain search.
TEST(ByteSearch, FindsTheFirstPlaceInsideTheRange) {
    NSData* data = dataOf("abcabcabd");
    EXPECT_EQ(rangeOfData(data, dataOf("abd")), NSMakeRange(6, 3));
    EXPECT_EQ(rangeOfBytes_length_range(data, "abc", 3, {1, 5}), NSMakeRange(3, 3));
    EXPECT_EQ(rangeOfBytes_length(data, "a", 0), NSMakeRange(NSNotFound, 0));
    EXPECT_EQ(rangeOfData(data, nullptr), NSMakeRange(NSNotFound, 0));
}

}  // namespace
