// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotification.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSTableView.h"
#include "Interface/NSText.h"
#include "Interface/NSTextFieldCell.h"
#include "Interface/NSWindow.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

bool NSTableView::canEdit(NSInteger column, NSInteger row) {
    if (!canChange(column, row)) return false;
    NSCell* cell = _columns[static_cast<std::size_t>(column)]->dataCellForRow(row);
    return cast<NSTextFieldCell>(cell) && cell->isEditable();
}

// The first column from there on that can be edited, or -1.
NSInteger NSTableView::nextEditable(NSInteger column, NSInteger row, NSInteger step) {
    while (isColumn(column) && !canEdit(column, row)) column += step;
    return isColumn(column) ? column : -1;
}

// A double click on the place, or Return on the row.
void NSTableView::open(NSInteger column, NSInteger row) {
    const NSInteger edited = column < 0 ? nextEditable(0, row, 1) : canEdit(column, row) ? column : -1;
    if (edited >= 0 && window()) return editColumn_row_withEvent_select(edited, row, nullptr, true);
    sendAction_to(_doubleAction, target());
}

void NSTableView::editColumn_row_withEvent_select(NSInteger column, NSInteger row, NSEvent* event,
                                                  bool select) {
    constexpr char kOperation[] = "editColumn:row:withEvent:select:";
    requireIndex(static_cast<NSUInteger>(column), static_cast<NSUInteger>(numberOfColumns()), kOperation);
    requireIndex(static_cast<NSUInteger>(row), static_cast<NSUInteger>(numberOfRows()), kOperation);
    const auto self = Retained<NSTableView>::retaining(this);
    if (!window() || !window()->makeFirstResponder(this)) return;
    const auto edited = _columns[static_cast<std::size_t>(column)];
    _editedCell = copiedCell(edited, column, row);
    if (!_editedCell || !window() || !isColumn(column) || !isRow(row)) return;
    scrollRowToVisible(row);
    scrollColumnToVisible(column);
    _editedRow = row;
    _editedColumn = column;
    const NSRect frame = frameOfCellAtColumn_row(column, row);
    const auto cell = _editedCell;
    NSText* editor = window()->fieldEditor_forObject(true, this);
    const auto length = static_cast<int>(cell->stringValue()->length());
    if (select)
        cell->selectWithFrame_inView_editor_delegate_start_length(frame, this, editor, this, 0, length);
    else
        cell->editWithFrame_inView_editor_delegate_event(frame, this, editor, this, event);
    if (!currentEditor()) _editedRow = _editedColumn = -1;
}

bool NSTableView::abortEditing() {
    const auto editor = Retained<NSText>::retaining(currentEditor());
    if (!editor) return false;
    _editedRow = _editedColumn = -1;
    dropEditor(_editedCell, editor);
    _editedCell = nullptr;
    if (window()) window()->makeFirstResponder(this);
    return true;
}

// MARK: What the field editor asks and tells

bool NSTableView::textShouldBeginEditing(NSText* text) {
    return delegateAllows("control:textShouldBeginEditing:"_sel, text);
}

bool NSTableView::textShouldEndEditing(NSText* text) {
    return delegateAllows("control:textShouldEndEditing:"_sel, text);
}

void NSTableView::textDidBeginEditing(NSNotification* notification) {
    auto* editor = notification ? cast<NSText>(notification->object()) : nullptr;
    if (editor)
        tellEditing(NSControlTextDidBeginEditingNotification, "controlTextDidBeginEditing:"_sel, editor,
                    delegate());
}

void NSTableView::textDidChange(NSNotification* notification) {
    auto* editor = notification ? cast<NSText>(notification->object()) : nullptr;
    if (editor)
        tellEditing(NSControlTextDidChangeNotification, "controlTextDidChange:"_sel, editor, delegate());
}

void NSTableView::textDidEndEditing(NSNotification* notification) {
    const auto editor =
        Retained<NSText>::retaining(notification ? cast<NSText>(notification->object()) : nullptr);
    if (!editor || editor != currentEditor()) return;
    const auto self = Retained<NSTableView>::retaining(this);
    NSDictionary* info = notification->userInfo();
    auto* number = info ? cast<NSNumber>(info->objectForKey(u"NSTextMovement"_ns)) : nullptr;
    const int movement = number ? number->intValue() : NSIllegalTextMovement;
    const NSInteger column = _editedColumn, row = _editedRow;
    const auto text = editor->string()->copy();
    const bool hasKeys = window() && window()->firstResponder() == editor;
    abortEditing();
    const auto source = Retained<Object>::retaining(dataSource());
    const SEL setter = "tableView:setObjectValue:forTableColumn:row:"_sel;
    if (movement != NSCancelTextMovement && isColumn(column) && isRow(row) && source &&
        source->respondsToSelector(setter)) {
        const auto edited = _columns[static_cast<std::size_t>(column)];
        send(source, setter, this, text.get(), edited.get(), row);
    }
    setNeedsDisplayInRect(rectOfRow(row));
    tellEditing(NSControlTextDidEndEditingNotification, "controlTextDidEndEditing:"_sel, editor, delegate());
    const NSInteger step = movement == NSTabTextMovement ? 1 : movement == NSBacktabTextMovement ? -1 : 0;
    const NSInteger next = step && hasKeys ? nextEditable(column + step, row, step) : -1;
    if (next >= 0) editColumn_row_withEvent_select(next, row, nullptr, true);
}

}  // namespace pelvor
