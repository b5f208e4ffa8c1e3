// SPDX-License-Identifier: Apache-2.0
// Tests of text encodings and of strings as bytes, data and files.
#include "Foundation/NSStringEncoding.h"

#include <set>

#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Case {
    const char* name;
    std::u16string text;
    std::string bytes;
    NSStringEncoding number = 0;  // of those that have a constant
};

TEST(NSStringEncodingTest, TextInItsBytesAndBack) {
    const Case cases[] = {
        {"ASCII", u"aZ~", "aZ~", NSASCIIStringEncoding},
        {"x-nextstep", u"é—ﬁł", "\xDD\xD0\xAE\xF8", NSNEXTSTEPStringEncoding},
        {"euc-jp", u"日本", "\xC6\xFC\xCB\xDC", NSJapaneseEUCStringEncoding},
        {"UTF8", u"aé€😀", "aé€😀", NSUTF8StringEncoding},
        {"latin1", u"é\u0080ÿ", "\xE9\x80\xFF", NSISOLatin1StringEncoding},
        {"x-nonlossy-ascii", u"a\\é€😀", "a\\\\\\351\\u20ac\\ud83d\\ude00", NSNonLossyASCIIStringEncoding},
        {"x-sjis", u"日本", "\x93\xFA\x96\x7B", NSShiftJISStringEncoding},
        {"cp28592", u"łő", "\xB3\xF5", NSISOLatin2StringEncoding},
        {"utf-16", u"a€", "\xFF\xFE"s + "a\0\xAC\x20"s, NSUnicodeStringEncoding},
        {"cp1251", u"Жж", "\xC6\xE6", NSWindowsCP1251StringEncoding},
        {"cp1252", u"€é“", "\x80\xE9\x93", NSWindowsCP1252StringEncoding},
        {"cp1253", u"αω", "\xE1\xF9", NSWindowsCP1253StringEncoding},
        {"cp1254", u"ğİ", "\xF0\xDD", NSWindowsCP1254StringEncoding},
        {"cp1250", u"łő", "\xB3\xF5", NSWindowsCP1250StringEncoding},
        {"iso-2022-jp", u"a日b", "a\x1B$BF|\x1B(Bb", NSISO2022JPStringEncoding},
        {"macintosh", u"éΩﬁ", "\x8E\xBD\xDE", NSMacOSRomanStringEncoding},
        {"koi8-r", u"Аж\u2500", "\xE1\xD6\x80", 0x80000A02},
        {"x-mac-roman-latin1", u"é†Ω\uF8FF", "\xE9\x80\x8C\xBC", 0x80000A04},
        {"utf-16be", u"a😀", "\0a\xD8\x3D\xDE\0"s, NSUTF16BigEndianStringEncoding},
        {"utf-16le", u"\uFEFFa", "\xFF\xFE"s + "a\0"s, NSUTF16LittleEndianStringEncoding},
        {"utf-32", u"😀", "\xFF\xFE\0\0\0\xF6\x01\0"s, NSUTF32StringEncoding},
        {"utf-32be", u"😀", "\0\x01\xF6\0"s, NSUTF32BigEndianStringEncoding},
        {"utf-32le", u"a", "a\0\0\0"s, NSUTF32LittleEndianStringEncoding},
        {"Big5", u"中文", "\xA4\xA4\xA4\xE5"},
        {"GB 18030", u"中ü😀", "\xD6\xD0\xA8\xB9\x94\x39\xFC\x36"},
        {"Windows 1257", u"ž", "\xFE"},
        {"KOI8-U", u"ї", "\xA7"},
        {"x-mac-ukrainian", u"Ж", "\x86"},
        {"UTF-7", u"é+", "+AOkAKw-"},
    };
    for (const Case& c : cases) {
        const NSStringEncoding encoding = encodingForName(c.name);
        EXPECT_TRUE(!c.number || encoding == c.number) << c.name << " " << encoding;
        EXPECT_EQ(encodeUnits(c.text, encoding), c.bytes) << c.name;
        EXPECT_EQ(decodeBytes(c.bytes, encoding), c.text) << c.name;
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
    const Case cases[] = {{"ASCII", u"Crème brûlée", "Creme brulee"},
                          {"ASCII", u"“it’s” – 5€…", "\"it's\" - 5EUR..."},
                          {"ASCII", u"Straße Øre ﬁx e\u0301", "Strasse Ore fix e"},
                          {"ASCII", u"日😀\u00A0½", "?? 1/2"},
                          {"latin1", u"é“ł日", "\xE9\"l?"},
                          {"cp1252", u"“ő日", "\x93o?"},
                          {"cp1252", u"a\u200Db\u00AD", "ab\xAD"},
                          {"iso-2022-jp", u"日é", "\x1B$BF|\x1B(Be"},
                          {"UTF8", u"a\xD800z", "a\xEF\xBF\xBDz"},
                          {"utf-32be", u"\xDC00", "\0\0\xFF\xFD"s}};
    for (const Case& c : cases) {
        const NSStringEncoding encoding = encodingForName(c.name);
        EXPECT_EQ(encodeUnits(c.text, encoding), std::nullopt) << c.bytes;
        EXPECT_EQ(encodeUnits(c.text, encoding, EncodingLoss::allowed), c.bytes);
    }
    EXPECT_EQ(encodeUnits(u"a", 77777, EncodingLoss::allowed), std::nullopt);
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

TEST(NSStringEncodingTest, TextInPiecesMayEndInTheMiddleOfACharacter) {
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
    const std::pair<std::string_view, NSStringEncoding> rows[] = {
        {"cp65001", NSUTF8StringEncoding},
        {"ISO_8859-1:1987", NSISOLatin1StringEncoding},
        {"no-such-name", 0},
        {"", 0},
        {"--", 0},
        {"cp99999", 0},
        {"utf-8\0"sv, 0}};
    for (auto [name, encoding] : rows) EXPECT_EQ(encodingForName(name), encoding) << name;
    EXPECT_EQ(shown(NSString::localizedNameOfStringEncoding(NSUTF8StringEncoding)), "Unicode (UTF-8)");
    EXPECT_EQ(NSString::localizedNameOfStringEncoding(77777)->length(), 0u);
}

TEST(NSStringEncodingTest, StringsAsDataAndCText) {
    NSData* data = u"é"_ns->dataUsingEncoding(NSISOLatin1StringEncoding);
    EXPECT_EQ(shown(data, NSString::initWithData_encoding(data, NSISOLatin1StringEncoding),
                    NSMutableString::initWithData_encoding(data, NSISOLatin1StringEncoding),
                    NSString::stringWithCString_encoding("\xE9", NSISOLatin1StringEncoding),
                    NSString::initWithData_encoding(data, NSUTF8StringEncoding),
                    u"é"_ns->dataUsingEncoding_allowLossyConversion(NSASCIIStringEncoding, true)),
              "<e9> é é é (null) <65>");
    EXPECT_STREQ(u"é"_ns->cStringUsingEncoding(NSISOLatin1StringEncoding), "\xE9");
    EXPECT_FALSE(u"é"_ns->dataUsingEncoding(NSASCIIStringEncoding) ||
                 u"é"_ns->cStringUsingEncoding(NSASCIIStringEncoding));
    EXPECT_TRUE(u"é"_ns->canBeConvertedToEncoding(NSMacOSRomanStringEncoding));
    EXPECT_EQ(u"aé"_ns->lengthOfBytesUsingEncoding(NSUTF8StringEncoding), 3u);
    EXPECT_EQ(u"abc"_ns->smallestEncoding(), NSASCIIStringEncoding);
    EXPECT_EQ(u"abé"_ns->smallestEncoding(), NSUnicodeStringEncoding);
}

TEST(NSStringEncodingTest, FilesAreWrittenAndReadByEncodingOrMark) {
    TemporaryFolder folder;
    NSString* path = NSString::ofUTF8(folder.path("file"));
    auto read = [=](NSStringEncoding encoding = 0) {
        return shown(encoding ? NSString::stringWithContentsOfFile_encoding(path, encoding)
                              : NSString::stringWithContentsOfFile(path));
    };
    EXPECT_TRUE(u"é€"_ns->writeToFile_atomically_encoding(path, true, NSUnicodeStringEncoding));
    EXPECT_FALSE(u"€"_ns->writeToFile_atomically_encoding(path, false, NSISOLatin1StringEncoding));
    EXPECT_EQ(read(NSUnicodeStringEncoding) + read() + read(NSUTF8StringEncoding), "é€é€(null)");
    for (const char* bytes : {"é", "\xE9", "\xEF\xBB\xBFé"}) {
        folder.write("file", bytes);
        EXPECT_EQ(read(), "é");
    }
    EXPECT_EQ(read(NSUTF8StringEncoding), "é");
    std::filesystem::remove(folder.path("file"));
    EXPECT_EQ(read(), "(null)");
    path = NSString::ofUTF8(folder.path("no folder/file"));
    EXPECT_FALSE(u"x"_ns->writeToFile_atomically_encoding(path, true, NSUTF8StringEncoding));
}

}  // namespace
