// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>

#include "Interface/NSButtonCell.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImageCell.h"
#include "Interface/NSTableView.h"
#include "Interface/NSTextFieldCell.h"
#include "Interface/NSWindow.h"

namespace pelvor {
namespace {

constexpr NSUInteger kModifiers = NSShiftKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask;

}  // namespace

// MARK: Mouse

void NSTableView::mouseDown(NSEvent* event) {
    if (!event || !isEnabled()) return;
    const auto self = Retained<NSTableView>::retaining(this);
    const auto kept = Retained<NSEvent>::retaining(event);
    const NSPoint place = convertPoint_fromView(event->locationInWindow(), nullptr);
    _clickedRow = rowAtPoint(place);
    _clickedColumn = columnAtPoint(place);
    const NSInteger row = _clickedRow, column = _clickedColumn;
    if (trackCell(event)) return;
    const NSUInteger modifiers = event->modifierFlags() & kModifiers;
    if (row >= 0) {
        const bool isPressed = pressRow(row, modifiers);
        if (isPressed) tellSelection(false);
        if (followMouse() || isPressed) tellSelection(true);
    } else if (modifiers == 0) {
        deselectAll(nullptr);
    }
    if (event->clickCount() == 2)
        open(column, row);
    else
        sendAction_to(action(), target());
}

// Does to the selection what a press on the row does, as far as the delegate allows it. Returns whether it
// changed.
bool NSTableView::pressRow(NSInteger row, NSUInteger modifiers) {
    const bool extends = _allowsMultipleSelection && (modifiers & NSShiftKeyMask) && isRow(_anchorRow);
    const bool toggles = modifiers & NSCommandKeyMask;
    if (!extends && !toggles && isRowSelected(row) && _selectedRows->count() == 1) return false;
    if (!delegateAllowsChange()) return false;
    if (extends) return selectSpan(_anchorRow, row);
    if (toggles && isRowSelected(row)) {
        if (!_allowsEmptySelection && _selectedRows->count() == 1) return false;
        auto rows = _selectedRows->mutableCopy();
        rows->removeIndex(static_cast<NSUInteger>(row));
        const NSUInteger last = rows->lastIndex();
        return setSelectedRows(rows, last == NSNotFound ? -1 : static_cast<NSInteger>(last));
    }
    if (!delegateAllowsRow(row) || !isRow(row)) return false;
    if (!toggles || !_allowsMultipleSelection) return selectAlone(row);
    auto rows = _selectedRows->mutableCopy();
    rows->addIndex(static_cast<NSUInteger>(row));
    _anchorRow = row;
    return setSelectedRows(rows, row);
}

// Until the button is released: a drag selects the row under the mouse, or the rows up to it. Returns whether
// the selection changed.
bool NSTableView::followMouse() {
    bool hasChanged = false;
    const NSInteger anchor = _anchorRow;
    NSInteger dragged = _clickedRow;
    while (window()) {
        const auto event = Retained<NSEvent>::retaining(
            window()->nextEventMatchingMask(NSLeftMouseUpMask | NSLeftMouseDraggedMask));
        if (!event || event->type() == NSLeftMouseUp) break;
        autoscroll(event);
        const float y = convertPoint_fromView(event->locationInWindow(), nullptr).y;
        const NSInteger last = numberOfRows() - 1;
        const auto row = static_cast<NSInteger>(
            std::clamp(std::floor(y / pitch()), 0.0f, static_cast<float>(std::max(last, 0))));
        if (row == dragged || !isRow(row) || !delegateAllowsChange()) continue;
        dragged = row;
        const bool changed = _allowsMultipleSelection && isRow(anchor)
                                 ? selectSpan(anchor, row)
                                 : delegateAllowsRow(row) && selectAlone(row);
        if (changed) tellSelection(false);
        hasChanged |= changed;
    }
    return hasChanged;
}

// Whether the user may change the value.
bool NSTableView::canChange(NSInteger columnIndex, NSInteger row) {
    if (!isColumn(columnIndex) || !isRow(row)) return false;
    NSTableColumn* column = _columns[static_cast<std::size_t>(columnIndex)];
    NSCell* cell = column->dataCellForRow(row);
    const auto source = _dataSource.object();
    if (!column->isEditable() || !cell || !cell->isEnabled() || !source ||
        !source->respondsToSelector("tableView:setObjectValue:forTableColumn:row:"_sel))
        return false;
    return delegateAllows("tableView:shouldEditTableColumn:row:"_sel, column, row);
}

namespace {

// Cells of texts and pictures do nothing when they are pressed.
bool followsMouse(NSCell* cell) {
    return cast<NSActionCell>(cell) && !cast<NSTextFieldCell>(cell) && !cast<NSImageCell>(cell);
}

}  // namespace

// Lets a button in the clicked place follow the mouse, and gives the data source its new value. Returns
// whether there is one.
bool NSTableView::trackCell(NSEvent* event) {
    if (!isColumn(_clickedColumn) || !isRow(_clickedRow)) return false;
    const auto column = _columns[static_cast<std::size_t>(_clickedColumn)];
    if (!followsMouse(column->dataCellForRow(_clickedRow)) || !canChange(_clickedColumn, _clickedRow))
        return false;
    const NSInteger row = _clickedRow;
    const NSRect frame = frameOfCellAtColumn_row(_clickedColumn, row);
    const auto cell = copiedCell(column, _clickedColumn, row);
    if (!cell) return false;
    const auto before = Retained<Object>::retaining(cell->objectValue());
    cell->setControlView(this);
    _trackedCell = cell;
    struct Forget {
        Retained<NSCell>& cell;
        ~Forget() { cell = nullptr; }
    };
    {
        const Forget forget{_trackedCell};
        cell->setHighlighted(true);
        cell->trackMouse_inRect_ofView_untilMouseUp(event, frame, this, true);
    }
    setNeedsDisplayInRect(frame);
    const auto after = Retained<Object>::retaining(cell->objectValue());
    const auto source = _dataSource.object();
    if (after && !after->isEqual(before) && source)
        send(source, "tableView:setObjectValue:forTableColumn:row:"_sel, this, after.get(), column.get(),
             row);
    return true;
}

// MARK: Keys

NSInteger NSTableView::rowsOnPage() {
    return std::max(1, static_cast<NSInteger>(std::floor(visibleRect().size.height / pitch())) - 1);
}

void NSTableView::keyDown(NSEvent* event) {
    if (!event || event->type() != NSKeyDown || !isEnabled()) return NSControl::keyDown(event);
    const auto self = Retained<NSTableView>::retaining(this);
    NSString* characters = event->characters();
    const NSUInteger modifiers = event->modifierFlags() & kModifiers;
    const unichar key = characters->length() ? characters->characterAtIndex(0) : 0;
    const bool extends = modifiers & NSShiftKeyMask;
    const NSInteger last = numberOfRows() - 1, from = _selectedRow;
    const bool isMoving = !(modifiers & ~std::uint32_t{NSShiftKeyMask});
    switch (isMoving ? key : 0) {
        case NSUpArrowFunctionKey:
            moveSelection(from < 0 ? last : std::max(from - 1, 0), -1, extends);
            return;
        case NSDownArrowFunctionKey:
            moveSelection(std::min(from + 1, last), 1, extends);
            return;
        case NSPageUpFunctionKey:
            moveSelection(std::max(from - rowsOnPage(), 0), 1, extends);
            return;
        case NSPageDownFunctionKey:
            moveSelection(std::min(std::max(from, 0) + rowsOnPage(), last), -1, extends);
            return;
        case NSHomeFunctionKey:
            moveSelection(0, 1, extends);
            return;
        case NSEndFunctionKey:
            moveSelection(last, -1, extends);
            return;
        case NSCarriageReturnCharacter:
        case NSEnterCharacter:
            if (from < 0) break;
            _clickedRow = _clickedColumn = -1;
            return open(-1, from);
        default:
            break;
    }
    NSControl::keyDown(event);
}

// Selects the row, or the nearest one in the direction that the delegate allows, and shows it. Returns
// whether the selection changed.
bool NSTableView::moveSelection(NSInteger row, int direction, bool extends) {
    if (!isRow(row) || !delegateAllowsChange()) return false;
    while (isRow(row) && !delegateAllowsRow(row)) row += direction;
    if (!isRow(row)) return false;
    const bool changed = extends && _allowsMultipleSelection && isRow(_anchorRow)
                             ? selectSpan(_anchorRow, row)
                             : selectAlone(row);
    scrollRowToVisible(row);
    if (changed) tellSelection(true);
    return changed;
}

// MARK: The header

void NSTableView::pressHeader(NSTableColumn* column) {
    tellDelegate("tableView:mouseDownInHeaderOfTableColumn:"_sel, this, column);
}

void NSTableView::dragHeader(NSTableColumn* column) {
    tellDelegate("tableView:didDragTableColumn:"_sel, this, column);
}

void NSTableView::clickHeader(NSInteger column, NSUInteger modifiers) {
    if (!isColumn(column) || !isEnabled()) return;
    const auto self = Retained<NSTableView>::retaining(this);
    const auto clicked = _columns[static_cast<std::size_t>(column)];
    _clickedRow = -1;
    _clickedColumn = column;
    const bool selects = _allowsColumnSelection && delegateAllowsChange() &&
                         delegateAllows("tableView:shouldSelectTableColumn:"_sel, clicked.get());
    const bool extends = modifiers & (NSShiftKeyMask | NSCommandKeyMask);
    if (selects && indexOfColumn(clicked) >= 0)
        selectColumn_byExtendingSelection(indexOfColumn(clicked), extends);
    tellDelegate("tableView:didClickTableColumn:"_sel, this, clicked.get());
}

}  // namespace pelvor
