// SPDX-License-Identifier: Apache-2.0
// Tests of reading XML property lists: values, forms of documents, what is refused and where.
#include "Platform/Foundation/PropertyListSamples.h"
#include "Prelude.h"

namespace pelvor {
namespace {

using namespace propertylists;

// Puts the content where only the parser reads it, off the road for plain documents.
std::string parsedDocument(std::string_view content) { return document("<!-- - -->" + std::string(content)); }

// The value of an element, or why it is refused, on both roads, which must agree but for the place of an
// error.
std::string valueOf(std::string_view element) {
    Reading plain = read(document(element));
    Reading parsed = read(parsedDocument(element));
    EXPECT_EQ(plain.list == nullptr, parsed.list == nullptr) << element;
    if (!plain.list) return "refused: " + plain.error->reason()->toUTF8();
    EXPECT_TRUE(plain.list->isEqual(parsed.list)) << element;
    return plain.list->description()->toUTF8();
}

using Row = std::pair<std::string, std::string>;

void expectValues(const std::string& element, std::initializer_list<Row> values,
                  std::initializer_list<std::string> refused) {
    auto in = [&](const std::string& text) { return "<" + element + ">" + text + "</" + element + ">"; };
    for (const auto& [text, value] : values) EXPECT_EQ(valueOf(in(text)), value) << text;
    for (const std::string& text : refused) EXPECT_TRUE(valueOf(in(text)).starts_with("refused: ")) << text;
}

TEST(XMLPropertyLists, HoldIntegers) {
    expectValues("integer",
                 {{"0", "0"},
                  {"+7", "7"},
                  {" -42\n", "-42"},
                  {"0x1F", "31"},
                  {"-0X10", "-16"},
                  {"007", "7"},
                  {"9223372036854775807", "9223372036854775807"},
                  {"-9223372036854775808", "-9223372036854775808"},
                  {"18446744073709551615", "18446744073709551615"},
                  {"0xFFFFFFFFFFFFFFFF", "18446744073709551615"}},
                 {"", "x", "1.5", "--1", "+-1", "0x", "1 2", "18446744073709551616", "-9223372036854775809"});
    EXPECT_THAT(valueOf("<integer>" + repeated("9", 60) + "</integer>"),
                StartsWith("refused: '" + repeated("9", 40)));
}

TEST(XMLPropertyLists, HoldRealNumbers) {
    expectValues("real",
                 {{"0", "0"},
                  {"1.5", "1.5"},
                  {" +2.5e3 ", "2500"},
                  {"-.5", "-0.5"},
                  {"nan", "nan"},
                  {"-inf", "-inf"},
                  {"INFINITY", "inf"},
                  {"+infinity", "inf"},
                  {"1e22", "1e+22"}},
                 {"", "1,5", "1e400", "+-1", "0x", "one"});
}

TEST(XMLPropertyLists, HoldDates) {
    const std::pair<std::string_view, double> dates[] = {
        {"2001-01-01T00:00:00Z", 0},
        {"1970-01-01T00:00:00Z", -978307200},
        {"2000-02-29T23:59:59Z", -26438401},
        {"0001-01-01T00:00:00Z", -63113904000},
        {"-0001-12-31T00:00:00Z", -63145612800},
        {"12001-01-01T00:00:00Z", 315569520000},
    };
    for (auto [text, seconds] : dates) {
        auto* date = cast<NSDate>(read(document("<date>" + std::string(text) + "</date>")).list);
        ASSERT_TRUE(date) << text;
        EXPECT_EQ(date->timeIntervalSinceReferenceDate(), seconds) << text;
        EXPECT_NE(written(date).find(text), std::string::npos) << text;
    }
    expectValues(
        "date", {},
        {"", "2001-1-1T0:0:0Z", "2001-02-29T00:00:00Z", "1900-02-29T00:00:00Z", "2001-13-01T00:00:00Z",
         "2001-00-01T00:00:00Z", "2001-01-01T24:00:00Z", "2001-01-01T00:60:00Z", "2001-01-01T00:00:00",
         "2001-01-01 00:00:00Z", "2001-01-01T00:00:-1Z", "1234567890-01-01T00:00:00Z"});
}

TEST(XMLPropertyLists, HoldData) {
    expectValues("data",
                 {{"", "<>"},
                  {"AA==", "<00>"},
                  {"AAE", "<0001>"},
                  {"\n\tAA EC\r\n AwQ=\n", "<00010203 04>"},
                  {"+/+/", "<fbffbf>"}},
                 {"A", "AAAAA", "AA=A", "AA==AAAA", "A-AA"});
    EXPECT_EQ(valueOf("<data>\xC3\xA4==</data>"), "refused: data that is not base64");
}

TEST(XMLPropertyLists, HoldText) {
    const std::pair<std::string_view, std::string_view> texts[] = {
        {"<string/>", ""},
        {"<string></string>", ""},
        {"<string> a\tb\nc </string>", " a\tb\nc "},
        {"<string>a\r\nb\rc</string>", "a\nb\nc"},
        {"<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;&#13;</string>", "<>&\"'A\U0001F600\r"},
        {"<string>a<!-- no --><![CDATA[<b>&amp;]]>c<?no?></string>", "a<b>&amp;c"},
        {"<string>\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80</string>", "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80"},
        {"<true ></true>", "1"},
        {"<false />", "0"},
    };
    for (auto [element, value] : texts) EXPECT_EQ(valueOf(element), value);
}

TEST(XMLPropertyLists, HoldTextInPiecesOfTheParser) {
    std::string text = repeated("\xE6\x97\xA5 & ", 100'000);
    std::string escaped = repeated("\xE6\x97\xA5 &amp; ", 100'000);
    EXPECT_EQ(valueOf("<string>" + escaped + "</string>"), text);
}

TEST(XMLPropertyLists, LetTheLastOfEqualKeysCount) {
    id list = read("<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>").list;
    EXPECT_TRUE(list->isEqual(read("<dict><key>a</key><false/><key>b</key><true/></dict>").list));
}

TEST(XMLPropertyLists, ComeInTheEncodingThatTheyDeclare) {
    std::string latin = "<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE4</string></plist>";
    EXPECT_TRUE(u"\u00E4"_ns->isEqual(read(latin).list));
    std::u16string text =
        u"\uFEFF<?xml version='1.0' encoding='UTF-16'?><plist><string>\u00E4</string></plist>";
    std::string bytes;
    for (char16_t unit : text) (bytes += static_cast<char>(unit >> 8)) += static_cast<char>(unit);
    EXPECT_TRUE(u"\u00E4"_ns->isEqual(read(bytes).list));
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='x-none'?><plist><string/></plist>"),
              "line 1, column 31: unknown encoding");
}

TEST(XMLPropertyLists, TellWhereTheyAreWrong) {
    const std::pair<std::string_view, std::string_view> documents[] = {
        {"<plist>\n</plist>", "line 2, column 1: a property list without a value"},
        {"<plist><true/>\n <true/></plist>", "line 2, column 2: more than one value"},
        {"<plist><true/>\n <dict/></plist>", "line 2, column 2: more than one value"},
        {"<plist><plist/></plist>", "line 1, column 8: a property list inside another"},
        {"<plist>\n\n  <colour/></plist>", "line 3, column 3: the element 'colour' is not known"},
        {"<array><string>a<b/></string></array>", "line 1, column 17: the element 'b' inside a value"},
        {"<array>\n\tx</array>", "line 2, column 1: text outside of values"},
        {"<array><true>x</true></array>", "line 1, column 15: text inside a boolean"},
        {"<array><key>a</key></array>", "line 1, column 14: a key outside a dictionary"},
        {"<dict><true/></dict>", "line 1, column 7: a value without a key"},
        {"<dict><array/></dict>", "line 1, column 7: a value without a key"},
        {"<dict><key>a</key></dict>", "line 1, column 19: a key without a value"},
        {"<dict><key>a</key><key>b</key></dict>", "line 1, column 25: a key without a value"},
        {"<array>", "line 1, column 8: no element found"},
        {"<array></dict>", "line 1, column 10: mismatched tag"},
        {"<array>\n&x;</array>", "line 2, column 1: undefined entity"},
        {"<string>\xFF</string>", "line 1, column 9: not well-formed (invalid token)"},
        {"<string>a]]>b</string>", "line 1, column 12: not well-formed (invalid token)"},
        {"<string>\xEF\xBF\xBE</string>", "line 1, column 9: not well-formed (invalid token)"},
        {"\n<?xml version='1.0'?><true/>",
         "line 2, column 1: XML or text declaration not at start of entity"},
    };
    for (auto [text, reason] : documents) EXPECT_EQ(refusal(text), reason) << text;
}

TEST(XMLPropertyLists, TellNothingButTheirPlaceOfALongName) {
    std::string name = repeated("\xC3\xA4", 50'000);
    EXPECT_EQ(refusal("<plist><" + name + "/></plist>"),
              "line 1, column 8: the element '" + repeated("\xC3\xA4", 20) + "\xE2\x80\xA6' is not known");
}

TEST(XMLPropertyLists, MayNotDeclareEntities) {
    std::string bomb = "<!DOCTYPE plist [<!ENTITY a0 \"lol\">";
    for (int i = 1; i < 30; ++i)
        bomb += "<!ENTITY a" + std::to_string(i) + " \"" + repeated("&a" + std::to_string(i - 1) + ";", 10) +
                "\">";
    const std::string documents[] = {
        bomb + "]><plist><string>&a29;</string></plist>",
        "<!DOCTYPE plist [<!ENTITY x \"y\">]><plist><string/></plist>",
        "<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><plist><string>&x;</string></plist>",
        "<!DOCTYPE plist [<!ENTITY % x SYSTEM \"http://localhost/\"> %x;]><plist><string/></plist>",
        "<!DOCTYPE plist [<!ATTLIST plist a CDATA \"b\">]><plist><string/></plist>",
    };
    for (const std::string& text : documents)
        EXPECT_TRUE(refusal(text).ends_with("entities and other declarations are not allowed"))
            << refusal(text);
    std::string outside =
        "<!DOCTYPE plist SYSTEM \"http://localhost/x.dtd\"><plist><string>a&x;b</string></plist>";
    EXPECT_EQ(refusal(outside), "line 1, column 65: the entity 'x' is not declared");
}

TEST(XMLPropertyLists, ReadAlikeOnBothRoads) {
    std::string text = written(richList());
    std::string parsed = text;
    parsed.insert(kXMLHeader.size(), "<!-- -->");
    EXPECT_EQ(written(read(parsed).list), text);
}

}  // namespace
}  // namespace pelvor
