// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRColorPanel.h"

#include "FormatScope.h"

namespace {

TEST(ColorPartsTest, MixAndWriteColours) {
    expectAll(
        {"#000000 -> #000000", "#FFFFFF -> #FFFFFF", "#808080 -> #808080", "#FF0000 -> #FF0000",
         "#7A4A1E -> #7A4A1E", "#107A80 -> #107A80", "#C83278 -> #C83278", "#01FE02 -> #01FE02",
         "#FD02FE -> #FD02FE", "1e50b4 -> #1E50B4", " #1E50B4  -> #1E50B4", "#1af -> #11AAFF", " -> none",
         "# -> none", "#12345 -> none", "#12345G -> none", "blue!! -> none", "#1E50B4 x -> none"},
        [](const std::string& text) {
            NSColor* color = colorOfHex(NSString::ofUTF8(text));
            return color ? hexOfColor(ColorParts::of(color).color()) : u"none"_ns;
        });
}

struct ColorPanelTest : ::testing::Test, FormatScope {
    ColorPanelTest() : FormatScope(u"one two three"_ns) {
        select(0, 3);
        panel->window()->showBeside(window->window());
        screen.turn();
    }
    void write(std::u16string_view digits) {
        panel->window()->makeFirstResponder(panel->window()->initialFirstResponder());
        enter(panel->window(), digits);
    }
    /// What the panel offers as used last.
    std::string used() {
        NSArray* digits = defaults->arrayForKey(WRRecentColorsPreference);
        return digits ? shown(digits->componentsJoinedByString(u" "_ns)) : "";
    }
    std::string colors() { return runs(NSForegroundColorAttributeName); }

    Retained<WRColorPanel> panel = WRColorPanel::init();
};

TEST_F(ColorPanelTest, GivesTheSelectionEachColourInOneStep) {
    screen.type(u"#0000ff");  // all digits are selected, and Return is not needed
    EXPECT_EQ(colors(), "0-3 #0000FF\n");
    screen.press(u'\t');  // the hue
    screen.press(NSHomeFunctionKey);
    EXPECT_EQ(colors(), "0-3 #FF0000\n");
    screen.press(u'\t');
    screen.press(NSLeftArrowFunctionKey, NSShiftKeyMask);
    EXPECT_EQ(colors(), "0-3 #FF1A1A\n");
    write(u"#12");
    EXPECT_EQ(colors(), "0-3 #FF1A1A\n") << "that is no colour";
    undo();
    EXPECT_EQ(colors(), "");
    EXPECT_FALSE(document->hasFormats());
    redo();
    EXPECT_EQ(colors(), "0-3 #FF1A1A\n");
    EXPECT_EQ(shown(view->undoManager()->undoActionName()), "_Colour");
    // Black and white have hues to be seen.
    for (const auto& [from, to] : {std::pair{u"#000000", "0-3 #B36B00\n"}, {u"#ffffff", "0-3 #FF9900\n"}}) {
        write(from);
        screen.press(u'\t');
        for (int i = 0; i < 10; ++i) screen.press(NSRightArrowFunctionKey);
        EXPECT_EQ(colors(), to);
    }
    undo();
    // The same selection after something else was done, and another selection.
    write(u"#00ff00");
    select(4, 3);
    write(u"#0f0");
    EXPECT_EQ(colors(), "0-3 #00FF00\n4-7 #00FF00\n");
    undo();
    EXPECT_EQ(colors(), "0-3 #00FF00\n");
    undo();
    EXPECT_EQ(colors(), "0-3 #FF1A1A\n");
    panel->window()->performClose(nullptr);
    EXPECT_EQ(used(), "#00FF00 #FF9900 #FF1A1A");
}

TEST_F(ColorPanelTest, OffersAColourAsSoonAsItIsUsed) {
    write(u"#0000ff");
    EXPECT_EQ(used(), "#0000FF") << "Return";
    screen.press(u'\t');
    screen.press(NSHomeFunctionKey);
    EXPECT_EQ(used(), "#FF0000") << "a key is let go";
    auto* hue = cast<NSView>(static_cast<id>(panel->window()->firstResponder()));
    screen.drag(hue, {0, 10}, {NSWidth(hue->frame()) / 2, 10});
    EXPECT_EQ("0-3 " + used() + "\n", colors()) << "the mouse is let go";
    select(4, 3);
    panel->window()->makeKeyAndOrderFront(nullptr);
    panel->window()->makeFirstResponder(panel->window()->initialFirstResponder());
    screen.type(u"#00ff00");
    window->show();
    EXPECT_THAT(used(), testing::StartsWith("#00FF00 #")) << "another window has the keys";
}

}  // namespace
