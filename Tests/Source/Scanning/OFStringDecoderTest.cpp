// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFStringDecoder.h"

#include "Prelude.h"
#include "Scanning/OFCaseConversion.h"
#include "Shared/WideInstructions.h"

namespace {

// Decodes in steps of so many bytes, each into room for its own units and one pair.
std::u16string decoded(const std::string& bytes, CFStringEncoding encoding, std::size_t step) {
    std::u16string text;
    auto state = OFInitialStateForEncoding(encoding);
    for (std::size_t place = 0; place < bytes.size();) {
        std::u16string room(step + 2, u'!');
        auto count = static_cast<NSUInteger>(std::min(step, bytes.size() - place));
        auto result =
            OFScanCharactersIntoBuffer(state, reinterpret_cast<const unsigned char*>(bytes.data()) + place,
                                       count, room.data(), static_cast<NSUInteger>(room.size()));
        EXPECT_EQ(result.bytesConsumed, count);
        text += room.substr(0, result.charactersProduced);
        place += result.bytesConsumed;
        state = result.state;
    }
    return text;
}

// The fuzz target StringDecoder compares UTF-8, with and without wide instructions, with a model.
TEST(StringDecoder, DecodesInStepsOfAnySize) {
    struct {
        CFStringEncoding encoding;
        std::string bytes;
        std::u16string text;
    } const cases[] = {
        {kCFStringEncodingUTF8,
         "plain text of more than thirty-two bytes, \xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80z",
         u"plain text of more than thirty-two bytes, \xE4\x4E2D\xD83D\xDE00z"},
        {kCFStringEncodingASCII, "a\x7F\x80\xFF", u"a\x7F\xFFFD\xFFFD"},
        {kCFStringEncodingISOLatin1, "0123456789abcdef\x85\xA0\xE9\xFF",
         u"0123456789abcdef\xFFFD\xA0\xE9\xFF"},
        {kCFStringEncodingWindowsLatin1, "0123456789abcde\x85\x80\x81\xE9\x9F",
         u"0123456789abcde\x2026\x20AC\xFFFD\xE9\x178"},
        {kCFStringEncodingMacRoman, "\x80\xCA\xDB\xFF", u"\xC4\xA0\x20AC\x2C7"},
        {kCFStringEncodingKOI8_R, "\xC1\xE1\x80", u"\x430\x410\x2500"},
        {kCFStringEncodingMacRomanLatin1, "a\xE9\xC4", u"a\xE9\xC4"},
        {kCFStringEncodingNextStepLatin, "\x80\xFD\xFE", u"\xA0\xFF\xFFFD"},
    };
    for (const auto& entry : cases)
        for (std::size_t step : {1, 2, 3, 5, 16, 100}) {
            SCOPED_TRACE(shown(entry.encoding, step));
            EXPECT_EQ(decoded(entry.bytes, entry.encoding, step), entry.text);
            PlainInstructionsScope plain;
            EXPECT_EQ(decoded(entry.bytes, entry.encoding, step), entry.text);
        }
}

TEST(StringDecoder, TellsHowFarItCame) {
    auto scan = [](OFStringDecoderState state, std::string bytes, NSUInteger capacity) {
        unichar units[8];
        auto result = OFScanCharactersIntoBuffer(state, reinterpret_cast<const unsigned char*>(bytes.data()),
                                                 static_cast<NSUInteger>(bytes.size()), units, capacity);
        return shown(result.bytesConsumed, result.charactersProduced,
                     OFDecoderContainsPartialCharacters(result.state) ? "and a part" : "whole");
    };
    auto start = OFInitialStateForEncoding(kCFStringEncodingUTF8);
    EXPECT_EQ(scan(start, "\xE2", 8), "1 0 and a part");
    EXPECT_EQ(scan(start, "\xF0\x9F\x98\x80z", 1), "4 0 whole");
    EXPECT_EQ(scan(start, "\xE2" + std::string("abc\xC3") + "d", 8), "6 3 whole")
        << "the bytes of a broken sequence go with it";
    EXPECT_EQ(scan(start, "abc", 2), "2 2 whole");
}

TEST(StringDecoder, KnowsItsEncodings) {
    EXPECT_TRUE(OFCanScanEncoding(kCFStringEncodingUTF8));
    EXPECT_FALSE(OFEncodingIsSimple(kCFStringEncodingUTF8));
    EXPECT_TRUE(OFEncodingIsSimple(kCFStringEncodingKOI8_R));
    const std::pair<CFStringEncoding, std::string> unsupported[] = {
        {0x0100, "256 (Unicode (UTF-16))"},
        {0x10000100, "268435712 (Unicode (UTF-16BE))"},
        {0xFFFFFFFF, "-1 ((null))"},
    };
    for (const auto& [encoding, text] : unsupported)
        EXPECT_EQ(
            reasonOf(NSInvalidArgumentException, [code = encoding] { OFInitialStateForEncoding(code); }),
            "Unsupported character encoding in fast string decoder: " + text);
}

TEST(CaseConversion, LowersAndHashesBlindToCase) {
    OFCaseConversionBuffer buffer;
    OFCaseConversionBufferInit(&buffer);
    for (std::u16string text : {u"plain", u"Word", u"\xC4pfel", u""}) {
        auto length = static_cast<NSUInteger>(text.size());
        auto lower = OFCreateStringByLowercasingCharacters(&buffer, text.data(), length);
        EXPECT_EQ(lower->toUTF16(), NSString::of(text)->lowercaseString()->toUTF16());
        std::u16string form = lower->toUTF16();
        EXPECT_EQ(OFCaseInsensitiveHash(text.data(), length), OFCaseInsensitiveHash(form.data(), length));
    }
    // ASCII, then others.
    for (auto [length, upper, lower] : {std::tuple(1000, u'A', u'a'), {2000, u'\xC4', u'\xE4'}}) {
        std::u16string text(static_cast<std::size_t>(length), upper);
        EXPECT_EQ(OFCreateStringByLowercasingCharacters(&buffer, text.data(), NSUInteger(length))->toUTF16(),
                  std::u16string(text.size(), lower));
        EXPECT_EQ(buffer.bufferSize, length);
    }
    OFCaseConversionBufferDestroy(&buffer);
    EXPECT_EQ(buffer.buffer, nullptr);
    EXPECT_EQ(OFCaseInsensitiveHash(u"", 0), 0u);
    EXPECT_EQ(OFCaseInsensitiveHash(u"aB", 2), ((0x610000u >> 7) | 0x620000u));
}

}  // namespace
