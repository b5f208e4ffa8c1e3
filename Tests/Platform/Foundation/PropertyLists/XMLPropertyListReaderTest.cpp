// SPDX-License-Identifier: Apache-2.0
// Tests of reading XML property lists: values, forms of documents, what is refused and where.
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

using namespace std::string_literals;

// The value of an element on both roads, for plain documents and that of the parser, which must agree;
// "refused" if it is, whose reason the roads give with other places.
std::string valueOf(std::string_view element) {
    id plain = listOf(document(element));
    id parsed = listOf(document("<!-- - -->" + std::string(element)));
    EXPECT_TRUE(plain ? plain->isEqual(parsed) : !parsed) << element;
    return plain ? shown(plain) : "refused";
}

auto valueIn(const std::string& element) {
    return
        [=](const std::string& text) { return valueOf("<" + element + ">" + text + "</" + element + ">"); };
}

TEST(XMLPropertyLists, HoldNumbersDatesAndData) {
    expectAll(
        {"0 -> 0", "+7 -> 7", " -42\n -> -42", "0x1F -> 31", "-0X10 -> -16", "007 -> 7",
         "9223372036854775807 -> 9223372036854775807", "-9223372036854775808 -> -9223372036854775808",
         "18446744073709551615 -> 18446744073709551615", "0xFFFFFFFFFFFFFFFF -> 18446744073709551615",
         " -> refused", "x -> refused", "1.5 -> refused", "--1 -> refused", "+-1 -> refused", "0x -> refused",
         "1 2 -> refused", "18446744073709551616 -> refused", "-9223372036854775809 -> refused"},
        valueIn("integer"));
    EXPECT_THAT(refusal("<integer>" + repeated("9", 60) + "</integer>"),
                HasSubstr(": '" + repeated("9", 40) + "\xE2\x80\xA6'"));
    expectAll({"0 -> 0", "1.5 -> 1.5", " +2.5e3  -> 2500", "-.5 -> -0.5", "nan -> nan", "-inf -> -inf",
               "INFINITY -> inf", "+infinity -> inf", "1e22 -> 1e+22", " -> refused", "1,5 -> refused",
               "1e400 -> refused", "+-1 -> refused", "0x -> refused", "one -> refused"},
              valueIn("real"));
    expectAll(
        {"2001-01-01T00:00:00Z -> 0", "1970-01-01T00:00:00Z -> -978307200",
         "2000-02-29T23:59:59Z -> -26438401", "0001-01-01T00:00:00Z -> -63113904000",
         "-0001-12-31T00:00:00Z -> -63145612800", "12001-01-01T00:00:00Z -> 315569520000", " -> refused",
         "2001-1-1T0:0:0Z -> refused", "2001-02-29T00:00:00Z -> refused", "1900-02-29T00:00:00Z -> refused",
         "2001-13-01T00:00:00Z -> refused", "2001-00-01T00:00:00Z -> refused",
         "2001-01-01T24:00:00Z -> refused", "2001-01-01T00:60:00Z -> refused",
         "2001-01-01T00:00:00 -> refused", "2001-01-01 00:00:00Z -> refused",
         "2001-01-01T00:00:-1Z -> refused", "1234567890-01-01T00:00:00Z -> refused"},
        [](const std::string& text) {
            auto* date = cast<NSDate>(listOf(document("<date>" + text + "</date>")));
            if (!date) return valueIn("date")(text);
            EXPECT_THAT(written(date), HasSubstr(text));
            return std::to_string(std::llround(date->timeIntervalSinceReferenceDate()));
        });
    expectAll({" -> <>", "AA== -> <00>", "AAE -> <0001>", "\n\tAA EC\r\n AwQ=\n -> <00010203 04>",
               "+/+/ -> <fbffbf>", "A -> refused", "AAAAA -> refused", "AA=A -> refused",
               "AA==AAAA -> refused", "A-AA -> refused"},
              valueIn("data"));
    EXPECT_THAT(refusal("<data>\xC3\xA4==</data>"), EndsWith(": data that is not base64"));
}

TEST(XMLPropertyLists, HoldTextBooleansAndTheLastOfEqualKeys) {
    expectAll({"<string/> -> ", "<string></string> -> ", "<string> a\tb\nc </string> ->  a\tb\nc ",
               "<string>a\r\nb\rc</string> -> a\nb\nc",
               "<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;&#13;</string> -> <>&\"'A\U0001F600\r",
               "<string>a<!-- no --><![CDATA[<b>&amp;]]>c<?no?></string> -> a<b>&amp;c",
               "<string>\xC3\xA4\xE6\x97\xA5\U0001F600</string> -> \xC3\xA4\xE6\x97\xA5\U0001F600",
               "<true ></true> -> 1", "<false /> -> 0",
               "<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict> -> "
               "{\n    a = 0;\n    b = 1;\n}"},
              valueOf);
    // In many pieces of the parser.
    EXPECT_EQ(valueIn("string")(repeated("\xE6\x97\xA5 &amp; ", 100'000)),
              repeated("\xE6\x97\xA5 & ", 100'000));
}

TEST(XMLPropertyLists, ComeInTheEncodingThatTheyDeclare) {
    std::string utf16;
    for (char16_t unit : std::u16string_view(
             u"\uFEFF<?xml version='1.0' encoding='UTF-16'?><plist><string>\u00E4</string></plist>"))
        (utf16 += static_cast<char>(unit >> 8)) += static_cast<char>(unit);
    for (const std::string& bytes :
         {utf16, "<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE4</string></plist>"s})
        EXPECT_EQ(shown(listOf(bytes)), "\u00E4");
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='x-none'?><plist><string/></plist>"),
              "line 1, column 31: unknown encoding");
}

TEST(XMLPropertyLists, TellWhereTheyAreWrong) {
    expectAll({"<plist>\n</plist> -> line 2, column 1: a property list without a value",
               "<plist><true/>\n <true/></plist> -> line 2, column 2: more than one value",
               "<plist><true/>\n <dict/></plist> -> line 2, column 2: more than one value",
               "<plist><plist/></plist> -> line 1, column 8: a property list inside another",
               "<plist>\n\n  <colour/></plist> -> line 3, column 3: the element 'colour' is not known",
               "<array><string>a<b/></string></array> -> line 1, column 17: the element 'b' inside a value",
               "<array>\n\tx</array> -> line 2, column 1: text outside of values",
               "<array><true>x</true></array> -> line 1, column 15: text inside a boolean",
               "<array><key>a</key></array> -> line 1, column 14: a key outside a dictionary",
               "<dict><true/></dict> -> line 1, column 7: a value without a key",
               "<dict><array/></dict> -> line 1, column 7: a value without a key",
               "<dict><key>a</key></dict> -> line 1, column 19: a key without a value",
               "<dict><key>a</key><key>b</key></dict> -> line 1, column 25: a key without a value",
               "<array> -> line 1, column 8: no element found",
               "<array></dict> -> line 1, column 10: mismatched tag",
               "<array>\n&x;</array> -> line 2, column 1: undefined entity",
               "<string>\xFF</string> -> line 1, column 9: not well-formed (invalid token)",
               "<string>a]]>b</string> -> line 1, column 12: not well-formed (invalid token)",
               "<string>\xEF\xBF\xBE</string> -> line 1, column 9: not well-formed (invalid token)",
               "\n<?xml version='1.0'?><true/> -> line 2, column 1: XML or text declaration not at start of "
               "entity"},
              refusal);
    // Of a long name the beginning will do.
    EXPECT_EQ(refusal("<plist><" + repeated("\xC3\xA4", 50'000) + "/></plist>"),
              "line 1, column 8: the element '" + repeated("\xC3\xA4", 20) + "\xE2\x80\xA6' is not known");
}

TEST(XMLPropertyLists, MayNotDeclareEntities) {
    for (const std::string declaration :
         {"<!ENTITY x \"y\"><!ENTITY z \"&x;&x;\">", "<!ENTITY x SYSTEM \"file:///etc/passwd\">",
          "<!ENTITY % x SYSTEM \"http://localhost/\"> %x;", "<!ATTLIST plist a CDATA \"b\">"})
        EXPECT_THAT(refusal("<!DOCTYPE plist [" + declaration + "]><plist><string>&x;</string></plist>"),
                    EndsWith("entities and other declarations are not allowed"))
            << declaration;
    EXPECT_EQ(
        refusal("<!DOCTYPE plist SYSTEM \"http://localhost/x.dtd\"><plist><string>a&x;b</string></plist>"),
        "line 1, column 65: the entity 'x' is not declared");
}

}  // namespace
