// SPDX-License-Identifier: Apache-2.0
// WRTablePanel: a window with a table to look things up.
#pragma once

#include <span>

#include "Foundation/NSString.h"

namespace pelvor {

class NSTableColumn;
class NSTableView;
class WRPalette;

/// A window with a table in which typed letters select a row by the first column. Subclasses say what the
/// rows are. Main thread.
class WRTablePanel : public NSObject {
    PELVOR_CLASS(WRTablePanel, NSObject);

  public:
    WRPalette* window() { return _window; }
    /// The rows are others now.
    void reload();

    // The table's data source, delegate and target
    int numberOfRowsInTableView(NSTableView* table);
    id tableView_objectValueForTableColumn_row(NSTableView* table, NSTableColumn* column, NSInteger row);
    void chooseRow(id sender);

  protected:
    WRTablePanel();
    ~WRTablePanel();

    struct Column {
        NSString* title;
        float width;  ///< in points; the last column takes what is left
    };
    void makeWindow(NSString* title, std::span<const Column> columns);
    virtual NSUInteger rowCount() = 0;
    /// What stands in the row and column, both from 0 on; borrowed, or null.
    virtual id valueAt(NSUInteger row, NSUInteger column) = 0;
    /// By a double click or Return.
    virtual void rowWasChosen(NSUInteger) {}

  private:
    Retained<WRPalette> _window;
    Retained<NSTableView> _table;
};

}  // namespace pelvor
