// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRProfilesPanel.h"

#include "FormatScope.h"
#include "Interface/NSTableColumn.h"
#include "Interface/NSTableView.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Writer/Shortcuts/WRShortcut.h"
#include "Writer/Windows/WRShortcutsPanel.h"

namespace {

TEST(ProfilesPanelTest, ComesUpBesideAWindowAndFillsItsWidth) {
    prepareWindows();
    InterfaceScope screen;  // 1280 points wide
    auto other = screen.window({{100, 100}, {400, 300}});
    auto panel = WRProfilesPanel::init();
    for (const auto& [name, x, expected] :
         {std::tuple{"right", 20.0F, 428.0F}, {"left", 800.0F, 272.0F}, {"no room", 400.0F, 760.0F}}) {
        other->setFrameOrigin({x, 600});
        panel->window()->orderOut(nullptr);
        panel->window()->showBeside(other);
        const NSRect frame = panel->window()->frame();
        EXPECT_EQ(NSMinX(frame), expected) << name;
        EXPECT_EQ(NSMaxY(frame), NSMaxY(other->frame())) << name;
    }
    auto* table = cast<NSTableView>(static_cast<id>(panel->window()->initialFirstResponder()));
    EXPECT_EQ(NSMaxX(table->rectOfColumn(2)), table->enclosingScrollView()->contentSize().width);
}

TEST(ShortcutsPanelTest, ListsWhatKeysChoose) {
    InterfaceScope screen;
    auto menu = NSMenu::initWithTitle(u"Main"_ns), edit = NSMenu::initWithTitle(u"Edit"_ns);
    menu->addItemWithTitle_action_keyEquivalent(u"Edit"_ns, SEL(), u""_ns)->setSubmenu(edit);
    edit->addItemWithTitle_action_keyEquivalent(u"Copy"_ns, "copy:"_sel, u"c"_ns);
    edit->addItemWithTitle_action_keyEquivalent(u"Delete"_ns, "delete:"_sel, u""_ns);
    setPelvorShortcut(edit->addItemWithTitle_action_keyEquivalent(u"Look"_ns, "look:"_sel, u""_ns),
                      WRShortcut::shortcutWithText(u"Ctrl+K L"_ns));
    auto panel = WRShortcutsPanel::init();
    panel->takeMenu(menu);
    auto* table = cast<NSTableView>(static_cast<id>(panel->window()->initialFirstResponder()));
    std::string rows;
    for (int row = 0; row < panel->numberOfRowsInTableView(table); ++row)
        for (id column : table->tableColumns())
            rows += shown(panel->tableView_objectValueForTableColumn_row(
                        table, static_cast<NSTableColumn*>(column), row)) +
                    "|";
    EXPECT_EQ(rows, "Copy|Ctrl+C|Edit|Look|Ctrl+K L|Edit|");
    panel->window()->showBeside(nullptr);
    screen.turn();
    screen.press(0x1b);
    EXPECT_FALSE(panel->window()->isVisible());
}

}  // namespace
