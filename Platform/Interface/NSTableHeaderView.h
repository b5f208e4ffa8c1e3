// SPDX-License-Identifier: Apache-2.0
// NSTableHeaderView: the titles of a table's columns.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

class NSTableView;

/// The row of titles above a table. A click on a title is told to the table's delegate, which may sort the
/// rows; a drag of a title moves its column, a drag of an edge makes the column on its left wider or
/// narrower, and a double click on the edge as wide as its title. The scroll view that shows the table shows
/// this view above it. Main thread.
class PELVOR_EXPORT NSTableHeaderView : public NSView {
    PELVOR_CLASS(NSTableHeaderView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    /// Not kept alive; null for a header of no table.
    NSTableView* tableView() { return _tableView; }
    void setTableView(NSTableView* table);

    /// The column that is being moved, and the one whose edge is being dragged; -1 for none.
    NSInteger draggedColumn() { return _draggedColumn; }
    /// How far the pointer has moved from where it began to drag the column.
    float draggedDistance() { return _draggedDistance; }
    NSInteger resizedColumn() { return _resizedColumn; }

    /// NSZeroRect for a column that does not exist.
    NSRect headerRectOfColumn(NSInteger column);
    /// -1 for a point in no title.
    NSInteger columnAtPoint(NSPoint point);

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void resetCursorRects() override;

    // C++ only
    /// Takes the width of the table, whose columns or size have changed.
    void fitTable();

  protected:
    NSTableHeaderView() = default;
    ~NSTableHeaderView() = default;

  private:
    NSPoint placeOf(NSEvent* event);
    Retained<NSEvent> nextEvent();
    NSInteger columnWithEdgeAt(NSPoint point);
    void resize(NSInteger column, NSPoint start);
    void press(NSInteger column, NSPoint start, NSEvent* event);

    Unretained<NSTableView> _tableView = nullptr;
    NSInteger _draggedColumn = -1, _resizedColumn = -1, _pressedColumn = -1;
    float _draggedDistance = 0;
};

}  // namespace pelvor
