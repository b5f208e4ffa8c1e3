// SPDX-License-Identifier: Apache-2.0
// Tests of text encodings and of strings as bytes, data and files.
#include "Foundation/NSStringEncoding.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include "Platform/Foundation/OwnCollections.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Case {
    NSStringEncoding encoding;
    std::u16string text;
    std::string bytes;
};

TEST(NSStringEncodingTest, TextInItsBytesAndBack) {
    const Case cases[] = {
        {NSASCIIStringEncoding, u"aZ~", "aZ~"},
        {NSNEXTSTEPStringEncoding, u"é—ﬁł", "\xDD\xD0\xAE\xF8"},
        {NSJapaneseEUCStringEncoding, u"日本", "\xC6\xFC\xCB\xDC"},
        {NSUTF8StringEncoding, u"aé€😀", "aé€😀"},
        {NSISOLatin1StringEncoding, u"é\u0080ÿ", "\xE9\x80\xFF"},
        {NSNonLossyASCIIStringEncoding, u"a\\é€😀", "a\\\\\\351\\u20ac\\ud83d\\ude00"},
        {NSShiftJISStringEncoding, u"日本", "\x93\xFA\x96\x7B"},
        {NSISOLatin2StringEncoding, u"łő", "\xB3\xF5"},
        {NSUnicodeStringEncoding, u"a€", "\xFF\xFE"s + "a\0\xAC\x20"s},
        {NSWindowsCP1251StringEncoding, u"Жж", "\xC6\xE6"},
        {NSWindowsCP1252StringEncoding, u"€é“", "\x80\xE9\x93"},
        {NSWindowsCP1253StringEncoding, u"αω", "\xE1\xF9"},
        {NSWindowsCP1254StringEncoding, u"ğİ", "\xF0\xDD"},
        {NSWindowsCP1250StringEncoding, u"łő", "\xB3\xF5"},
        {NSISO2022JPStringEncoding, u"a日b", "a\x1B$BF|\x1B(Bb"},
        {NSMacOSRomanStringEncoding, u"éΩﬁ", "\x8E\xBD\xDE"},
        {0x80000A02, u"Аж\u2500", "\xE1\xD6\x80"},
        {0x80000A04, u"é†Ω\uF8FF", "\xE9\x80\x8C\xBC"},
        {NSUTF16BigEndianStringEncoding, u"a😀", "\0a\xD8\x3D\xDE\0"s},
        {NSUTF16LittleEndianStringEncoding, u"\uFEFFa", "\xFF\xFE"s + "a\0"s},
        {NSUTF32StringEncoding, u"😀", "\xFF\xFE\0\0\0\xF6\x01\0"s},
        {NSUTF32BigEndianStringEncoding, u"😀", "\0\x01\xF6\0"s},
        {NSUTF32LittleEndianStringEncoding, u"a", "a\0\0\0"s},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(encodeUnits(c.text, c.encoding), c.bytes) << nameOfEncoding(c.encoding);
        EXPECT_EQ(decodeBytes(c.bytes, c.encoding), c.text) << nameOfEncoding(c.encoding);
    }
}

TEST(NSStringEncodingTest, BytesThatAreNotTextAreRefused) {
    const std::pair<NSStringEncoding, std::string> cases[] = {{NSASCIIStringEncoding, "a\x80"},
                                                              {NSUTF8StringEncoding, "\xC3"},
                                                              {NSNEXTSTEPStringEncoding, "\xFE"},
                                                              {NSUnicodeStringEncoding, "abc"},
                                                              {NSUTF32BigEndianStringEncoding, "\0\x11\0\0"s},
                                                              {NSUTF32BigEndianStringEncoding, "\0\0\xD8\0"s},
                                                              {NSShiftJISStringEncoding, "\x93"},
                                                              {NSNonLossyASCIIStringEncoding, "\\u12"},
                                                              {NSNonLossyASCIIStringEncoding, "\\9"},
                                                              {NSSymbolStringEncoding, "a"},
                                                              {77777, "a"}};
    for (auto& [encoding, bytes] : cases) EXPECT_EQ(decodeBytes(bytes, encoding), std::nullopt) << encoding;
    EXPECT_EQ(decodeBytes("\xFE\xFF\0a"s, NSUnicodeStringEncoding), u"a");
    EXPECT_EQ(decodeBytes("a\0"s, NSUnicodeStringEncoding), u"a");
}

TEST(NSStringEncodingTest, TextThatDoesNotFitIsRefusedOrReplacedBySomethingAlike) {
    const Case cases[] = {{NSASCIIStringEncoding, u"Crème brûlée", "Creme brulee"},
                          {NSASCIIStringEncoding, u"“it’s” – 5€…", "\"it's\" - 5EUR..."},
                          {NSASCIIStringEncoding, u"Straße Øre ﬁx e\u0301", "Strasse Ore fix e"},
                          {NSASCIIStringEncoding, u"日😀\u00A0½", "?? 1/2"},
                          {NSISOLatin1StringEncoding, u"é“ł日", "\xE9\"l?"},
                          {NSWindowsCP1252StringEncoding, u"“ő日", "\x93o?"},
                          {NSWindowsCP1252StringEncoding, u"a\u200Db\u00AD", "ab\xAD"},
                          {NSISO2022JPStringEncoding, u"日é", "\x1B$BF|\x1B(Be"},
                          {NSUTF8StringEncoding, u"a\xD800z", "a\xEF\xBF\xBDz"},
                          {NSUTF32BigEndianStringEncoding, u"\xDC00", "\0\0\xFF\xFD"s}};
    for (const Case& c : cases) {
        EXPECT_EQ(encodeUnits(c.text, c.encoding), std::nullopt) << c.bytes;
        EXPECT_EQ(encodeUnits(c.text, c.encoding, EncodingLoss::allowed), c.bytes);
    }
    EXPECT_EQ(encodeUnits(u"a", 77777, EncodingLoss::allowed), std::nullopt);
}

TEST(NSStringEncodingTest, EncodingsWithoutConstantsAreFoundByName) {
    const struct {
        const char* name;
        std::u16string text;
        std::string bytes;
    } rows[] = {
        {"Big5", u"中文", "\xA4\xA4\xA4\xE5"},
        {"GB 18030", u"中ü😀", "\xD6\xD0\xA8\xB9\x94\x39\xFC\x36"},
        {"EUC-KR", u"한국", "\xC7\xD1\xB1\xB9"},
        {"ISO-8859-5", u"Жж", "\xB6\xD6"},
        {"iso8859-15", u"€", "\xA4"},
        {"windows-1255", u"שלום", "\xF9\xEC\xE5\xED"},
        {"cp1256", u"سلام", "\xD3\xE1\xC7\xE3"},
        {"Windows 1257", u"ž", "\xFE"},
        {"x-cp1258", u"ă", "\xE3"},
        {"KOI8-U", u"ї", "\xA7"},
        {"x-mac-ukrainian", u"Ж", "\x86"},
        {"TIS-620", u"ก", "\xA1"},
        {"IBM866", u"Ж", "\x86"},
        {"ibm-1140", u"A€", "\xC1\x9F"},
        {"UTF-7", u"é+", "+AOkAKw-"},
    };
    for (const auto& row : rows) {
        const NSStringEncoding encoding = encodingForName(row.name);
        EXPECT_EQ(encodeUnits(row.text, encoding), row.bytes) << row.name;
        EXPECT_EQ(decodeBytes(row.bytes, encoding), row.text) << row.name;
    }
}

TEST(NSStringEncodingTest, EveryEncodingHasANumberAndNamesOfItsOwn) {
    std::set<NSStringEncoding> numbers;
    for (NSStringEncoding encoding : availableEncodings()) {
        const std::vector<std::string_view> names = namesOfEncoding(encoding);
        ASSERT_FALSE(names.empty()) << encoding;
        EXPECT_TRUE(numbers.insert(encoding).second) << names[0];
        EXPECT_EQ(names[0], ianaNameOfEncoding(encoding));
        EXPECT_NE(nameOfEncoding(encoding), "") << names[0];
        for (std::string_view name : names) EXPECT_EQ(encodingForName(name), encoding) << name;
    }
    EXPECT_GT(numbers.size(), 200u);
}

TEST(NSStringEncodingTest, TextInPiecesIsTheTextInOnePiece) {
    for (NSStringEncoding encoding : availableEncodings()) {
        const std::string_view name = ianaNameOfEncoding(encoding);
        const auto bytes = encodeUnits(u"a\\b é€ Жλשس ก 日本 😀 한\u0301.", encoding, EncodingLoss::allowed);
        ASSERT_TRUE(bytes) << name;
        const auto whole = decodeBytes(*bytes, encoding);
        ASSERT_TRUE(whole) << name;
        TextDecoder decoder(encoding);
        std::u16string units;
        for (char byte : *bytes) EXPECT_TRUE(decoder.decode({&byte, 1}, units)) << name;
        EXPECT_TRUE(decoder.finish(units)) << name;
        EXPECT_EQ(units, *whole) << name;
    }
    for (auto [encoding, bytes] :
         {std::pair(NSUTF8StringEncoding, "a\xE2\x82"), {NSShiftJISStringEncoding, "a\x93"}}) {
        TextDecoder decoder(encoding);
        std::u16string units;
        EXPECT_TRUE(decoder.decode(bytes, units)) << encoding;
        EXPECT_FALSE(decoder.finish(units)) << encoding;
        EXPECT_EQ(units, u"a") << encoding;
    }
    std::u16string units;
    EXPECT_FALSE(TextDecoder(NSUTF8StringEncoding).decode("\xC3(", units));
    EXPECT_FALSE(TextDecoder(77777).decode("a", units));
}

TEST(NSStringEncodingTest, NamesOfEncodings) {
    const std::pair<const char*, NSStringEncoding> rows[] = {{"UTF8", NSUTF8StringEncoding},
                                                             {"latin1", NSISOLatin1StringEncoding},
                                                             {"ASCII", NSASCIIStringEncoding},
                                                             {"cp1252", NSWindowsCP1252StringEncoding},
                                                             {"cp65001", NSUTF8StringEncoding},
                                                             {"cp28592", NSISOLatin2StringEncoding},
                                                             {"x-sjis", NSShiftJISStringEncoding},
                                                             {"ISO_8859-1:1987", NSISOLatin1StringEncoding},
                                                             {"no-such-name", 0},
                                                             {"", 0},
                                                             {"--", 0},
                                                             {{"cp99999"}, 0}};
    for (auto [name, encoding] : rows) EXPECT_EQ(encodingForName(name), encoding) << name;
    EXPECT_EQ(encodingForName("utf-8\0"sv), 0u);
    EXPECT_EQ(shown(NSString::localizedNameOfStringEncoding(NSUTF8StringEncoding)), "Unicode (UTF-8)");
    EXPECT_EQ(NSString::localizedNameOfStringEncoding(77777)->length(), 0u);
}

TEST(NSStringEncodingTest, StringsAsDataAndCText) {
    NSData* data = u"é"_ns->dataUsingEncoding(NSISOLatin1StringEncoding);
    ASSERT_EQ(data->length(), 1u);
    EXPECT_EQ(shown(NSString::initWithData_encoding(data, NSISOLatin1StringEncoding),
                    NSMutableString::initWithData_encoding(data, NSISOLatin1StringEncoding),
                    NSString::stringWithCString_encoding("\xE9", NSISOLatin1StringEncoding)),
              "é é é");
    EXPECT_EQ(NSString::initWithData_encoding(data, NSUTF8StringEncoding), nullptr);
    EXPECT_EQ(u"é"_ns->dataUsingEncoding(NSASCIIStringEncoding), nullptr);
    EXPECT_EQ(u"é"_ns->dataUsingEncoding_allowLossyConversion(NSASCIIStringEncoding, true)->length(), 1u);
    EXPECT_STREQ(u"é"_ns->cStringUsingEncoding(NSISOLatin1StringEncoding), "\xE9");
    EXPECT_EQ(u"é"_ns->cStringUsingEncoding(NSASCIIStringEncoding), nullptr);
    EXPECT_EQ(u"aé"_ns->lengthOfBytesUsingEncoding(NSUTF8StringEncoding), 3u);
    EXPECT_TRUE(u"é"_ns->canBeConvertedToEncoding(NSMacOSRomanStringEncoding));
    EXPECT_EQ(u"abc"_ns->smallestEncoding(), NSASCIIStringEncoding);
    EXPECT_EQ(u"abé"_ns->smallestEncoding(), NSUnicodeStringEncoding);
}

TEST(NSStringEncodingTest, LongTextsGoThroughUTF8Unharmed) {
    for (std::size_t length = 0; length < 140; ++length) {
        std::u16string text(length, u'a');
        for (std::size_t odd : {length, length / 2, std::size_t{0}}) {
            if (odd < length) text[odd] = u'é';
            NSString* string = NSString::of(text);
            EXPECT_EQ(NSString::stringWithUTF8String(string->UTF8String())->toUTF16(), text);
            EXPECT_EQ(NSString::ofUTF8(string->toUTF8())->toUTF16(), text);
        }
    }
}

TEST(NSStringEncodingTest, FilesAreWrittenAndReadByEncodingOrMark) {
    char name[] = "/tmp/EncodingTestXXXXXX";
    close(mkstemp(name));
    NSString* path = NSString::ofUTF8(name);
    EXPECT_TRUE(u"é€"_ns->writeToFile_atomically_encoding(path, true, NSUnicodeStringEncoding));
    EXPECT_EQ(NSString::stringWithContentsOfFile_encoding(path, NSUnicodeStringEncoding)->toUTF8(), "é€");
    EXPECT_EQ(NSString::stringWithContentsOfFile(path)->toUTF8(), "é€");
    EXPECT_EQ(NSString::stringWithContentsOfFile_encoding(path, NSUTF8StringEncoding), nullptr);
    EXPECT_FALSE(u"€"_ns->writeToFile_atomically_encoding(path, false, NSISOLatin1StringEncoding));

    for (const char* bytes : {"é", "\xE9", "\xEF\xBB\xBFé"}) {
        std::ofstream(name) << bytes;
        EXPECT_EQ(NSString::stringWithContentsOfFile(path)->toUTF8(), "é");
    }
    EXPECT_EQ(NSString::stringWithContentsOfFile_encoding(path, NSUTF8StringEncoding)->toUTF8(), "é");
    std::filesystem::remove(name);
    EXPECT_EQ(NSString::stringWithContentsOfFile(path), nullptr);
    EXPECT_FALSE(
        u"x"_ns->writeToFile_atomically_encoding(u"/no/such/folder/x"_ns, true, NSUTF8StringEncoding));
}

}  // namespace
