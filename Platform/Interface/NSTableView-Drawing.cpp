// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/NSTableView.h"
#include "Interface/NSWindow.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {
namespace {

// While it lives, changes of the columns' cells are no changes of the table.
class CellUse {
  public:
    explicit CellUse(int& uses) : _uses(uses) { ++_uses; }
    ~CellUse() { --_uses; }
    CellUse(const CellUse&) = delete;
    CellUse& operator=(const CellUse&) = delete;

  private:
    int& _uses;
};

}  // namespace

void NSTableView::drawRect(NSRect dirty) {
    const auto self = Retained<NSTableView>::retaining(this);
    drawBackgroundInClipRect(dirty);
    highlightSelectionInClipRect(dirty);
    drawGridInClipRect(dirty);
    const NSRange rows = rowsInRect(dirty);
    for (NSUInteger row = rows.location; row < NSMaxRange(rows); ++row)
        drawRow_clipRect(static_cast<NSInteger>(row), dirty);
}

void NSTableView::drawBackgroundInClipRect(NSRect clip) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context) return;
    context->setColor(backgroundColor());
    context->fillRect(clip);
    if (!_alternatesRows) return;
    // The stripes go on below the last row.
    const float height = pitch();
    for (float y = std::floor(clip.origin.y / height) * height; y < NSMaxY(clip); y += height)
        if (static_cast<NSInteger>(std::lround(y / height)) % 2 == 1)
            fillRect(NSIntersectionRect(clip, {{clip.origin.x, y}, {clip.size.width, height}}),
                     ThemeColor::alternateRow);
}

void NSTableView::highlightSelectionInClipRect(NSRect clip) {
    const ThemeColor color = isActive() ? ThemeColor::selection : ThemeColor::inactiveSelection;
    const NSRange rows = rowsInRect(clip);
    for (NSUInteger row = rows.location; row < NSMaxRange(rows); ++row)
        if (_selectedRows->containsIndex(row))
            fillRect(NSIntersectionRect(clip, rectOfRow(static_cast<NSInteger>(row))), color);
    const NSRange columns = columnsInRect(clip);
    for (NSUInteger column = columns.location; column < NSMaxRange(columns); ++column)
        if (_selectedColumns->containsIndex(column))
            fillRect(NSIntersectionRect(clip, rectOfColumn(static_cast<NSInteger>(column))), color);
}

void NSTableView::drawGridInClipRect(NSRect clip) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context || _gridStyle == NSTableViewGridNone) return;
    context->setColor(gridColor());
    if (_gridStyle & NSTableViewSolidHorizontalGridLineMask) {
        const NSRange rows = rowsInRect(clip);
        for (NSUInteger row = rows.location; row < NSMaxRange(rows); ++row) {
            const NSRect place = rectOfRow(static_cast<NSInteger>(row));
            context->fillRect(
                {{clip.origin.x, NSMaxY(place) - metrics::kLine}, {clip.size.width, metrics::kLine}});
        }
    }
    if (!(_gridStyle & NSTableViewSolidVerticalGridLineMask)) return;
    const std::vector<float> edges = columnEdges();
    for (std::size_t i = 1; i < edges.size(); ++i)
        context->fillRect({{edges[i] - metrics::kLine, clip.origin.y}, {metrics::kLine, clip.size.height}});
}

void NSTableView::drawRow_clipRect(NSInteger row, NSRect clip) {
    if (!isRow(row)) return;
    const auto self = Retained<NSTableView>::retaining(this);
    const NSRange columns = columnsInRect(clip);
    const CellUse use(_cellUses);
    for (NSUInteger i = columns.location; i < NSMaxRange(columns); ++i) {
        // What draws may have changed the columns.
        const auto index = static_cast<NSInteger>(i);
        if (!isColumn(index) || !isRow(row)) return;
        if (row == _editedRow && index == _editedColumn) {
            fillRect(frameOfCellAtColumn_row(index, row), ThemeColor::content);
            continue;
        }
        const auto column = _columns[i];
        const auto cell = preparedCell(column, index, row);
        if (cell) cell->drawWithFrame_inView(frameOfCellAtColumn_row(index, row), this);
    }
}

// The column's cell with the value and the look of the row; owned, since the data source or the delegate may
// have given the column another one meanwhile.
Retained<NSCell> NSTableView::preparedCell(NSTableColumn* column, NSInteger columnIndex, NSInteger row) {
    if (_trackedCell && row == _clickedRow && columnIndex == _clickedColumn) return _trackedCell;
    auto cell = Retained<NSCell>::retaining(column->dataCellForRow(row));
    if (!cell) return nullptr;
    cell->setObjectValue(objectValueAtColumn_row(column, row));
    cell->setHighlighted((isRowSelected(row) || isColumnSelected(columnIndex)) && isActive());
    tellDelegate("tableView:willDisplayCell:forTableColumn:row:"_sel, this, cell.get(), column, row);
    return cell;
}

// A copy of that cell, to keep while the column's own cell draws other rows.
Retained<NSCell> NSTableView::copiedCell(NSTableColumn* column, NSInteger columnIndex, NSInteger row) {
    const CellUse use(_cellUses);
    const auto cell = preparedCell(column, columnIndex, row);
    return cell ? cell->copy() : nullptr;
}

// MARK: The look of the selection

// Whether the selection looks as one that keys work on.
bool NSTableView::isActive() {
    if (!window() || !window()->isKeyWindow() || !isEnabled()) return false;
    auto* first = cast<NSView>(window()->firstResponder());
    return first && first->isDescendantOf(this);
}

void NSTableView::redrawSelectedRows() {
    if (_selectedColumns->count() > 0) return setNeedsDisplay(true);
    const NSRange visible = rowsInRect(visibleRect());
    for (NSUInteger row = visible.location; row < NSMaxRange(visible); ++row)
        if (_selectedRows->containsIndex(row)) setNeedsDisplayInRect(rectOfRow(static_cast<NSInteger>(row)));
}

bool NSTableView::acceptsFirstResponder() { return isEnabled() && !refusesFirstResponder(); }

bool NSTableView::becomeFirstResponder() {
    redrawSelectedRows();
    return NSControl::becomeFirstResponder();
}

bool NSTableView::resignFirstResponder() {
    redrawSelectedRows();
    return NSControl::resignFirstResponder();
}

void NSTableView::keyWindowChanged(id) { redrawSelectedRows(); }

void NSTableView::viewWillMoveToWindow(NSWindow* newWindow) {
    NSControl::viewWillMoveToWindow(newWindow);
    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    for (NSString* name : {NSWindowDidBecomeKeyNotification, NSWindowDidResignKeyNotification}) {
        if (window()) center->removeObserver_name_object(this, name, window());
        if (newWindow)
            center->addObserver_selector_name_object(this, "keyWindowChanged:"_sel, name, newWindow);
    }
}

void NSTableView::viewDidMoveToWindow() {
    NSControl::viewDidMoveToWindow();
    tile();
}

}  // namespace pelvor
