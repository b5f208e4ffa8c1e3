// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextReading.h"

#include "Prelude.h"
#include "RichTextShown.h"

namespace {

using namespace std::string_literals;

RichText readOf(std::string_view bytes) { return readRichText(TextFileSource(bytes)); }

// The text of the document with these words in it; where formats begin they stand in brackets.
std::string textOf(const std::string& words) {
    RichText read = readOf("{\\rtf1\\ansi " + words + "}");
    return shownText(read, read.body);
}

struct Row {
    const char *situation, *words, *text;
};

void expectTexts(std::initializer_list<Row> rows) {
    for (const auto& [situation, words, text] : rows) EXPECT_EQ(textOf(words), text) << situation;
}

TEST(RichTextReading, TakesCharacters) {
    expectTexts({
        {"LineEndsAreNothing", "a\r\nb\nc", "abc"},
        {"OneSpaceEndsAWord", "\\b0 a\\b0  b\\b0c", "a bc"},
        {"Escapes", "\\\\\\{\\}", "\\{}"},
        {"Marks", "\\emdash\\endash\\lquote\\rquote \\ldblquote\\rdblquote\\bullet", "—–‘’“”•"},
        {"Spaces", "\\~\\-\\_\\emspace\\enspace\\qmspace", "\u00A0\u00AD\u2011\u2003\u2002\u2005"},
        {"Breaks", "a\\line b\\tab\\page c", "a\u2028b\t\fc"},
        {"ParagraphByALineEnd", "a\\\nb", "a\nb"},
        {"RawTab", "a\tb", "a\tb"},
        {"UnknownSymbol", "a\\|b\\:c", "abc"},
    });
}

TEST(RichTextReading, DecodesCharactersOfAllCodePages) {
    expectTexts({
        {"Western", "\\'93caf\\'E9\\'94", "“café”"},
        {"DocumentsOwn", "\\ansicpg1251\\'ef\xF0", "пр"},
        {"OldMachines", "\\mac\\'8e\\pc\\'82", "éé"},
        {"FontsOwn", "{\\fonttbl{\\f1\\fcharset204 A;}{\\f2\\fcharset161 B;}}\\f1\\'ef\\f2\\'e1",
         "[font]п[font=2]α"},
        {"EndOfGroup", "{\\fonttbl{\\f1\\fcharset204 A;}}{\\f1\\'ef}\\'ef", "[font]п[]ï"},
        {"TwoBytes", "\\ansicpg932\\'93\\'fa\\'83A", "日ア"},
        {"TwoRawBytes", "\\ansicpg936\xD6\xD0", "中"},
        {"UTF8", "\\ansicpg65001 \xE2\x82\xAC\\'c3\\'a9", "€é"},
        {"SymbolFont", "{\\fonttbl{\\f1\\fcharset2 Symbol;}}\\f1 a\\'b7\\u-3999 ?", "[font]α•α"},
        {"OtherSymbols", "{\\fonttbl{\\f1\\fcharset2 Wings;}}\\f1 J", "[font]\uF04A"},
        {"UnknownPage", "\\ansicpg4711\\'e9", "é"},
    });
}

TEST(RichTextReading, PrefersUnicodeToWhatStandsForIt) {
    expectTexts({
        {"Character", "\\u8217\\'92s", "’s"},
        {"Negative", "\\u-10180?\\u-8384?", "🍀"},
        {"WithoutFallback", "\\uc0\\u8217s", "’s"},
        {"LongFallback", "\\uc2\\u26085\\'93\\'fa.", "日."},
        {"CountOfTheGroup", "{\\uc0\\u65}\\u66 xy", "ABy"},
        {"SymbolsAreFallbacks", "\\uc1\\u8212\\emdash.\\u8212\\~.", "—.—."},
        {"GroupsEndFallbacks", "{\\u65}xyz", "Axyz"},
        {"NoFallbackBeforeTheNext", "\\u65\\u66?c", "ABc"},
        {"TwoForms", "{\\upr{old}{\\*\\ud{n\\u233?w}}}", "néw"},
    });
}

TEST(RichTextReading, TakesFormatsOfCharacters) {
    expectTexts({
        {"Flags", "a{\\b b{\\i c}\\b0 d}e", "a[bold]b[bold italic]c[]de"},
        {"Plain", "\\b\\fs40 a\\plain b", "[size=40 bold]a[]b"},
        {"Lines", "\\ul a\\uldb b\\ulnone\\striked1 c\\strike0 d",
         "[underline]a[underline=9]b[strikethrough=9]c[]d"},
        {"Places", "\\super a\\sub b\\nosupersub\\up4 c\\dn c\\up0 d",
         "[superscript]a[superscript=-1]b[baselineOffset=4]c[baselineOffset=-6]c[]d"},
        {"Spacing", "\\expnd4 a\\expndtw-10 b\\expndtw0\\charscalex80 c", "[kern=20]a[kern=-10]b[width=80]c"},
        {"Colours", "{\\colortbl;\\red255;\\red255;\\blue9;}\\cf1 a\\cf2 b\\cf3\\highlight1 c\\cf9\\cb0 d",
         "[foreground]ab[foreground=2 background]c[]d"},
        {"FirstColourIsReal", "{\\colortbl\\red1;\\red2;}\\cf0 a\\cf1 b", "[foreground]a[foreground=2]b"},
        {"Languages", "\\lang1031 a\\lang1024 b\\lang9 c\\lang999 d",
         "[language=de-DE]a[]b[language=en]c[]d"},
        {"LanguageByName", "\\lang1036{\\*\\pelvorlang fr}a{\\*\\pelvorlang a b}b{\\*\\pelvorlang}\\plain c",
         "[language=fr]ab[]c"},
        {"UnmarkedLanguage", "\\deflang1036{\\*\\pelvorunmarked x}\\lang1036 a\\lang1031 b",
         "a[language=de-DE]b"},
        {"UsualLanguage", "\\deflang1031 a\\lang1036\\langfe1041\\langnp1031 b\\plain c",
         "a[language=fr-FR]b[]c"},
        {"Fonts", "\\deff1{\\fonttbl\\f0 A;\\f1\\fmodern B;}a\\f0 b\\plain c", "[font=2]a[font]b[font=2]c"},
        {"StylesByName", "{\\stylesheet{\\s1 Head;}{\\*\\cs2 Quiet;}{\\*\\cs3 Em;}}\\s1\\cs3 a\\par",
         "[style=2]a\n{style}"},
        {"Hidden", "a{\\v b}c", "ac"},
    });
}

TEST(RichTextReading, TakesFormatsOfParagraphs) {
    expectTexts({
        {"AtTheEnd", "a\\qc b\\par\\pard c", "ab\n{alignment=2}c"},
        {"Inherited", "\\li720\\fi-360 a\\par b\\par\\pard",
         "a\n{leadingIndent=720 firstLineIndent=-360}b\n{the same}"},
        {"EndOfGroup", "{\\qr a\\par}b\\par", "a\n{alignment}b\n"},
        {"Heights", "\\sl360\\slmult1\\par\\sl240\\par\\slmult0\\sl-200\\par",
         "\n{lineHeight=360 isLineHeightFactor}\n\n{lineHeight=-200}"},
        {"Pages", "\\keepn\\keep\\pagebb\\hyphpar0 a\\par", "a\n{keepWithNext keepTogether pageBreakBefore}"},
        {"Hyphenation", "\\hyphauto a\\par\\hyphpar0 b\\par\\pard c", "a\n{hyphenates}b\nc{hyphenates}"},
        {"Tabs", "\\tqr\\tx900\\tx300\\tqdec\\tx600 a\\par\\pard b", "a\n{tabs 300 600D 900R}b"},
        {"RightToLeft", "\\rtlpar a\\par", "a\n{direction}"},
        {"Natural", "\\rtlpar\\qr{\\*\\pelvornatural}a\\par\\qc b\\par", "a\nb\n{alignment=2}"},
    });
}

TEST(RichTextReading, MakesTextOfWhatIsMore) {
    expectTexts({
        {"Table", "\\trowd\\intbl a\\cell b\\cell\\row c\\cell\\cell\\row\\pard d", "a\tb\nc\t\nd"},
        {"ParagraphsInCells", "\\intbl a\\par b\\cell c\\cell\\row", "a\u2028b\tc\n"},
        {"List", "{\\listtext 1.\\tab}a\\par{\\*\\pn x}{\\pntext 2.\\tab}b", "1.\ta\n2.\tb"},
        {"Notes", "a{\\super\\chftn}{\\footnote{\\super\\chftn} one}b{\\super\\chftn{\\footnote two}}",
         "a[superscript]1[]b[superscript]2[]\n[superscript]1[] one\ntwo\n"},
        {"Field", "{\\field{\\*\\fldinst DATE}{\\fldrslt today}}", "today"},
        {"Link", "{\\field{\\*\\fldinst{HYPERLINK \"a\\\\\\\\b\" \\\\o \"t\"}}{\\fldrslt{\\b x}}}y",
         "[bold link(a\\b)]x[]y"},
        {"LinkInside", "{\\field{\\*\\fldinst HYPERLINK \\\\l \"c d\"}{\\fldrslt\\plain x}}",
         "[link(pelvor-anchor:c d)]x"},
        {"Picture",
         "a{\\*\\shppict{\\pict\\pngblip\\picwgoal200\\pichgoal100 89 5\n0}}{\\nonshppict{\\pict\\wmetafile8 "
         "00}}b",
         "a[picture(png 10x5 8950)]\uFFFC[]b"},
        {"PictureInBytes", "{\\pict\\jpegblip\\picscalex50\\picwgoal200\\bin4 {}\\'}",
         "[picture(jpeg 5x0 7b7d5c27)]\uFFFC"},
        {"Sections", "a\\sect\\sectd b\\sect\\sectd\\sbknone c", "a\n\fb\nc"},
        {"UnknownDestination", "a{\\*\\what b{c}\\bin3 }}}d}e", "ae"},
        {"UnknownWord", "{\\what b}", "b"},
        {"Result", "{\\object{\\*\\objdata 00}{\\result x}}", "x"},
    });
}

TEST(RichTextReading, KnowsTheDocument) {
    RichText read = readOf(
        "{\\rtf1{\\info{\\title A\\'e9}{\\creatim\\yr2024}{\\author B}}\\paperw200\\margl-5\\sectd\\headery9"
        "{\\header\\chpgn\\par}{\\footer {\\field{\\*\\fldinst NUMPAGES}{\\fldrslt 7}}}{\\headerf "
        "x}a\\sect{\\header y}\\marglsxn3}");
    EXPECT_EQ(NSString::of(read.fields[0])->toUTF8() + NSString::of(read.fields[1])->toUTF8(), "AéB");
    EXPECT_EQ(shown(read.pageNumbers[0], read.pageNumbers[1], read.pageNumbers[2], read.pageNumbers[6]),
              "200 -1 0 9");
    EXPECT_EQ(shownText(read, read.header) + shownText(read, read.footer), "\uE010\n\uE011");
    EXPECT_THAT(read.leftOut, ElementsAre("header", "headerf", "marglsxn", "sect"));
    // What headers show otherwise in other programs
    const char* field = "{\\field{\\*\\fldinst FILENAME}{\\fldrslt a.rtf}}";
    const std::string header = std::string("{\\header ") + field + "}";
    const std::pair<std::string, const char*> rows[] = {
        {"\\titlepg\\facingp", ""},
        {header, ""},
        {"{\\info{\\title T}}" + header, "fldinst "},
        {field, "fldinst "},
        {"\\titlepg" + header, "titlepg "},
        {"\\titlepg0\\facingp" + header, ""},
        {"\\facingp{\\footerr x}", "facingp "},
        {"\\pgnstarts3{\\footer \\chpgn}", "pgnstart "},
        {"\\pgnstarts1\\pgnstart4", ""},
    };
    for (const auto& [markup, leftOut] : rows) {
        std::string names;
        for (const std::string& name : readOf("{\\rtf1" + markup + "}").leftOut) names += name + " ";
        EXPECT_EQ(names, leftOut) << markup;
    }
}

TEST(RichTextReading, TellsWhereAFileIsBroken) {
    const std::string deep = "{\\rtf1 " + std::string(5000, '{') + "a" + std::string(5000, '}') + "b}";
    const struct {
        const char* situation;
        std::string bytes;
        const char* text;
        RichTextProblem problem;
        std::uint64_t place;
    } rows[] = {
        {"CutInAGroup", "{\\rtf1 a{\\b b", "a[bold]b", RichTextProblem::cutOff, 13},
        {"CutInAWord", "{\\rtf1 a\\par", "a\n", RichTextProblem::cutOff, 12},
        {"CutInANumber", "{\\rtf1 a\\'9", "a", RichTextProblem::badCharacter, 11},
        {"CutInAPicture", "{\\rtf1 {\\pict\\pngblip 89", "[picture(png 0x0 89)]\uFFFC",
         RichTextProblem::cutOff, 24},
        {"CutInAPictureOfTheDocument", "{\\rtf1{\\qc a\\par}b\\pict\\pngblip 89",
         "a\n{alignment=2}b[picture(png 0x0 89)]\uFFFC", RichTextProblem::cutOff, 34},
        {"CutInBytes", "{\\rtf1 a{\\*\\x\\bin99 b", "a", RichTextProblem::cutOff, 21},
        {"SurplusBrace", "{\\rtf1 a}}b", "a", RichTextProblem::trailingBytes, 9},
        {"NoCharacter", "{\\rtf1\\ansicpg932 a\\'81\\par}", "a\uFFFD\n", RichTextProblem::badCharacter, 24},
        {"TooDeep", deep, "ab", RichTextProblem::tooDeep, 2008},
    };
    for (const auto& [situation, bytes, text, problem, place] : rows) {
        RichText read = readOf(bytes);
        EXPECT_EQ(shownText(read, read.body), text) << situation;
        const RichTextProblems& found = read.problems[static_cast<std::size_t>(problem)];
        EXPECT_EQ(shown(found.count > 0, found.firstPlace), shown(true, place)) << situation;
    }
    EXPECT_FALSE(readOf("no rich text").isRichText);
    EXPECT_TRUE(readOf(" \r\n{\\rtf}\n\0 "s).isRichText);
}

// Files are read in blocks.
TEST(RichTextReading, TakesWhatIsLong) {
    const std::string text(150'000, 'a'), digits(150'000, '1');
    EXPECT_EQ(textOf(text), text);
    EXPECT_EQ(textOf("{\\*\\generator " + text + "}b"), "b");
    EXPECT_EQ(textOf("{\\pict\\pngblip " + digits + "}b"), "[picture(png 0x0 " + digits + ")]\uFFFC[]b");
    for (std::size_t before = 65'500; before < 65'540; ++before)
        ASSERT_EQ(textOf(text.substr(0, before) + "\\rquote\\'e9{\\b b}"),
                  text.substr(0, before) + "\u2019é[bold]b")
            << before;
}

// Each would take hours if what is read once were looked at again and again.
TEST(RichTextReading, TakesTimeInProportionWhateverTheFile) {
    for (const char* piece :
         {"{", "{}", "\\u65 ", "\\tx9{", "\\f1{\\fonttbl\\f1 a", "{\\field", "\\cell", "\\what",
          "{\\footnote a}", "{\\colortbl;", "\\'", "\\sect", "{\\upr", "\\bin1"}) {
        std::string bytes = "{\\rtf1";
        while (bytes.size() < 600'000) bytes += piece;
        EXPECT_TRUE(readOf(bytes).isRichText) << piece;
    }
}

}  // namespace
