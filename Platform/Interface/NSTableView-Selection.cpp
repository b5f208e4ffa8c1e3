// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Foundation/NSEnumerator.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSTableHeaderView.h"
#include "Interface/NSTableView.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

NSEnumerator* enumeratorOf(NSIndexSet* indexes) {
    auto numbers = NSMutableArray::init();
    for (NSRange run : indexes->runs())
        for (NSUInteger index = run.location; index < NSMaxRange(run); ++index)
            numbers->addObject(NSNumber::numberWithUnsignedInt(index));
    return numbers->objectEnumerator();
}

NSInteger lastOf(NSIndexSet* indexes) {
    const NSUInteger last = indexes->lastIndex();
    return last == NSNotFound ? -1 : static_cast<NSInteger>(last);
}

// The present indexes, or none, with the new ones added.
Retained<NSMutableIndexSet> extended(NSIndexSet* present, NSIndexSet* added, bool extends) {
    auto indexes = extends ? present->mutableCopy() : NSMutableIndexSet::init();
    indexes->addIndexes(added);
    return indexes;
}

void requireIndexes(NSIndexSet* indexes, NSInteger count, const char* operation) {
    requireArgument(indexes, operation, "the set");
    const NSUInteger last = indexes->lastIndex();
    if (last != NSNotFound) requireIndex(last, static_cast<NSUInteger>(count), operation);
}

}  // namespace

// MARK: What the program selects

void NSTableView::selectRowIndexes_byExtendingSelection(NSIndexSet* rows, bool extends) {
    requireIndexes(rows, numberOfRows(), "selectRowIndexes:byExtendingSelection:");
    NSInteger last = lastOf(rows);
    auto wanted =
        _allowsMultipleSelection ? extended(_selectedRows, rows, extends) : NSMutableIndexSet::init();
    if (!_allowsMultipleSelection && last >= 0) wanted->addIndex(static_cast<NSUInteger>(last));
    if (last < 0) last = lastOf(wanted);
    _anchorRow = last;
    if (setSelectedRows(wanted, last)) tellSelection(true);
}

void NSTableView::selectColumnIndexes_byExtendingSelection(NSIndexSet* columns, bool extends) {
    requireIndexes(columns, numberOfColumns(), "selectColumnIndexes:byExtendingSelection:");
    NSInteger last = lastOf(columns);
    auto wanted =
        _allowsMultipleSelection ? extended(_selectedColumns, columns, extends) : NSMutableIndexSet::init();
    if (!_allowsMultipleSelection && last >= 0) wanted->addIndex(static_cast<NSUInteger>(last));
    if (last < 0) last = lastOf(wanted);
    if (setSelectedColumns(wanted, last)) tellSelection(true);
}

void NSTableView::selectRow_byExtendingSelection(NSInteger row, bool extends) {
    requireIndex(static_cast<NSUInteger>(row), static_cast<NSUInteger>(numberOfRows()),
                 "selectRow:byExtendingSelection:");
    selectRowIndexes_byExtendingSelection(NSIndexSet::indexSetWithIndex(static_cast<NSUInteger>(row)),
                                          extends);
}

void NSTableView::selectColumn_byExtendingSelection(NSInteger column, bool extends) {
    requireIndex(static_cast<NSUInteger>(column), static_cast<NSUInteger>(numberOfColumns()),
                 "selectColumn:byExtendingSelection:");
    selectColumnIndexes_byExtendingSelection(NSIndexSet::indexSetWithIndex(static_cast<NSUInteger>(column)),
                                             extends);
}

void NSTableView::deselectRow(NSInteger row) {
    requireIndex(static_cast<NSUInteger>(row), static_cast<NSUInteger>(numberOfRows()), "deselectRow:");
    auto rows = _selectedRows->mutableCopy();
    rows->removeIndex(static_cast<NSUInteger>(row));
    if (setSelectedRows(rows, row == _selectedRow ? lastOf(rows) : _selectedRow)) tellSelection(true);
}

void NSTableView::deselectColumn(NSInteger column) {
    requireIndex(static_cast<NSUInteger>(column), static_cast<NSUInteger>(numberOfColumns()),
                 "deselectColumn:");
    auto columns = _selectedColumns->mutableCopy();
    columns->removeIndex(static_cast<NSUInteger>(column));
    if (setSelectedColumns(columns, column == _selectedColumn ? lastOf(columns) : _selectedColumn))
        tellSelection(true);
}

void NSTableView::selectAll(id) {
    const auto self = Retained<NSTableView>::retaining(this);
    if (!_allowsMultipleSelection || !isEnabled() || !delegateAllowsChange()) return;
    if (_selectedColumns->count() > 0) {
        auto columns =
            NSMutableIndexSet::initWithIndexesInRange({0, static_cast<NSUInteger>(numberOfColumns())});
        if (setSelectedColumns(columns, lastOf(columns))) tellSelection(true);
    } else if (numberOfRows() > 0 && selectSpan(0, numberOfRows() - 1)) {
        tellSelection(true);
    }
}

void NSTableView::deselectAll(id) {
    const auto self = Retained<NSTableView>::retaining(this);
    if (!_allowsEmptySelection || !delegateAllowsChange()) return;
    const auto none = NSMutableIndexSet::init();
    const bool hadRows = setSelectedRows(none, -1);
    if (setSelectedColumns(none, -1) || hadRows) tellSelection(true);
}

// MARK: What is selected

NSIndexSet* NSTableView::selectedRowIndexes() { return _selectedRows->copy().autorelease(); }

NSIndexSet* NSTableView::selectedColumnIndexes() { return _selectedColumns->copy().autorelease(); }

bool NSTableView::isRowSelected(NSInteger row) {
    return row >= 0 && _selectedRows->containsIndex(static_cast<NSUInteger>(row));
}

bool NSTableView::isColumnSelected(NSInteger column) {
    return column >= 0 && _selectedColumns->containsIndex(static_cast<NSUInteger>(column));
}

NSInteger NSTableView::numberOfSelectedRows() { return static_cast<NSInteger>(_selectedRows->count()); }

NSInteger NSTableView::numberOfSelectedColumns() { return static_cast<NSInteger>(_selectedColumns->count()); }

NSEnumerator* NSTableView::selectedRowEnumerator() { return enumeratorOf(_selectedRows); }

NSEnumerator* NSTableView::selectedColumnEnumerator() { return enumeratorOf(_selectedColumns); }

// MARK: Changing the selection

// Takes the set over and returns whether anything changed. Rows take the place of selected columns.
bool NSTableView::setSelectedRows(NSMutableIndexSet* rows, NSInteger last) {
    const bool hadColumns = rows->count() > 0 && _selectedColumns->count() > 0;
    if (hadColumns) {
        _selectedColumns->removeAllIndexes();
        _selectedColumn = -1;
        setNeedsDisplay(true);
        if (_headerView) _headerView->setNeedsDisplay(true);
    }
    _selectedRow = last;
    if (rows->isEqualToIndexSet(_selectedRows)) return hadColumns;
    const NSRange visible = rowsInRect(visibleRect());
    for (NSUInteger row = visible.location; row < NSMaxRange(visible); ++row)
        if (rows->containsIndex(row) != _selectedRows->containsIndex(row))
            setNeedsDisplayInRect(rectOfRow(static_cast<NSInteger>(row)));
    _selectedRows.set(rows);
    return true;
}

bool NSTableView::setSelectedColumns(NSMutableIndexSet* columns, NSInteger last) {
    const bool hadRows = columns->count() > 0 && _selectedRows->count() > 0;
    if (hadRows) setSelectedRows(NSMutableIndexSet::init().get(), -1);
    _selectedColumn = last;
    if (columns->isEqualToIndexSet(_selectedColumns)) return hadRows;
    _selectedColumns.set(columns);
    setNeedsDisplay(true);
    if (_headerView) _headerView->setNeedsDisplay(true);
    return true;
}

// Selects what the delegate allows of the rows between the two, alone.
bool NSTableView::selectSpan(NSInteger from, NSInteger to) {
    auto rows = NSMutableIndexSet::init();
    const NSInteger first = std::min(from, to), last = std::max(from, to);
    const auto delegate = _delegate.object();
    if (delegate && delegate->respondsToSelector("tableView:shouldSelectRow:"_sel)) {
        for (NSInteger row = first; row <= last && isRow(row); ++row)
            if (delegateAllowsRow(row)) rows->addIndex(static_cast<NSUInteger>(row));
    } else {
        rows->addIndexesInRange({static_cast<NSUInteger>(first), static_cast<NSUInteger>(last - first + 1)});
    }
    return setSelectedRows(rows,
                           isRow(to) && rows->containsIndex(static_cast<NSUInteger>(to)) ? to : lastOf(rows));
}

bool NSTableView::selectAlone(NSInteger row) {
    _anchorRow = row;
    return setSelectedRows(NSMutableIndexSet::initWithIndex(static_cast<NSUInteger>(row)).get(), row);
}

void NSTableView::tellSelection(bool isFinal) {
    if (isFinal)
        tell(NSTableViewSelectionDidChangeNotification, "tableViewSelectionDidChange:"_sel, nullptr);
    else
        tell(NSTableViewSelectionIsChangingNotification, "tableViewSelectionIsChanging:"_sel, nullptr);
}

}  // namespace pelvor
