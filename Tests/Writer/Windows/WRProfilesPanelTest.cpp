// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRProfilesPanel.h"

#include "Interface/NSScrollView.h"
#include "Interface/NSTableView.h"
#include "InterfaceScope.h"
#include "PBPostLoader.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

TEST(ProfilesPanelTest, ComesUpBesideAWindowAndFillsItsWidth) {
    registerLibrary(windowsLibrary);
    PBPostLoader::processClassesStartingRegistry(false);
    InterfaceScope screen;  // 1280 points wide
    auto other = screen.window({{100, 100}, {400, 300}});
    auto panel = WRProfilesPanel::init();
    for (const auto& [name, x, expected] :
         {std::tuple{"right", 20.0F, 428.0F}, {"left", 800.0F, 272.0F}, {"no room", 400.0F, 760.0F}}) {
        other->setFrameOrigin({x, 600});
        panel->window()->orderOut(nullptr);
        panel->showBeside(other);
        const NSRect frame = panel->window()->frame();
        EXPECT_EQ(NSMinX(frame), expected) << name;
        EXPECT_EQ(NSMaxY(frame), NSMaxY(other->frame())) << name;
    }
    auto* table = cast<NSTableView>(static_cast<id>(panel->window()->initialFirstResponder()));
    EXPECT_EQ(NSMaxX(table->rectOfColumn(2)), table->enclosingScrollView()->contentSize().width);
}

}  // namespace
