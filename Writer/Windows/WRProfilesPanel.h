// SPDX-License-Identifier: Apache-2.0
// WRProfilesPanel: a window with a table of what plug-ins offer.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSNotification;
class NSTableColumn;
class NSTableView;
class NSWindow;

/// Lists the profiles of the registry; typed letters select a profile by its name. It follows the registry.
/// Main thread.
class WRProfilesPanel : public NSObject {
    PELVOR_CLASS(WRProfilesPanel, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRProfilesPanel> init(Class* cls = classObject());

    /// Where it is not seen yet, it comes up beside the other window, or at the edge of the screen for null.
    void showBeside(NSWindow* other);
    NSWindow* window() { return _window; }

    // The table's data source and delegate
    int numberOfRowsInTableView(NSTableView* table);
    id tableView_objectValueForTableColumn_row(NSTableView* table, NSTableColumn* column, NSInteger row);
    void profilesDidChange(NSNotification* notification);

  protected:
    WRProfilesPanel() = default;
    ~WRProfilesPanel();

  private:
    void makeWindow();

    Retained<NSWindow> _window;
    Retained<NSTableView> _table;
    Retained<NSArray> _profiles;  // in the order of their names
};

}  // namespace pelvor
