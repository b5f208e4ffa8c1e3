// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/StyleSheet.h"

#include "Foundation/NSMutableAttributedString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Prelude.h"
#include "TemporaryFolder.h"
#include "Text/NSFontManager.h"
#include "Text/NSTextTab.h"
#include "Writer/PlugInProtocol.h"

namespace {

struct StyleSheetTest : ::testing::Test {
    std::optional<StyleSheet> read(const std::string& list) {
        return StyleSheet::read(NSString::ofUTF8(folder.write("s.plist", list)), &problem);
    }

    TemporaryFolder folder;
    NSString* problem = nullptr;
};

NSDictionary* attributesAt(NSAttributedString* text, NSUInteger index) {
    return text->attributesAtIndex_effectiveRange(index, nullptr);
}
std::string fontAt(NSAttributedString* text, NSUInteger index) {
    auto* font = cast<NSFont>(attributesAt(text, index)->objectForKey(NSFontAttributeName));
    return font ? shown(font->fontName(), font->pointSize()) : "";
}

constexpr const char* kSheet = R"({
    page = { size = A5; "left margin" = 30; width = 400.5; header = "{title}\t{page}/{pages}"; };
    "paragraph styles" = {
        text = { "font family" = ("No Such Font", "DejaVu Serif"); size = 10; colour = "#FF8000"; };
        "Heading 1" = {
            "based on" = Text; bold = yes; size = 20; alignment = center; "space before" = 12; hyphenation = 0.5;
            "keep with next" = yes; language = fr; "end indent" = 5; "line height" = 0.1;
            tabs = ({ place = 20; }, { place = 40; kind = center; },
                    { place = 90; kind = decimal; "decimal mark" = ","; });
        };
    };
    "character styles" = { strong = { bold = yes; underline = double; }; };
})";

TEST_F(StyleSheetTest, HasStylesAndSettings) {
    const auto sheet = read(kSheet);
    ASSERT_TRUE(sheet) << problem->toUTF8();
    EXPECT_FALSE(sheet->paragraphStyle(u"other"_ns));
    const NamedStyle* heading = sheet->paragraphStyle(u"HEADING 1"_ns);
    ASSERT_TRUE(heading);
    NSDictionary* attributes = attributesOfStyle(*heading);
    auto text = NSAttributedString::initWithString_attributes(u"x"_ns, attributes);
    EXPECT_EQ(fontAt(text, 0), "DejaVuSerif-Bold 20");
    EXPECT_EQ(shown(attributes->objectForKey(NSLanguageAttributeName)), "fr");
    auto* colour = attributes->objectForKey(NSForegroundColorAttributeName);
    EXPECT_EQ(colour,
              sheet->paragraphStyle(u"text"_ns)->attributes->objectForKey(NSForegroundColorAttributeName));
    auto* style = cast<NSParagraphStyle>(attributes->objectForKey(NSParagraphStyleAttributeName));
    EXPECT_TRUE(pageRulesOf(style).isKeepWithNext);
    EXPECT_EQ(shown(style->alignment(), style->paragraphSpacingBefore(), style->tailIndent(),
                    style->hyphenationFactor(), style->lineHeightMultiple(),
                    style->tabStops()->componentsJoinedByString(u" "_ns)),
              shown(NSCenterTextAlignment, 12.0F, -5.0F, 0.5F, 0.1F, u"20L 40C 90D"_ns));
    NSDictionary* settings = sheet->settings();
    EXPECT_EQ(shown(settings->objectForKey(WRPageWidthKey), settings->objectForKey(WRLeftMarginKey)),
              "400.5 30");
    auto* header = cast<NSAttributedString>(settings->objectForKey(WRHeaderKey));
    EXPECT_EQ(header->string()->toUTF16(), u"\uE012\t\uE010/\uE011");
    EXPECT_EQ(fontAt(header, 0), "DejaVuSerif 10");
}

TEST_F(StyleSheetTest, IsRefusedWithThePlaceAndTheReason) {
    const struct {
        const char *list, *place, *reason;
    } cases[] = {
        {"{ colours = {}; }", "colours", "this key is not known."},
        {"{ page = A4; }", "page", "a dictionary is needed."},
        {"{ page = { size = a44; }; }", "page / size",
         "one of a3, a4, a5, legal, letter is needed, not \"a44\"."},
        {"{ page = { \"left margin\" = \"-1\"; }; }", "page / left margin",
         "a number from 0 to 14400 is needed, not \"-1\"."},
        {"{ \"paragraph styles\" = { a = { size = 12pt; }; }; }", "paragraph styles / a / size",
         "a number from 1 to 1000 is needed, not \"12pt\"."},
        {"{ \"paragraph styles\" = { a = { colour = red; }; }; }", "paragraph styles / a / colour",
         "a colour like \"#1A2B3C\" is needed, not \"red\"."},
        {"{ \"paragraph styles\" = { a = { tabs = ({ place = 1; }, { kind = up; }); }; }; }",
         "paragraph styles / a / tabs / 2 / kind",
         "one of left, right, center, decimal is needed, not \"up\"."},
        {"{ \"paragraph styles\" = { a = { \"based on\" = b; }; }; }", "paragraph styles / a / based on",
         "there is no style \"b\"."},
        {"{ \"paragraph styles\" = { a = { \"based on\" = b; }; b = { \"based on\" = a; }; }; }",
         "paragraph styles / a / based on / b / based on / a", "the style is based on itself."},
        {"{ \"paragraph styles\" = { a = {}; A = {}; }; }", "paragraph styles / A",
         "another style has this name."},
        {"{ \"character styles\" = { a = { indent = 3; }; }; }", "character styles / a / indent",
         "this key is not known."},
    };
    for (const auto& [list, place, reason] : cases) {
        EXPECT_FALSE(read(list));
        // The texts are keys here, where there is no bundle of the plug-in.
        EXPECT_EQ(problem->toUTF8(),
                  "_The style sheet \"" + folder.path("s.plist") + "\" at \"" + place + "\": _" + reason);
    }
    std::string chain = "{ \"paragraph styles\" = { ";
    for (int i = 99999; i > 0; --i)
        chain += "s" + std::to_string(i) + " = { \"based on\" = s" + std::to_string(i - 1) + "; }; ";
    EXPECT_FALSE(read(chain + "s0 = {}; }; }"));
    EXPECT_THAT(problem->toUTF8(), HasSubstr("_the style is based on too many others."));
    EXPECT_FALSE(read("{ page = "));
    EXPECT_THAT(problem->toUTF8(), HasSubstr("could not be read: line 1"));
    EXPECT_FALSE(StyleSheet::read(NSString::ofUTF8(folder.path("none.plist")), &problem));
    EXPECT_THAT(problem->toUTF8(), HasSubstr("none.plist\" could not be read: the file does not exist"));
}

TEST_F(StyleSheetTest, SetsTextThatNamesItsStyles) {
    const auto defaults = read(kSheet);
    auto text = NSMutableAttributedString::initWithString(u"Title\nplain strong\n"_ns);
    text->addAttribute_value_range(PBStyleParagraphAttributeName, u"heading 1"_ns, {0, 6});
    text->addAttribute_value_range(PBStyleParagraphAttributeName, u"no such style"_ns, {6, 13});
    text->addAttribute_value_range(PBStyleCharacterAttributeName, u"strong"_ns, {12, 6});
    auto set = textInStyles(text, *defaults, nullptr);
    EXPECT_EQ(fontAt(set, 0), "DejaVuSerif-Bold 20");
    EXPECT_EQ(fontAt(set, 6), "DejaVuSerif 10");
    EXPECT_EQ(fontAt(set, 12), "DejaVuSerif-Bold 10");
    EXPECT_EQ(shown(attributesAt(set, 12)->objectForKey(NSUnderlineStyleAttributeName)), "9");

    const auto own = read("{ \"paragraph styles\" = { text = { size = 8; }; }; }");
    set = textInStyles(text, *defaults, &*own);
    EXPECT_EQ(fontAt(set, 0), "DejaVuSerif-Bold 20");
    EXPECT_EQ(fontAt(set, 6).substr(fontAt(set, 6).find(' ')), " 8");
}

// What is unlike the rest of its paragraph was made so by hand.
TEST_F(StyleSheetTest, LeavesDifferencesInsideParagraphs) {
    const auto sheet = read(kSheet);
    NSFont* plain = NSFont::fontWithName_size(u"DejaVuSans"_ns, 12);
    NSFont* bold = NSFontManager::sharedFontManager()->convertFont_toHaveTrait(plain, NSBoldFontMask);
    auto text = NSMutableAttributedString::initWithString_attributes(
        u"many words and bold small\nother"_ns, NSDictionary::of({{NSFontAttributeName, plain}}));
    text->addAttribute_value_range(NSFontAttributeName, bold, {15, 4});
    text->addAttribute_value_range(NSFontAttributeName,
                                   NSFontManager::sharedFontManager()->convertFont_toSize(plain, 6), {20, 5});
    text->addAttribute_value_range(PBStyleParagraphAttributeName, u"text"_ns, {0, 26});
    EXPECT_TRUE(textInStyles(text, *sheet, nullptr)->isEqualToAttributedString(text));
    auto set = textInStyles(text, *sheet, &*sheet);
    EXPECT_EQ(fontAt(set, 0), "DejaVuSerif 10");
    EXPECT_EQ(fontAt(set, 15), "DejaVuSerif-Bold 10");
    EXPECT_EQ(fontAt(set, 20), "DejaVuSerif 5");
    EXPECT_EQ(fontAt(set, 26), "DejaVuSans 12") << "a paragraph without a style";
}

}  // namespace
