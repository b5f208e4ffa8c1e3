// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTableHeaderView.h"

#include <cmath>

#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSCursor.h"
#include "Interface/NSEvent.h"
#include "Interface/NSTableView.h"
#include "Interface/NSWindow.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableHeaderView, interfaceLibrary) {
    methods.instance<"tableView", &NSTableHeaderView::tableView>();
    methods.instance<"setTableView:", &NSTableHeaderView::setTableView>();
    methods.instance<"draggedColumn", &NSTableHeaderView::draggedColumn>();
    methods.instance<"draggedDistance", &NSTableHeaderView::draggedDistance>();
    methods.instance<"resizedColumn", &NSTableHeaderView::resizedColumn>();
    methods.instance<"headerRectOfColumn:", &NSTableHeaderView::headerRectOfColumn>();
    methods.instance<"columnAtPoint:", &NSTableHeaderView::columnAtPoint>();
}

void NSTableHeaderView::setTableView(NSTableView* table) {
    _tableView = table;
    fitTable();
}

void NSTableHeaderView::fitTable() {
    if (_tableView) setFrameSize({_tableView->frame().size.width, frame().size.height});
    setNeedsDisplay(true);
    if (window()) window()->invalidateCursorRectsForView(this);
}

// MARK: Places

NSRect NSTableHeaderView::headerRectOfColumn(NSInteger column) {
    const NSRect place = _tableView ? _tableView->rectOfColumn(column) : NSZeroRect;
    if (NSIsEmptyRect({{}, {place.size.width, 1}})) return NSZeroRect;
    return {{place.origin.x, 0}, {place.size.width, bounds().size.height}};
}

NSInteger NSTableHeaderView::columnAtPoint(NSPoint point) {
    for (NSInteger i = 0; _tableView && i < _tableView->numberOfColumns(); ++i)
        if (NSPointInRect(point, headerRectOfColumn(i))) return i;
    return -1;
}

// The column whose right edge is near enough to be dragged from the point, or -1.
NSInteger NSTableHeaderView::columnWithEdgeAt(NSPoint point) {
    if (!_tableView || !_tableView->allowsColumnResizing()) return -1;
    for (NSInteger i = _tableView->numberOfColumns(); i-- > 0;) {
        NSTableColumn* column = _tableView->columns()[static_cast<std::size_t>(i)];
        if ((column->resizingMask() & NSTableColumnUserResizingMask) &&
            std::abs(NSMaxX(headerRectOfColumn(i)) - point.x) <= metrics::kDividerReach)
            return i;
    }
    return -1;
}

void NSTableHeaderView::resetCursorRects() {
    for (NSInteger i = 0; _tableView && i < _tableView->numberOfColumns(); ++i) {
        const float edge = NSMaxX(headerRectOfColumn(i));
        if (columnWithEdgeAt({edge, 0}) == i)
            addCursorRect_cursor(
                {{edge - metrics::kDividerReach, 0}, {2 * metrics::kDividerReach, bounds().size.height}},
                NSCursor::resizeLeftRightCursor());
    }
}

// MARK: Drawing

void NSTableHeaderView::drawRect(NSRect dirty) {
    fillRect(dirty, ThemeColor::header);
    const NSRect all = bounds();
    for (NSInteger i = 0; _tableView && i < _tableView->numberOfColumns(); ++i) {
        const NSRect place = headerRectOfColumn(i);
        if (!NSIntersectsRect(place, dirty)) continue;
        const auto column = _tableView->columns()[static_cast<std::size_t>(i)];
        const auto cell = Retained<NSCell>::retaining(column->headerCell());
        cell->setHighlighted(i == _pressedColumn || _tableView->isColumnSelected(i) ||
                             _tableView->highlightedTableColumn() == column);
        cell->drawWithFrame_inView(place, this);
        if (!_tableView) return;
        if (NSImage* image = _tableView->indicatorImageInTableColumn(column)) {
            NSRect sign;
            NSDivideRect(NSInsetRect(place, metrics::kHeaderInset, 0), &sign, nullptr, image->size().width,
                         NSMaxXEdge);
            image->drawInRect_fromRect_operation_fraction(
                fittedImage(image->size(), sign, NSScaleProportionally), NSZeroRect, NSCompositeSourceOver,
                1);
        }
        constexpr float kGap = 4;
        fillRect({{NSMaxX(place) - metrics::kLine, kGap}, {metrics::kLine, all.size.height - 2 * kGap}},
                 ThemeColor::border);
    }
    fillRect({{all.origin.x, NSMaxY(all) - metrics::kLine}, {all.size.width, metrics::kLine}},
             ThemeColor::border);
}

// MARK: Mouse

NSPoint NSTableHeaderView::placeOf(NSEvent* event) {
    return convertPoint_fromView(event->locationInWindow(), nullptr);
}

// The next event of the drag; null at its end, and when the view has left its window or its table.
Retained<NSEvent> NSTableHeaderView::nextEvent() {
    if (!window() || !_tableView) return nullptr;
    NSEvent* event = window()->nextEventMatchingMask(NSLeftMouseUpMask | NSLeftMouseDraggedMask);
    if (!event || event->type() == NSLeftMouseUp || !_tableView) return nullptr;
    return Retained<NSEvent>::retaining(event);
}

void NSTableHeaderView::mouseDown(NSEvent* event) {
    if (!event || !_tableView || !_tableView->isEnabled()) return;
    const auto self = Retained<NSTableHeaderView>::retaining(this);
    const auto table = Retained<NSTableView>::retaining(_tableView);
    const NSPoint start = placeOf(event);
    const NSInteger edge = columnWithEdgeAt(start);
    if (edge >= 0 && event->clickCount() == 2)
        return table->columns()[static_cast<std::size_t>(edge)]->sizeToFit();
    if (edge >= 0) return resize(edge, start);
    const NSInteger column = columnAtPoint(start);
    if (column >= 0) press(column, start, event);
}

void NSTableHeaderView::resize(NSInteger index, NSPoint start) {
    const auto column = _tableView->columns()[static_cast<std::size_t>(index)];
    const float width = column->width();
    _resizedColumn = index;
    while (auto event = nextEvent()) column->setWidth(width + placeOf(event).x - start.x);
    _resizedColumn = -1;
}

void NSTableHeaderView::press(NSInteger index, NSPoint start, NSEvent* event) {
    const NSUInteger modifiers = event->modifierFlags();
    const auto table = Retained<NSTableView>::retaining(_tableView);
    const auto column = table->columns()[static_cast<std::size_t>(index)];
    _pressedColumn = index;
    setNeedsDisplay(true);
    table->pressHeader(column);
    NSPoint last = start;
    while (auto dragged = nextEvent()) {
        last = placeOf(dragged);
        _draggedDistance = last.x - start.x;
        if (_draggedColumn < 0 &&
            (!table->allowsColumnReordering() || std::abs(_draggedDistance) < metrics::kDragDistance))
            continue;
        _draggedColumn = table->indexOfColumn(column);
        // The column goes where the pointer has passed the middle of another one.
        const NSInteger over = columnAtPoint({last.x, 0});
        if (over < 0 || _draggedColumn < 0 || over == _draggedColumn) continue;
        const float middle = NSMidX(headerRectOfColumn(over));
        if (over > _draggedColumn ? last.x > middle : last.x < middle) {
            table->moveColumn_toColumn(_draggedColumn, over);
            _draggedColumn = _pressedColumn = over;
        }
    }
    const bool wasDragged = _draggedColumn >= 0;
    _draggedColumn = _pressedColumn = -1;
    _draggedDistance = 0;
    setNeedsDisplay(true);
    if (wasDragged)
        table->dragHeader(column);
    else if (columnAtPoint(last) == index)
        table->clickHeader(index, modifiers);
}

}  // namespace pelvor
