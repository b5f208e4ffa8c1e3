// SPDX-License-Identifier: Apache-2.0
// NSTableColumn: a column of a table view.
#pragma once

#include "Interface/NSCell.h"

namespace pelvor {

class NSTableView;

/// Who may change the width of a column, joined by "|".
enum : NSUInteger {
    NSTableColumnNoResizing = 0,
    NSTableColumnAutoresizingMask = 1,  ///< the table, when its own width changes
    NSTableColumnUserResizingMask = 2,  ///< the user, by dragging its edge
};

/// A column: its width, the cell that draws its rows one after the other, and the cell of its title.
///
///     auto column = NSTableColumn::initWithIdentifier(u"name"_ns);
///     column->headerCell()->setStringValue(u"Name"_ns);
///     column->setWidth(160);
///     table->addTableColumn(column);
///
/// Main thread.
class PELVOR_EXPORT NSTableColumn : public NSObject {
    PELVOR_CLASS(NSTableColumn, NSObject);
    PELVOR_CREATORS(initWithIdentifier);

  public:
    /// A column 100 points wide, with text cells. The identifier, by which the data source tells the columns
    /// apart, is any object or null.
    static Retained<NSTableColumn> initWithIdentifier(id identifier, Class* cls = classObject());

    id identifier() { return _identifier; }
    void setIdentifier(id identifier);
    /// The table that has the column, or null; not kept alive.
    NSTableView* tableView() { return _tableView; }

    /// In points, not counting the space between columns.
    float width() { return _width; }
    /// Sets the width, between the two limits, and has the table post NSTableViewColumnDidResizeNotification.
    void setWidth(float width);
    float minWidth() { return _minWidth; }
    /// 10 at first; a width below grows.
    void setMinWidth(float width);
    float maxWidth() { return _maxWidth; }
    /// No limit at first; a width above shrinks.
    void setMaxWidth(float width);
    /// Makes the column as wide as its title needs.
    void sizeToFit();
    NSUInteger resizingMask() { return _resizingMask; }
    /// Both at first.
    void setResizingMask(NSUInteger mask) { _resizingMask = mask; }
    bool isResizable() { return _resizingMask != NSTableColumnNoResizing; }
    void setResizable(bool isResizable);

    /// Whether the user may change the values; true at first.
    bool isEditable() { return _isEditable; }
    void setEditable(bool isEditable) { _isEditable = isEditable; }

    /// The cell of the title, an NSTableHeaderCell at first.
    NSCell* headerCell() { return _headerCell; }
    /// Does nothing for null.
    void setHeaderCell(NSCell* cell);
    /// The cell of the rows, an NSTextFieldCell at first.
    NSCell* dataCell() { return _dataCell; }
    /// Does nothing for null.
    void setDataCell(NSCell* cell);
    /// The cell that draws the row; the base returns that of all rows. The row -1 stands for the column as
    /// such.
    virtual NSCell* dataCellForRow(NSInteger row);

    // C++ only
    /// Called by the table that takes the column in or lets it go.
    void setTableView(NSTableView* table);

  protected:
    NSTableColumn();
    ~NSTableColumn() = default;

  private:
    Retained<Object> _identifier;
    Retained<NSCell> _headerCell, _dataCell;
    Unretained<NSTableView> _tableView = nullptr;
    NSUInteger _resizingMask = NSTableColumnAutoresizingMask | NSTableColumnUserResizingMask;
    float _width = 100, _minWidth = 10, _maxWidth = 1.0e6f;
    bool _isEditable = true;
};

}  // namespace pelvor
