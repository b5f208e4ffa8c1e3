// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WindowFrames.h"

#include "FormatScope.h"
#include "Writer/Windows/WRDesktop.h"

namespace {

TEST(WindowFrames, ComeBackWhereTheyCanBeSeen) {
    const DefaultsScope defaults;
    InterfaceScope screen;
    const NSRect room = NSScreen::mainScreen()->visibleFrame();
    for (const auto& [situation, noted, expected] : {
             std::tuple{"somewhere", NSRect{{100, 100}, {400, 300}}, NSRect{{100, 100}, {400, 300}}},
             {"partly outside", {{-200, 100}, {400, 300}}, {{0, 100}, {400, 300}}},
             {"near an edge", {{5, 100}, {400, 300}}, {{0, 100}, {400, 300}}},
             {"on a screen that was larger", {{-50, -50}, {9000, 9000}}, room},
             {"on a screen that is gone",
              {{9000, 100}, {400, 300}},
              {{NSMidX(room) - 200, NSMaxY(room) - 300}, {400, 300}}},
         }) {
        noteWindowFrame(u"/letter.rtf"_ns, noted);
        EXPECT_EQ(notedWindowFrame(u"/letter.rtf"_ns), expected) << situation;
    }
    for (unsigned i = 0; i < 100; ++i)
        noteWindowFrame(NSString::stringWithFormat(u"/%u"_ns, i), {{100, 100}, {400, 300}});
    EXPECT_TRUE(NSIsEmptyRect(notedWindowFrame(u"/letter.rtf"_ns)));
    EXPECT_FALSE(NSIsEmptyRect(notedWindowFrame(u"/0"_ns)));
    EXPECT_TRUE(NSIsEmptyRect(notedWindowFrame(nullptr)));
}

TEST(WindowMenu, ListsTheDocuments) {
    const DefaultsScope defaults;
    InterfaceScope screen;
    prepareWindows();
    auto desktop = WRDesktop::init();
    auto menu = NSMenu::init();
    menu->addItemWithTitle_action_keyEquivalent(u"Zoom"_ns, "performZoom:"_sel, u""_ns);
    desktop->setWindowMenu(menu);
    const auto listed = [&] {
        std::string text;
        menu->update();
        for (const auto& item : menu->items()) text += (item->state() ? "|+" : "|") + shown(item->title());
        return text;
    };
    EXPECT_EQ(listed(), "|Zoom");
    std::vector<std::string> titles;
    for (int i = 0; i < 2; ++i) {
        desktop->newDocument(nullptr);
        titles.push_back(shown(screen.app->mainWindow()->title()));
    }
    EXPECT_EQ(listed(), "|Zoom||" + titles[0] + "|+" + titles[1]);
    screen.type(u"x");
    NSWindow* first = cast<NSWindow>(screen.app->orderedWindows()->lastObject());
    first->miniaturize(nullptr);
    screen.turn();
    ASSERT_TRUE(first->isMiniaturized());
    menu->performActionForItemAtIndex(2);
    screen.turn();
    EXPECT_EQ(listed(), "|Zoom||+" + titles[0] + "|*" + titles[1]);
    EXPECT_FALSE(first->isMiniaturized());
}

}  // namespace
