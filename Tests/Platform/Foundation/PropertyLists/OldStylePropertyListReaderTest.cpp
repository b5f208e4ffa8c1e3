// SPDX-License-Identifier: Apache-2.0
// Tests of reading old-style property lists and string tables.
#include "Foundation/NSString-PropertyList.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

// The content of the list in XML, without what stands around it.
std::string asXML(std::string_view text) {
    std::string xml = written(listOf(text)).substr(kXMLHeader.size());
    std::erase_if(xml, [](char c) { return c == '\n' || c == '\t'; });
    return xml.substr(0, xml.size() - std::string_view("</plist>").size());
}

TEST(OldStylePropertyLists, AreReadInAllTheirForms) {
    expectAll(
        {"hello -> <string>hello</string>", " /usr/lib:a-b_c.$1  -> <string>/usr/lib:a-b_c.$1</string>",
         "'a \"b\" c' -> <string>a \"b\" c</string>", "() -> <array/>",
         "(a, \"b c\", ) -> <array><string>a</string><string>b c</string></array>", "{} -> <dict/>",
         "{ b = 1; \"a b\" = (x); } -> "
         "<dict><key>a b</key><array><string>x</string></array><key>b</key><string>1</string></dict>",
         "{ key; } -> <dict><key>key</key><string>key</string></dict>",
         "<0fbd77 1C> -> <data>D713HA==</data>",
         "(<>,({})) -> <array><data></data><array><dict/></array></array>",
         "// a\n( /* b ** / */ x // c\r , y ) /**/ -> <array><string>x</string><string>y</string></array>",
         "{ a = http://x/y; } -> <dict><key>a</key><string>http://x/y</string></dict>",
         // Tables of strings.
         "\"a\" = \"b\";\nc = d; -> "
         "<dict><key>a</key><string>b</string><key>c</key><string>d</string></dict>",
         "/* One */ \"_key\"; -> <dict><key>_key</key><string>_key</string></dict>",
         "a = { b = c; }; -> <dict><key>a</key><dict><key>b</key><string>c</string></dict></dict>",
         "// nothing\n -> <dict/>", "a = 1; a = 2; -> <dict><key>a</key><string>2</string></dict>"},
        asXML);
}

TEST(OldStylePropertyLists, UnderstandEscapes) {
    expectAll({"\"a\\nb\\tc\\\\d\\\"e\\'f\" -> a\nb\tc\\d\"e'f", "\"\\a\\b\\f\\r\\v\\q\" -> \a\b\f\r\vq",
               "\"\\U00e4\\u65E5\\UD83D\\UDE00\\U41g\\Ux\\u\" -> \u00E4\u65E5\U0001F600AgUxu",
               "\"\\1011\\60\\0018\\12\" -> A10\0018\n", "\"\\341\\256\\377\" -> \u00C6\uFB01\uFFFD",
               "\"a\\\nb\" -> a\nb"},
              listOf);
}

TEST(OldStylePropertyLists, ComeInUTF8AndInUTF16WithAMark) {
    const std::u16string text = u"\uFEFF\"\u00E4\" = \"\U0001F600\";";
    std::string big, little;
    for (char16_t unit : text) {
        (big += static_cast<char>(unit >> 8)) += static_cast<char>(unit);
        (little += static_cast<char>(unit)) += static_cast<char>(unit >> 8);
    }
    id table = NSDictionary::of({{u"\u00E4"_ns, u"\U0001F600"_ns}});
    for (const std::string& bytes : {big, little, NSString::of(text)->toUTF8()})
        EXPECT_TRUE(table->isEqual(read(bytes).list));
    EXPECT_EQ(refusal(big + "x"), "at byte 24: UTF-16 with half a unit");
    for (const char* mark : {"\xFF\xFE\0\0", "\0\0\xFE\xFF", "{\0\0\0", "\0\0\0<"})
        EXPECT_THAT(refusal(std::string(mark, 4) + std::string("}\0\0\0", 4)), HasSubstr("UTF-32"));
    EXPECT_EQ(refusal("( a,\n  \"\xE4\" )"), "line 2, column 4: bytes that are not UTF-8");
}

TEST(OldStylePropertyLists, TellWhereTheyAreWrong) {
    expectAll({"(a b) -> line 1, column 4: 'b' where there should be ',' or ')'",
               "(a,\r\n\r\n b -> line 3, column 3: the text ends where there should be ',' or ')'",
               "(,) -> line 1, column 2: ',' where there should be a value",
               "{ a = b } -> line 1, column 9: '}' where there should be ';'",
               "{ a ( b ) } -> line 1, column 5: '(' where there should be '=' or ';'",
               "{ a = ; } -> line 1, column 7: ';' where there should be a value",
               "{ (a) = b; } -> line 1, column 3: '(' where there should be a key or '}'",
               "{ -> line 1, column 2: the text ends where there should be a key or '}'",
               "{}\n} -> line 2, column 1: '}' where there should be the end of the text",
               "a b -> line 1, column 3: 'b' where there should be the end of the text, '=' or ';'",
               "a = b; ) -> line 1, column 8: ')' where there should be a key",
               "a = b -> line 1, column 6: the text ends where there should be ';'",
               "\"a\nb -> line 1, column 2: a string without an end",
               "\"a\\ -> line 1, column 4: a string without an end",
               "/* a -> line 1, column 1: a comment without an end",
               "<0> -> line 1, column 3: data with half a byte",
               "<0x> -> line 1, column 3: 'x' where there should be a hexadecimal digit or '>'",
               "<00 -> line 1, column 4: the text ends where there should be '>'",
               "\xC3\xA4 -> line 1, column 1: U+00E4 where there should be a value"},
              refusal);
}

TEST(OldStylePropertyLists, AreTheTextOfStrings) {
    EXPECT_EQ(shown(propertyList(u"<0102>"_ns), propertyList(u"(a"_ns)), "<0102> (null)");
    EXPECT_EQ(shown(propertyList(
                  u"<?xml version='1.0' encoding='UTF-16'?><plist><string>\u00E4</string></plist>"_ns)),
              "\u00E4");
    id table = listOf("{a = b;}");
    EXPECT_TRUE(table->isEqual(propertyListFromStringsFileFormat(u"a = b;"_ns)));
    EXPECT_TRUE(table->isEqual(send<id>(u"{ a = b; }"_ns, "propertyListFromStringsFileFormat"_sel)));
    EXPECT_EQ(propertyListFromStringsFileFormat(u""_ns)->count(), 0u);
    for (NSString* text : {u"(a)"_ns, u"a = b"_ns}) EXPECT_FALSE(propertyListFromStringsFileFormat(text));
    EXPECT_THROW(propertyList(nullptr), NSException);
    EXPECT_THROW(propertyListFromStringsFileFormat(nullptr), NSException);
}

}  // namespace
