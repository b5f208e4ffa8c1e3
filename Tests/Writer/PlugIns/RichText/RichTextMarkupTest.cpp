// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextMarkup.h"

#include "EnvironmentScope.h"
#include "Foundation/NSMutableAttributedString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Prelude.h"
#include "RichTextShown.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSFontManager.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"

namespace {

NSNumber* number(double value) { return NSNumber::numberWithFloat(static_cast<float>(value)); }

NSColor* colour(int red, int green, int blue) {
    return NSColor::colorWithCalibratedRed_green_blue_alpha(
        static_cast<float>(red) / 255, static_cast<float>(green) / 255, static_cast<float>(blue) / 255, 1);
}

NSFont* font(float size, unsigned traits = 0) {
    NSFont* plain = NSFont::fontWithName_size(u"DejaVu Sans"_ns, size);
    return traits ? NSFontManager::sharedFontManager()->convertFont_toHaveTrait(plain, traits) : plain;
}

Retained<NSParagraphStyle> styleOf(const std::function<void(NSMutableParagraphStyle*)>& change,
                                   bool isKeepWithNext = false, bool isPageBreakBefore = false) {
    auto style = NSMutableParagraphStyle::init();
    change(style);
    return WRSheetParagraphStyle::create(style, {isKeepWithNext, false, isPageBreakBefore});
}

RichTextObjects readBack(const RichTextMarkup& markup) {
    RichText read = readRichText(TextFileSource(std::string_view(markup.bytes)));
    EXPECT_THAT(read.leftOut, IsEmpty()) << markup.bytes;
    return objectsOf(read);
}

// Text in a known font, so that all of its attributes are there again.
Retained<NSMutableAttributedString> plainText(NSString* string) {
    return NSMutableAttributedString::initWithString_attributes(
        string, NSDictionary::of({{NSFontAttributeName, font(12)}}));
}

TEST(RichTextMarkup, IsReadBackEqual) {
    const LanguageScope german("de");
    using Change = std::function<void(NSMutableAttributedString*)>;
    const auto with = [](NSString* name, auto* value, NSRange range = {2, 3}) -> Change {
        return [=](NSMutableAttributedString* text) { text->addAttribute_value_range(name, value, range); };
    };
    const auto withStyle = [](auto change, bool isKept = false, bool isBroken = false) -> Change {
        return [=](NSMutableAttributedString* text) {
            text->addAttribute_value_range(NSParagraphStyleAttributeName,
                                           styleOf(change, isKept, isBroken).get(), {0, 7});
        };
    };
    const auto ofString = [](NSString* string, NSRange range = {2, 3}) -> Change {
        return [=](auto* text) { text->replaceCharactersInRange_withString(range, string); };
    };
    const std::pair<const char*, Change> rows[] = {
        {"Nothing", ofString(u""_ns, {0, 14})},
        {"Plain", [](NSMutableAttributedString*) {}},
        {"Characters", ofString(u"\\{}~\u00A0\u00AD\u2011\t\f\u2028\u0007é中🍀\xD800\uFFFC\uE010;"_ns)},
        {"RightToLeft", ofString(u"א"_ns)},
        {"RightToLeftCentred",
         [](NSMutableAttributedString* text) {
             text->replaceCharactersInRange_withString({2, 3}, u"א"_ns);
             const auto centred = styleOf([](auto* style) { style->setAlignment(NSCenterTextAlignment); });
             text->addAttribute_value_range(NSParagraphStyleAttributeName, centred.get(), {0, text->length()});
         }},
        {"EmptyLines", ofString(u"\n\n\n"_ns)},
        {"WordBeforeDigits", with(NSFontAttributeName, font(14))},
        {"Bold", with(NSFontAttributeName, font(12, NSBoldFontMask))},
        {"BoldItalic", with(NSFontAttributeName, font(7.5f, NSBoldFontMask | NSItalicFontMask))},
        {"FixedPitch", with(NSFontAttributeName, NSFont::userFixedPitchFontOfSize(12))},
        {"MissingFont",
         [](NSMutableAttributedString* text) {
             text->addAttribute_value_range(PBFontSubstitutedAttributeName, u"No;Such {Föntß"_ns, {2, 3});
             text->addAttribute_value_range(NSFontAttributeName, NSFont::userFixedPitchFontOfSize(12),
                                            {2, 3});
         }},
        {"Underline", with(NSUnderlineStyleAttributeName, number(NSUnderlineStyleThick))},
        {"Strikethrough", with(NSStrikethroughStyleAttributeName, number(NSUnderlineStyleDouble))},
        {"Superscript", with(NSSuperscriptAttributeName, number(-1))},
        {"BaselineOffset", with(NSBaselineOffsetAttributeName, number(-2.5))},
        {"Kern", with(NSKernAttributeName, number(1.25))},
        {"Expansion", with(NSExpansionAttributeName, number(std::log(1.5f)))},
        {"Capitals", with(PBFontCaseChangeAttributeName, number(2))},
        {"Language", with(NSLanguageAttributeName, u"de-AT"_ns)},
        {"LanguageAlone", with(NSLanguageAttributeName, u"fr"_ns)},
        {"LanguageOfTheUser", with(NSLanguageAttributeName, u"de-DE"_ns)},
        {"LanguageWithoutNumber", with(NSLanguageAttributeName, u"eo"_ns)},
        {"Colour", with(NSForegroundColorAttributeName, colour(1, 2, 3))},
        {"Background", with(NSBackgroundColorAttributeName, colour(255, 128, 0))},
        {"UnderlineColour", with(NSUnderlineColorAttributeName, colour(0, 0, 255))},
        {"Link", with(NSLinkAttributeName, u"https://x.org/\"a\\b\"?c={d}"_ns)},
        {"Anchor", with(NSLinkAttributeName, u"pelvor-anchor:a b"_ns)},
        {"CharacterStyle", with(PBStyleCharacterAttributeName, u"Émphase; {1}"_ns)},
        {"LinkOverParagraphs",
         [](NSMutableAttributedString* text) {
             text->addAttribute_value_range(NSLinkAttributeName, u"a"_ns, {2, 9});
             text->addAttribute_value_range(NSParagraphStyleAttributeName, styleOf([](auto*) {}, true).get(),
                                            {7, 7});
         }},
        {"ParagraphStyle", with(PBStyleParagraphAttributeName, u"heading 1"_ns, {0, 7})},
        {"Alignment", withStyle([](auto* style) { style->setAlignment(NSJustifiedTextAlignment); })},
        {"Direction",
         withStyle([](auto* style) { style->setBaseWritingDirection(NSWritingDirectionRightToLeft); })},
        {"Indents", withStyle([](auto* style) {
             style->setHeadIndent(36.05f);
             style->setFirstLineHeadIndent(18);
             style->setTailIndent(-9);
         })},
        {"Spacing", withStyle([](auto* style) {
             style->setParagraphSpacing(6);
             style->setParagraphSpacingBefore(12);
         })},
        {"LineHeightFactor", withStyle([](auto* style) { style->setLineHeightMultiple(1.15f * 240 / 240); })},
        {"LeastLineHeight", withStyle([](auto* style) { style->setMinimumLineHeight(20); })},
        {"ExactLineHeight", withStyle([](auto* style) {
             style->setMinimumLineHeight(20);
             style->setMaximumLineHeight(20);
         })},
        {"Tabs", withStyle([](auto* style) {
             for (int type = NSLeftTabStopType; type <= NSDecimalTabStopType; ++type)
                 style->addTabStop(NSTextTab::initWithType_location(static_cast<NSTextTabType>(type),
                                                                    static_cast<float>(30 * type + 20))
                                       .get());
         })},
        {"Hyphenation", withStyle([](auto* style) { style->setHyphenationFactor(1); })},
        {"KeptWithNext", withStyle([](auto*) {}, true)},
        {"OnANewPage", withStyle([](auto*) {}, false, true)},
    };
    for (const auto& [situation, change] : rows) {
        auto text = plainText(u"12 45\n\n89 word"_ns);
        change(text);
        const RichTextMarkup markup = markupOfRichText(text, nullptr);
        EXPECT_THAT(markup.leftOut, IsEmpty()) << situation;
        const RichTextObjects again = readBack(markup);
        EXPECT_TRUE(again.text->isEqualToAttributedString(text))
            << situation << "\n"
            << markup.bytes << text->description() << again.text->description();
        EXPECT_FALSE(again.settings) << situation;
    }
}

TEST(RichTextMarkup, HasSettings) {
    auto* settings = NSDictionary::of({{WRPageWidthKey, number(595.3)},
                                       {WRFooterPlaceKey, number(36)},
                                       {WRTitleKey, u"T{é};"_ns},
                                       {WRHeaderKey, plainText(u"\uE012 \uE010 of \uE011\nx"_ns).get()},
                                       {WRFooterKey, plainText(u"\n"_ns).get()}});
    const RichTextObjects again = readBack(markupOfRichText(plainText(u"a"_ns).get(), settings));
    EXPECT_TRUE(again.settings->isEqual(settings)) << again.settings.get();
    settings = NSDictionary::of({{WRHeaderKey, plainText(u"\uE012"_ns).get()}});
    const RichTextMarkup markup = markupOfRichText(plainText(u"a"_ns).get(), settings, u"b}.rtf"_ns);
    EXPECT_THAT(markup.bytes, HasSubstr("{\\field{\\*\\fldinst FILENAME}{\\fldrslt b\\u125?.rtf}}"));
    EXPECT_TRUE(readBack(markup).settings->isEqual(settings));
}

TEST(RichTextMarkup, EndsEveryParagraphTheSameWayAndNamesWhatItLeavesOut) {
    auto text = plainText(u"a\r\nb\rc\u2029d\r\n"_ns);
    text->addAttribute_value_range(NSToolTipAttributeName, u"x"_ns, {0, 2});  // cuts the first end
    text->addAttribute_value_range(NSSuperscriptAttributeName, number(2), {3, 1});
    auto style = NSMutableParagraphStyle::init();
    style->setLineSpacing(3);
    text->addAttribute_value_range(NSParagraphStyleAttributeName, style, {0, 3});
    const RichTextMarkup markup = markupOfRichText(text, nullptr);
    EXPECT_EQ(shown(readBack(markup).text->string()), "a\nb\nc\nd\n");
    EXPECT_THAT(markup.leftOut, ElementsAre(u"NSSuperScript", u"NSToolTip", u"lineSpacing"));
}

TEST(RichTextMarkup, TellsLanguagesToOtherPrograms) {
    const LanguageScope french("fr");
    const std::pair<NSString*, const char*> rows[] = {
        {u"de-AT"_ns, "\\lang3079 a"},
        {u"fr"_ns, "\\lang1036{\\*\\pelvorlang fr}a"},
        {u"fr-FR"_ns, "\\lang1036{\\*\\pelvorlang fr-FR}a"},
        {u"pt_BR"_ns, "\\lang1046{\\*\\pelvorlang pt_BR}a"},
        {u"nn"_ns, "\\lang2068{\\*\\pelvorlang nn}a"},
        {u"zh-Hant-MO"_ns, "\\lang1028{\\*\\pelvorlang zh-Hant-MO}a"},
        {u"eo"_ns, "\\lang1024{\\*\\pelvorlang eo}a"},
    };
    for (const auto& [name, bytes] : rows) {
        auto text = plainText(u"a"_ns);
        text->addAttribute_value_range(NSLanguageAttributeName, name, {0, 1});
        EXPECT_THAT(markupOfRichText(text, nullptr).bytes, HasSubstr(bytes));
    }
    auto text = plainText(u"a"_ns);
    text->addAttribute_value_range(NSLanguageAttributeName, u"no name"_ns, {0, 1});
    EXPECT_THAT(markupOfRichText(text, nullptr).leftOut, ElementsAre(u"NSLanguage"));
    EXPECT_THAT(
        markupOfRichText(plainText(u"a"_ns).get(), nullptr).bytes,
        AllOf(HasSubstr("\\deflang1036{\\*\\pelvorunmarked}\n"), HasSubstr("\\pard\\plain\\lang1036 a}")));
}

// Other programs are stricter than the reader here, which takes words in any order and numbers of any kind.
TEST(RichTextMarkup, KeepsToThePublishedFormat) {
    const LanguageScope english("en");
    const auto textWith = [](NSUInteger end, std::initializer_list<NSDictionaryEntry> attributes) {
        auto text = plainText(u"a\nb"_ns);
        text->addAttributes_range(NSDictionary::of(attributes), {0, end});
        return text;
    };
    const auto hyphenated = styleOf([](auto* style) { style->setHyphenationFactor(1); });
    const auto rightToLeft = styleOf([](auto* style) {
        style->setBaseWritingDirection(NSWritingDirectionRightToLeft);
        style->setHeadIndent(36);
        style->setTailIndent(-10);
    });
    const struct {
        const char* situation;
        Retained<NSMutableAttributedString> text;
        const char* bytes;
    } rows[] = {
        {"NameOfAFontFirst",
         textWith(2, {{NSFontAttributeName, NSFont::fontWithName_size(u"Noto Sans Hebrew"_ns, 12)},
                      {PBFontSubstitutedAttributeName, u"Lost"_ns}}),
         "{\\f0\\fnil\\fcharset0 Lost{\\*\\falt Noto Sans Hebrew};}"},
        {"FontOfNoText", NSMutableAttributedString::init(), "{\\fonttbl{\\f0\\"},
        {"NumbersOfStyles",
         textWith(2, {{PBStyleParagraphAttributeName, u"A"_ns}, {PBStyleCharacterAttributeName, u"A"_ns}}),
         "{\\stylesheet{\\s1 A;}{\\*\\cs2 A;}}"},
        {"Hyphenation", textWith(2, {{NSParagraphStyleAttributeName, hyphenated.get()}}),
         "\\widowctrl\\hyphauto\n\\pard\\plain\\lang1033 a\\par\n\\pard\\hyphpar0 b}"},
        {"Indents", textWith(2, {{NSParagraphStyleAttributeName, rightToLeft.get()}}),
         "\\pard\\rtlpar\\qr{\\*\\pelvornatural}\\li720\\fi-720\\ri200\\rtlpar\\lin720\\rin200 "
         "a\\par\n\\pard b"},
        {"DirectionOfTheText", plainText(u"1 א\n\u200F\nb"_ns),
         "\\pard\\rtlpar\\qr{\\*\\pelvornatural}1 \\u1488?\\par\n\\u8207?\\par\n\\pard b}"},
    };
    for (const auto& [situation, text, bytes] : rows)
        EXPECT_THAT(markupOfRichText(text, nullptr).bytes, HasSubstr(bytes)) << situation;
    auto* wide = NSDictionary::of({{WRPageWidthKey, number(842)}, {WRPageHeightKey, number(595)}});
    EXPECT_THAT(markupOfRichText(plainText(u"a"_ns).get(), wide).bytes,
                HasSubstr("\\landscape\\paperw16840\\paperh11900\n"));
}

// A document as a well-known word processor writes it.
TEST(RichTextLetter, IsReadWell) {
    RichText read = readRichText(TextFileSource(RICH_TEXT_LETTER));
    EXPECT_EQ(NSString::of(read.fields[0])->toUTF8(), "A letter — café");
    const std::string header = shownText(read, read.header);
    EXPECT_THAT(header, HasSubstr("italic]A letter"));
    EXPECT_THAT(shownText(read, read.footer), HasSubstr("Page \uE010 of \uE011"));
    const std::string text = shownText(read, read.body);
    for (const char* part :
         {"size=32 bold language=en-GB]Dear Anna,",
          "it’s “quoted” – “so” — 50\u00A0km, e\u00ADmail, well\u2011known.\u2028Next line.",
          "]•\t[font]one point", "Привет", "日本", "αβγ", "our page", "link(https://example.org/a?b=1)",
          "link(pelvor-anchor:end)", "Name\tNumber\t\n", "Bolt\u2028M8\t12\tsteel\n",
          "picture(png 10x5 89504e470d0a1a0a)]\uFFFC", "שלום", "1[font] The note.\n",
          "tabs 1440 4320R 7200D"})
        EXPECT_THAT(text, HasSubstr(part));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("hidden")));
    EXPECT_THAT(read.leftOut, AllOf(Contains("footnote"), Contains("cellx"), Contains("v"),
                                    ::testing::Not(Contains("rsid"))));
    for (const RichTextProblems& problems : read.problems) EXPECT_EQ(problems.count, 0u);
}

// What one program copies, another one pastes: whole paragraphs or parts of them.
TEST(RichTextPasteboard, GivesTheTextOfARange) {
    registerLibrary(richTextPlugIn);
    auto text = NSMutableAttributedString::initWithString(u"One\nTwo {\\par} ü\nThree"_ns);
    text->addAttribute_value_range(NSFontAttributeName, font(12), {0, text->length()});
    text->addAttribute_value_range(NSFontAttributeName, font(12, NSBoldFontMask), {4, 3});
    for (const NSRange range : {NSRange{0, 4}, {1, 4}, {4, 13}, {4, 12}, {0, text->length()}, {2, 0}}) {
        id data = send<id>(text.get(), "RTFFromRange:documentAttributes:"_sel, range, nullptr);
        id back =
            send<id>(NSAttributedString::classObject(), "initWithRTF:documentAttributes:"_sel, data, nullptr);
        auto* pasted = cast<NSAttributedString>(back);
        ASSERT_TRUE(pasted) << range;
        EXPECT_EQ(shown(pasted->string()), shown(text->string()->substringWithRange(range))) << range;
        if (range.location == 4) {
            auto* bold = static_cast<NSFont*>(
                pasted->attribute_atIndex_effectiveRange(NSFontAttributeName, 0, nullptr));
            EXPECT_TRUE(NSFontManager::sharedFontManager()->traitsOfFont(bold) & NSBoldFontMask);
        }
    }
    auto garbage = NSData::dataWithBytes_length("{\\rt", 4);
    EXPECT_FALSE(
        send<id>(NSAttributedString::classObject(), "initWithRTF:documentAttributes:"_sel, garbage, nullptr));
}

}  // namespace
