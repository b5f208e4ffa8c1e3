// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

#include "Foundation/NSStringEncoding.h"
#include "Prelude.h"

namespace {

using namespace std::string_literals;

TextFileContent decoded(std::string_view bytes, std::string_view encodingName = {}) {
    return decodeTextFile(TextFileSource(bytes), encodingName);
}

struct GuessCase {
    const char* situation;
    std::string bytes;
    std::u16string text;
    const char* encodingName;
    bool hasMark = false;
};

const GuessCase kGuessCases[] = {
    {"Empty", "", u"", "UTF-8"},
    {"OneByte", "A", u"A", "UTF-8"},
    {"OneByteOfLatin", "\xE9", u"é", "windows-1252"},
    {"MarkAlone", "\xEF\xBB\xBF", u"", "UTF-8", true},
    {"MarkedUTF8WithBadRest", "\xEF\xBB\277a\xFF", u"ï»¿aÿ", "windows-1252"},
    {"Windows", "\x93quoted\x94 \x80", u"“quoted” €", "windows-1252"},
    {"Layout", "a\tb\r\nc\f\x1B[0m", u"a\tb\r\nc\f\x1B[0m", "UTF-8"},
};

TEST(TextFileDecoding, ReadsInTheEncodingThatTheBytesShowAndInTheSameWayAgainWhenThatIsNamed) {
    for (const GuessCase& row : kGuessCases)
        for (const char* name : {"", row.encodingName}) {
            SCOPED_TRACE(std::string(row.situation) + name);
            const TextFileContent content = decoded(row.bytes, name);
            EXPECT_EQ(content.fault, TextFileFault::none);
            EXPECT_EQ(content.text.view(), row.text);
            EXPECT_EQ(shown(content.encodingName, content.hasByteOrderMark),
                      shown(row.encodingName, row.hasMark));
        }
}

TEST(TextFileDecoding, RefusesWhatLooksLikeAnythingButText) {
    for (const std::string& bytes :
         {"\177ELF\x02\x01\x01\0\0\0\0\0"s, "\0"s, "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s,
          "text\x01with\x02many\3controls"s, "half a pair \xD8\0"s}) {
        const TextFileContent content = decoded(bytes);
        EXPECT_EQ(content.fault, TextFileFault::notText) << ::testing::PrintToString(bytes);
        EXPECT_EQ(content.text.view(), u"");
    }
}

TEST(TextFileDecoding, TellsAnUnknownEncodingFromBytesThatDisagreeWithTheirs) {
    EXPECT_EQ(decoded("text", "klingon").fault, TextFileFault::unknownEncoding);
    EXPECT_EQ(decoded("caf\xE9", "UTF-8").fault, TextFileFault::undecodable);
    EXPECT_EQ(decoded("café", "US-ASCII").fault, TextFileFault::undecodable);
    EXPECT_EQ(decoded("abc", "UTF-16LE").fault, TextFileFault::undecodable);
}

TEST(TextFileDecoding, FindsTheMarkOfTheNamedEncodingOnly) {
    EXPECT_TRUE(decoded("\xEF\xBB\277a", "utf-8").hasByteOrderMark);
    EXPECT_TRUE(decoded("\xFE\xFF\0a"s, "UTF-16").hasByteOrderMark);
    const TextFileContent latin = decoded("\xFF\376a", "iso-8859-1");
    EXPECT_FALSE(latin.hasByteOrderMark);
    EXPECT_EQ(latin.text.view(), u"ÿþa");
    EXPECT_EQ(latin.contradictingMark, "UTF-16LE");
    EXPECT_EQ(decoded("\xFE\xFF\0a"s, "UTF-16").encodingName, "UTF-16BE");
    EXPECT_EQ(decoded("\xEF\xBB\277a", "UTF-8").contradictingMark, "");
    EXPECT_EQ(decoded("a\0\x01"s, "iso-8859-1").text.view(), u"a\0\x01"s) << "not like text";
}

TEST(TextFileDecoding, SaysHowSureAGuessIsAndWhetherItLosesBytes) {
    EXPECT_FALSE(decoded("caf\xC3\xA9").confidence);
    const TextFileContent word = decoded("caf\xE9");
    EXPECT_LT(word.confidence.value(), 50) << "one character is not much";
    EXPECT_FALSE(word.otherNames.empty() || word.isLossy);
    EXPECT_FALSE(decoded("\x1B$B$3$l\x1B(B").isLossy);
    const std::string redundant = "\x1B$B$3\x1B$B$l\x1B(B";
    EXPECT_TRUE(decoded(redundant).isLossy) << "the second escape would not be written";
    EXPECT_FALSE(decoded(redundant, "ISO-2022-JP").isLossy) << "no guess";
}

TEST(TextFileDecoding, ReadsFilesThatTheSystemMakesUpInBlocks) {
    int blocks = 0;
    const TextFileContent content =
        decodeTextFile(TextFileSource("/proc/self/maps"), "", [&](auto, auto) { ++blocks; });
    EXPECT_GT(content.byteCount, 4000u) << "although the file says that it is empty";
    EXPECT_LT(blocks, 100);
}

// Characters of every length, so that some are cut wherever a block ends.
TEST(TextFileDecoding, TakesANamedEncodingAtItsWordAndReadsLongTextsInBlocks) {
    const struct {
        const char* name;
        NSStringEncoding encoding;
        std::u16string_view line = u"aé漢🐈\n";
    } cases[] = {
        {"UTF-8", NSUTF8StringEncoding},
        {"UTF-16LE", NSUTF16LittleEndianStringEncoding},
        {"UTF-16BE", NSUTF16BigEndianStringEncoding},
        {"UTF-32LE", NSUTF32LittleEndianStringEncoding},
        {"UTF-32BE", NSUTF32BigEndianStringEncoding},
        {"windows-1252", NSWindowsCP1252StringEncoding, u"aé€ñ”\n"},
        {"Shift_JIS", NSShiftJISStringEncoding, u"a日本語\n"},
        {"windows-1251", NSWindowsCP1251StringEncoding, u"Привет"},
    };
    for (const auto& [name, encoding, line] : cases)
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::u16string whole(shift, u'x');
            while (whole.size() < 300'000) whole += line;
            for (std::u16string_view text : {std::u16string_view(whole), line}) {
                const TextFileContent content = decoded(encodeUnits(text, encoding).value(), name);
                EXPECT_EQ(content.fault, TextFileFault::none) << name;
                EXPECT_TRUE(content.text.view() == text) << name << shift;
                EXPECT_EQ(content.encodingName, name);
            }
        }
    const TextFileContent content = decoded(std::string(700'000, 'a') + "\xE9");
    EXPECT_EQ(content.encodingName, "windows-1252");
    EXPECT_TRUE(content.text.view() == std::u16string(700'000, 'a') + u"é");
}

}  // namespace
