// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFormatCommands.h"

#include "FormatScope.h"
#include "Text/NSFontManager.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"
#include "Writer/Windows/WRColorMenu.h"
#include "Writer/Windows/WRStyleMenu.h"

namespace {

struct FormatCommandsTest : ::testing::Test, FormatScope {
    FormatCommandsTest() : FormatScope(u"one two\nthree\n\nfour"_ns) {}

    // For each character "B" where it is bold, "I" where it is italic, "X" where it is both, else ".".
    std::string faces() {
        std::string text;
        for (NSUInteger i = 0; i < view->textStorage()->length(); ++i) {
            id font = view->textStorage()->attribute_atIndex_effectiveRange(NSFontAttributeName, i, nullptr);
            const auto traits = NSFontManager::sharedFontManager()->traitsOfFont(static_cast<NSFont*>(font));
            text += ".IBX"[traits & (NSItalicFontMask | NSBoldFontMask)];
        }
        return text;
    }
};

TEST_F(FormatCommandsTest, ToggleTheSelectionInOneStep) {
    EXPECT_EQ(state("toggleBold:"_sel), "off");
    select(4, 6);
    choose("toggleBold:"_sel);
    EXPECT_EQ(faces(), "....BBBBBB.........");
    EXPECT_EQ(state("toggleBold:"_sel), "on");
    EXPECT_TRUE(document->hasFormats());
    auto undoItem = item("undo:"_sel);
    EXPECT_TRUE(send<bool>(view, "validateMenuItem:"_sel, undoItem.get()));
    EXPECT_EQ(shown(undoItem->title()), "Undo Change");
    select(0, 6);
    EXPECT_EQ(state("toggleBold:"_sel), "mixed");
    choose("toggleBold:"_sel);
    EXPECT_EQ(faces(), "BBBBBBBBBB.........") << "partly bold text becomes bold";
    undo();
    EXPECT_EQ(faces(), "....BBBBBB.........");
    undo();
    EXPECT_EQ(faces(), "...................");
    EXPECT_FALSE(document->hasFormats());
    redo();
    EXPECT_EQ(faces(), "....BBBBBB.........");
    EXPECT_TRUE(document->hasFormats());
}

// Behind a heading comes text, in the same step as the line's end.
TEST_F(FormatCommandsTest, EndAHeadingByReturn) {
    expectAll({"One|\nTwo 4 -> text", "One| 3 -> text", "O|ne 1 -> heading 1", "|One 0 -> heading 1"},
              [&](const std::string& given) {
                  const std::size_t mark = given.find('|');
                  const auto place = static_cast<NSUInteger>(mark);
                  std::string content = given.substr(0, given.rfind(' '));
                  open(NSString::ofUTF8(content.erase(mark, 1)));
                  choose("takeParagraphStyleFrom:"_sel, 0, u"heading 1"_ns);
                  select(place);
                  screen.type(u"x");
                  screen.press(NSCarriageReturnCharacter);
                  auto* name =
                      cast<NSString>(view->typingAttributes()->objectForKey(PBStyleParagraphAttributeName));
                  const std::string found = name ? name->toUTF8() : "none";
                  const auto style = shown(runs(PBStyleParagraphAttributeName));
                  undo();
                  if (found == "text") content.insert(mark, "x");  // elsewhere the line's end is only typed
                  EXPECT_EQ(shown(view->string()), content) << style;
                  return found;
              });
}

TEST_F(FormatCommandsTest, ChangeWhatIsTypedNextAtACaret) {
    select(3);
    choose("toggleBold:"_sel);
    choose("toggleUnderline:"_sel);
    EXPECT_EQ(state("toggleBold:"_sel), "on");
    EXPECT_FALSE(document->hasFormats());
    screen.type(u"xy");
    EXPECT_TRUE(document->hasFormats());
    choose("toggleBold:"_sel);
    choose("toggleUnderline:"_sel);
    choose("makeTextBigger:"_sel);
    screen.type(u"z");
    EXPECT_EQ(faces().substr(0, 8), "...BB...");
    EXPECT_THAT(runs(NSFontAttributeName), HasSubstr("5-6 NotoSerif-Regular 12\n"));
    EXPECT_EQ(runs(NSUnderlineStyleAttributeName), "3-5 1\n");
}

TEST_F(FormatCommandsTest, AreNotUndoneTogetherWithTyping) {
    select(3);
    screen.type(u"ab");
    select(3, 2);
    choose("toggleStrikethrough:"_sel);
    select(5);
    screen.type(u"c");
    undo();
    EXPECT_EQ(shown(view->string()->substringToIndex(6)), "oneab ");
    EXPECT_EQ(runs(NSStrikethroughStyleAttributeName), "3-5 1\n");
    undo();
    EXPECT_EQ(runs(NSStrikethroughStyleAttributeName), "");
    EXPECT_EQ(shown(view->string()->substringToIndex(5)), "oneab");
}

TEST_F(FormatCommandsTest, ChangeWholeParagraphsAndKeepThePageRules) {
    select(9);
    choose("takeParagraphStyleFrom:"_sel, 0, u"heading 1"_ns);
    EXPECT_EQ(state("alignParagraphs:"_sel, NSLeftTextAlignment), "on") << "natural";
    choose("alignParagraphs:"_sel, NSCenterTextAlignment);
    choose("takeLineSpacingFrom:"_sel, 150);
    choose("increaseIndent:"_sel);
    EXPECT_EQ(view->selectedRange(), (NSRange{9, 0}));
    NSParagraphStyle* style = styleAt(13);
    EXPECT_EQ(style->alignment(), NSCenterTextAlignment);
    EXPECT_FLOAT_EQ(style->lineHeightMultiple(), 1.5F);
    EXPECT_FLOAT_EQ(style->headIndent(), 36);
    EXPECT_TRUE(pageRulesOf(style).isKeepWithNext && pageRulesOf(style).isKeepTogether);
    EXPECT_EQ(styleAt(0)->alignment(), NSNaturalTextAlignment);
    EXPECT_EQ(state("takeLineSpacingFrom:"_sel, 150), "on");
    EXPECT_EQ(state("decreaseIndent:"_sel), "off");
    undo();
    EXPECT_FLOAT_EQ(styleAt(9)->headIndent(), 0);
    EXPECT_EQ(view->selectedRange(), (NSRange{9, 0})) << "the caret stays";
    EXPECT_EQ(state("decreaseIndent:"_sel), "disabled");
    select(0, 12);
    EXPECT_EQ(state("alignParagraphs:"_sel, NSCenterTextAlignment), "mixed");
}

TEST_F(FormatCommandsTest, KeepWhatDiffersInAParagraphThatGetsAStyle) {
    select(4, 3);
    choose("toggleItalic:"_sel);
    select(0);
    EXPECT_EQ(state("takeParagraphStyleFrom:"_sel, 0, u"text"_ns), "on") << "of text without a style";
    choose("takeParagraphStyleFrom:"_sel, 0, u"Heading 2"_ns);
    EXPECT_EQ(state("takeParagraphStyleFrom:"_sel, 0, u"heading 2"_ns), "on");
    EXPECT_EQ(runs(PBStyleParagraphAttributeName), "0-4 Heading 2\n4-7 Heading 2\n7-8 Heading 2\n");
    EXPECT_EQ(faces().substr(0, 9), "BBBBXXXB.");
    select(0, 7);
    EXPECT_EQ(state("takeParagraphStyleFrom:"_sel, 0, u"text"_ns), "off");
    choose("clearFormats:"_sel);
    EXPECT_EQ(faces().substr(0, 9), "BBBBBBBB.") << "the style stays";
}

TEST_F(FormatCommandsTest, ExchangeCharacterStyles) {
    const auto before = runs(NSFontAttributeName);
    select(0, 3);
    choose("takeCharacterStyleFrom:"_sel, 0, u"strong emphasis"_ns);
    EXPECT_EQ(runs(PBStyleCharacterAttributeName), "0-3 strong emphasis\n");
    EXPECT_EQ(state("takeCharacterStyleFrom:"_sel, 0, u"strong emphasis"_ns), "on");
    choose("takeCharacterStyleFrom:"_sel, 0, u"emphasis"_ns);
    EXPECT_EQ(faces().substr(0, 4), "III.");
    choose("takeCharacterStyleFrom:"_sel);
    EXPECT_EQ(runs(PBStyleCharacterAttributeName), "");
    EXPECT_EQ(runs(NSFontAttributeName), before);
    EXPECT_EQ(state("takeCharacterStyleFrom:"_sel), "on");
}

TEST_F(FormatCommandsTest, LeaveADocumentPlainThatHasNoFormats) {
    screen.type(u"x");
    window->pageViewDidReceiveFormats(view);  // with what was pasted
    EXPECT_TRUE(document->hasFormats());
    undo();
    EXPECT_FALSE(document->hasFormats());
    // What is chosen for what is typed next: taken back, used, and used again after that was undone.
    std::string states;
    for (const char16_t* step : {u"", u"", u"x", u"", u"y", u"z", u"<", u"<", u">", u">", u"<"}) {
        if (*step == u'<')
            undo();
        else if (*step == u'>')
            redo();
        else if (*step)
            screen.type(step);
        else
            choose("toggleBold:"_sel);
        states += document->hasFormats() ? 'F' : '.';
    }
    EXPECT_EQ(states, "....FF...F.");
    choose("clearFormats:"_sel);
    EXPECT_FALSE(document->hasFormats());
    view->setEditable(false);
    select(0, 5);
    EXPECT_EQ(state("toggleBold:"_sel), "disabled");
    choose("toggleBold:"_sel);
    choose("takeParagraphStyleFrom:"_sel, 0, u"code"_ns);
    EXPECT_FALSE(document->hasFormats());
}

TEST(EmptyDocumentTest, IsFormattedBeforeSomethingIsTyped) {
    FormatScope empty(u""_ns);
    empty.choose("takeParagraphStyleFrom:"_sel, 0, u"heading 1"_ns);
    empty.choose("alignParagraphs:"_sel, NSRightTextAlignment);
    EXPECT_FALSE(empty.document->hasFormats()) << "there is nothing that has them";
    empty.screen.type(u"A");
    EXPECT_EQ(empty.runs(PBStyleParagraphAttributeName), "0-1 heading 1\n");
    EXPECT_EQ(empty.styleAt(0)->alignment(), NSRightTextAlignment);
    EXPECT_TRUE(empty.document->hasFormats());
}

TEST_F(FormatCommandsTest, FillTheMenusOfStylesAndColours) {
    auto styles = NSMenu::init(), colours = NSMenu::init();
    WRStyleMenu::init()->menuNeedsUpdate(styles);
    EXPECT_GE(styles->indexOfItemWithRepresentedObject(u"heading 3"_ns), 0);
    EXPECT_GE(styles->indexOfItemWithRepresentedObject(u"strong"_ns), 0);
    EXPECT_EQ(styles->indexOfItemWithRepresentedObject(u"footer"_ns), -1);
    WRColorMenu::init()->menuNeedsUpdate(colours);
    select(0, 3);
    colours->performActionForItemAtIndex(4);
    id colour = colours->itemAtIndex(4)->representedObject();
    EXPECT_EQ(state("takeColorFrom:"_sel, 0, colour), "on");
    EXPECT_EQ(state("takeColorFrom:"_sel), "off");
    colours->performActionForItemAtIndex(0);
    EXPECT_EQ(runs(NSForegroundColorAttributeName), "");
}

}  // namespace
