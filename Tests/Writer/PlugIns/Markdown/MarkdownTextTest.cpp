// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/MarkdownText.h"

#include "Prelude.h"

namespace {

TEST(MarkdownText, IsWhatAReaderOfTheDocumentSees) {
    const struct {
        const char* situation;
        std::u16string_view source, text;
    } cases[] = {
        {"Nothing", u"", u""},
        {"BlankLines", u"\n \n\t\r\n", u""},
        {"LinesOfAParagraph", u"one\ntwo\r\n\r\nthree", u"one two\nthree\n"},
        {"Heading", u"# One #\n###### Six\n####### seven\n#no", u"One\nSix\n####### seven #no\n"},
        {"HeadingEndingInSharp", u"# About C#\n", u"About C#\n"},
        {"UnderlinedHeading", u"Title\n=====\nSub\n---\ntext", u"Title\nSub\ntext\n"},
        {"Rule", u"a\n\n* * *\n---\n\nb", u"a\nb\n"},
        {"List", u"- one\n  more\n* two\n12. twelve\n2019 was good",
         u"•\tone more\n•\ttwo\n12.\ttwelve 2019 was good\n"},
        {"Quotation", u"> he said\n> > so", u"he said so\n"},
        {"Code", u"a\n```c\n*p = 1;\n\n# no\n```\nb", u"a\n*p = 1;\n\n# no\nb\n"},
        {"CodeWithoutEnd", u"~~~\nx", u"x\n"},
        {"LinkDefinition", u"[a]: http://x\ntext", u"text\n"},
        {"Emphasis", u"*a* **b** ***c*** _d_ __e__", u"a b c d e\n"},
        {"EmphasisInWords", u"un*frigging*real snake_case_name", u"unfriggingreal snake_case_name\n"},
        {"StarsThatAreText", u"2 * 3 * 4 and 5*6", u"2 * 3 * 4 and 5*6\n"},
        {"MarkWithoutPartner", u"*open and _open", u"*open and _open\n"},
        {"CodeSpan", u"`a*b*c` ``x`y`` `open", u"a*b*c x`y `open\n"},
        {"Link", u"see [the *page*](http://x/y) or [it][ref].", u"see the page or it.\n"},
        {"Image", u"![a cat](cat.png)!", u"a cat!\n"},
        {"BracketsThatAreText", u"a[1] and [x](no end", u"a[1] and [x](no end\n"},
        {"AutomaticLink", u"<https://x.org> <b> <http://", u"https://x.org <b> <http://\n"},
        {"Escapes", u"\\*not\\* \\a \\\\ end\\", u"*not* \\a \\ end\\\n"},
        {"Entities", u"a &lt; b &amp;amp; c & d", u"a < b &amp; c & d\n"},
    };
    for (const auto& [situation, source, text] : cases)
        EXPECT_EQ(textOfMarkdown(source).text, text) << situation;
}

// A style for each unit: digits for marks of characters, behind "h1", "l" (list), "c" (code), "q"
// (quotation).
TEST(MarkdownText, KeepsWhatTheMarkupSaid) {
    const auto stylesOf = [](std::u16string_view source) {
        const MarkdownText read = textOfMarkdown(source);
        EXPECT_EQ(read.text.size(), read.styles.size());
        std::string shown;
        for (std::size_t i = 0; i < read.styles.size(); ++i) {
            const int style = read.styles[i], kind = style & ~7;
            if (i == 0 || read.text[i - 1] == u'\n') {
                if (kind & kMarkdownHeading) shown += "h" + std::to_string(kind / kMarkdownLevel);
                if (kind == kMarkdownListItem) shown += "l";
                if (kind == kMarkdownCodeLine) shown += "c";
                if (kind == kMarkdownQuote) shown += "q";
            }
            shown += read.text[i] == u'\n' ? " " : std::to_string(style & 7);
        }
        return shown;
    };
    EXPECT_EQ(stylesOf(u"# a\n## b ##\nc\n==\nd\n--"), "h10 h20 h10 h20 ");
    EXPECT_EQ(stylesOf(u"- a\n\n> b\n\n```\nc\n```\nd"), "l000 q0 c0 0 ");
    EXPECT_EQ(stylesOf(u"a*b*__c *d*__`e`***f***"), "0122343 ");
}

// Marks that find no partner must not be looked for again and again: such a paragraph would take minutes.
TEST(MarkdownText, TakesTimeInProportionWhateverTheSource) {
    for (const char16_t* piece : {u"[", u"[a](", u"`a``b", u"*a_b", u"<http://", u"> ", u"]("}) {
        std::u16string source;
        while (source.size() < 400'000) source += piece;
        EXPECT_LE(textOfMarkdown(source).text.size(), source.size() + 1);
    }
}

}  // namespace
