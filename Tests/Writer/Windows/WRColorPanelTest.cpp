// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRColorPanel.h"

#include "FormatScope.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSTextField.h"
#include "Text/NSColor.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRPalette.h"

namespace {

TEST(ColorPartsTest, MixAndWriteColours) {
    for (const char* digits : {"#000000", "#FFFFFF", "#808080", "#FF0000", "#1E50B4", "#7A4A1E", "#107A80",
                               "#C83278", "#01FE02", "#FD02FE"})
        EXPECT_EQ(shown(hexOfColor(ColorParts::of(colorOfHex(NSString::ofUTF8(digits))).color())), digits);
    for (NSString* text : {u"1e50b4"_ns, u" #1E50B4 "_ns})
        EXPECT_EQ(shown(hexOfColor(colorOfHex(text))), "#1E50B4");
    EXPECT_EQ(shown(hexOfColor(colorOfHex(u"#1af"_ns))), "#11AAFF");
    for (NSString* text : {u""_ns, u"#"_ns, u"#12345"_ns, u"#12345G"_ns, u"blue!!"_ns, u"#1E50B4 x"_ns})
        EXPECT_FALSE(colorOfHex(text)) << text;
}

struct ColorPanelTest : ::testing::Test, FormatScope {
    ColorPanelTest() : FormatScope(u"one two three"_ns) {
        NSUserDefaults::setStandardUserDefaults(defaults);
        panel = WRColorPanel::init();
        select(0, 3);
        panel->window()->showBeside(window->window());
        screen.turn();
    }
    ~ColorPanelTest() override { NSUserDefaults::setStandardUserDefaults(nullptr); }
    void write(std::u16string_view digits) {
        panel->window()->makeFirstResponder(panel->window()->initialFirstResponder());
        send(panel->window()->firstResponder(), "selectAll:"_sel, id(nullptr));
        screen.type(digits);
        screen.press(u'\r');
    }
    /// The colours of the text, "0-3 #1E50B4 …".
    std::string colors() {
        std::string text;
        for (AttributeRun run : view->textStorage()->runsInRange({0, view->textStorage()->length()}))
            if (auto* color = cast<NSColor>(run.attributes->objectForKey(NSForegroundColorAttributeName)))
                text += std::to_string(run.range.location) + "-" + std::to_string(NSMaxRange(run.range)) +
                        " " + shown(hexOfColor(color)) + " ";
        return text;
    }

    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
    Retained<WRColorPanel> panel;
};

TEST_F(ColorPanelTest, GivesTheSelectionEachColourInOneStep) {
    screen.type(u"#0000ff");  // all digits are selected, and Return is not needed
    EXPECT_EQ(colors(), "0-3 #0000FF ");
    screen.press(u'\t');  // the hue
    screen.press(NSHomeFunctionKey);
    EXPECT_EQ(colors(), "0-3 #FF0000 ");
    screen.press(u'\t');
    screen.press(NSLeftArrowFunctionKey, NSShiftKeyMask);
    EXPECT_EQ(colors(), "0-3 #FF1A1A ");
    write(u"#12");
    EXPECT_EQ(colors(), "0-3 #FF1A1A ") << "that is no colour";
    undo();
    EXPECT_EQ(colors(), "");
    EXPECT_FALSE(document->hasFormats());
    redo();
    EXPECT_EQ(colors(), "0-3 #FF1A1A ");
    EXPECT_EQ(shown(view->undoManager()->undoActionName()), "_Colour");
    // Black and white have hues to be seen.
    for (const auto& [from, to] : {std::pair{u"#000000", "0-3 #B36B00 "}, {u"#ffffff", "0-3 #FF9900 "}}) {
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
    EXPECT_EQ(colors(), "0-3 #00FF00 4-7 #00FF00 ");
    undo();
    EXPECT_EQ(colors(), "0-3 #00FF00 ");
    undo();
    EXPECT_EQ(colors(), "0-3 #FF1A1A ");
    panel->window()->performClose(nullptr);
    EXPECT_EQ(shown(defaults->arrayForKey(WRRecentColorsPreference)->componentsJoinedByString(u" "_ns)),
              "#00FF00 #FF9900 #FF1A1A");
}

}  // namespace
