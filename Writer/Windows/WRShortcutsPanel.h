// SPDX-License-Identifier: Apache-2.0
// WRShortcutsPanel: a window with a table of the commands that keys choose.
#pragma once

#include <vector>

#include "Writer/Windows/WRTablePanel.h"

namespace pelvor {

class NSMenu;

/// Lists the items of the main menu that have a shortcut, with their menus and keys, as they are when the
/// window comes up. Main thread.
class WRShortcutsPanel : public WRTablePanel {
    PELVOR_CLASS(WRShortcutsPanel, WRTablePanel);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRShortcutsPanel> init(Class* cls = classObject());

    /// Lists the menu's items anew.
    void takeMenu(NSMenu* menu);

  protected:
    WRShortcutsPanel() = default;
    ~WRShortcutsPanel() = default;

    NSUInteger rowCount() override { return static_cast<NSUInteger>(_rows.size()); }
    id valueAt(NSUInteger row, NSUInteger column) override;

  private:
    struct Row {
        Retained<NSString> command, keys, menu;
    };
    void collect(NSMenu* menu, NSString* path);

    std::vector<Row> _rows;
};

}  // namespace pelvor
