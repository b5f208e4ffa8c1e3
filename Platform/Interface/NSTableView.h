// SPDX-License-Identifier: Apache-2.0
// NSTableView: rows and columns of values.
#pragma once

#include <vector>

#include "Foundation/NSMutableIndexSet.h"
#include "Interface/NSControl.h"
#include "Interface/NSTableColumn.h"
#include "Runtime/Message.h"

namespace pelvor {

class NSEnumerator;
class NSNotification;
class NSTableHeaderView;

// Posted by tables, which are the sender. The delegate gets the same as a message,
// `tableViewSelectionDidChange:` and so on, if it has a method for it.

inline constexpr NSString* NSTableViewSelectionDidChangeNotification =
    u"NSTableViewSelectionDidChangeNotification"_ns;
/// While the mouse is dragged over rows.
inline constexpr NSString* NSTableViewSelectionIsChangingNotification =
    u"NSTableViewSelectionIsChangingNotification"_ns;
/// The user information has NSNumbers under "NSOldColumn" and "NSNewColumn".
inline constexpr NSString* NSTableViewColumnDidMoveNotification = u"NSTableViewColumnDidMoveNotification"_ns;
/// The user information has the column under "NSTableColumn" and its former width under "NSOldWidth".
inline constexpr NSString* NSTableViewColumnDidResizeNotification =
    u"NSTableViewColumnDidResizeNotification"_ns;

/// Which columns become wider or narrower with the table.
enum NSTableViewColumnAutoresizingStyle : int {
    NSTableViewNoColumnAutoresizing = 0,
    NSTableViewUniformColumnAutoresizingStyle = 1,            ///< all by the same length
    NSTableViewSequentialColumnAutoresizingStyle = 2,         ///< the last one, then the one before it, …
    NSTableViewReverseSequentialColumnAutoresizingStyle = 3,  ///< the first one, then the second, …
    NSTableViewLastColumnOnlyAutoresizingStyle = 4,
    NSTableViewFirstColumnOnlyAutoresizingStyle = 5,
};

/// Lines between rows and columns, joined by "|".
enum : NSUInteger {
    NSTableViewGridNone = 0,
    NSTableViewSolidVerticalGridLineMask = 1,
    NSTableViewSolidHorizontalGridLineMask = 2,
};

/// Rows and columns of values, which a data source gives when they are drawn:
///
///     auto table = NSTableView::initWithFrame({{0, 0}, {400, 300}});
///     table->addTableColumn(NSTableColumn::initWithIdentifier(u"name"_ns).get());
///     table->setDataSource(people);
///     scrollView->setDocumentView(table);                    // which shows the table's header too
///
/// **The data source** has `numberOfRowsInTableView:`, asked once and again after `reloadData`, and
/// `tableView:objectValueForTableColumn:row:`, asked for rows that are drawn; where values can be changed,
/// `tableView:setObjectValue:forTableColumn:row:`. A table takes no time and no memory for rows that are not
/// seen.
///
/// **The delegate** may have `tableView:willDisplayCell:forTableColumn:row:`,
/// `tableView:shouldEditTableColumn:row:`, `selectionShouldChangeInTableView:`, `tableView:shouldSelectRow:`,
/// `tableView:shouldSelectTableColumn:`, `tableView:mouseDownInHeaderOfTableColumn:`,
/// `tableView:didClickTableColumn:`, `tableView:didDragTableColumn:`, and the messages of the notifications.
/// Of what the program does itself by the operations below, the delegate is told but not asked; `selectAll`
/// and `deselectAll` ask as well.
///
/// **The user** selects rows by mouse and keys: Shift extends the selection, the command key adds and takes
/// away, where several rows may be selected. The arrows, Home, End, Page Up and Page Down move the selection;
/// Return edits the selected row where it can be edited, and else does what a double click does. A click
/// sends the action, a double click the double action.
///
/// Rows and columns are counted from 0; -1 stands for none. Main thread.
class PELVOR_EXPORT NSTableView : public NSControl {
    PELVOR_CLASS(NSTableView, NSControl);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// A table without columns, with a header view.
    static Retained<NSTableView> initWithFrame(NSRect frame, Class* cls = classObject());

    // What is shown. Neither is kept alive; null once it has ended.

    id dataSource() { return _dataSource.object().autorelease(); }
    /// Loads the data again.
    virtual void setDataSource(id source);
    id delegate() { return _delegate.object().autorelease(); }
    virtual void setDelegate(id delegate);
    /// Everything may be different: the number of rows is asked again, and all rows are drawn. Selected rows
    /// that no longer exist are deselected.
    virtual void reloadData();
    /// The number of rows is different.
    virtual void noteNumberOfRowsChanged();
    NSInteger numberOfRows();
    NSInteger numberOfColumns() { return static_cast<NSInteger>(_columns.size()); }

    // Columns

    /// An array that later changes leave alone, from the left to the right.
    NSArray* tableColumns();
    /// Replaces all columns by these, from the left to the right; for interface files. Raises
    /// NSInvalidArgumentException for an object that is no column, a column of another table, and one that
    /// stands in the array twice. Null stands for no columns.
    void setTableColumns(NSArray* columns);
    /// Behind all others. Raises NSInvalidArgumentException for null and for a column of another table.
    virtual void addTableColumn(NSTableColumn* column);
    /// Does nothing if the table does not have the column.
    virtual void removeTableColumn(NSTableColumn* column);
    /// Where the column with an equal identifier stands, or -1.
    NSInteger columnWithIdentifier(id identifier);
    NSTableColumn* tableColumnWithIdentifier(id identifier);
    /// Raises NSRangeException for columns that do not exist.
    virtual void moveColumn_toColumn(NSInteger column, NSInteger newIndex);
    NSTableViewColumnAutoresizingStyle columnAutoresizingStyle() { return _autoresizingStyle; }
    /// The last column only, at first.
    void setColumnAutoresizingStyle(NSTableViewColumnAutoresizingStyle style);
    /// Has the columns fill the visible width, as the style says.
    void sizeToFit() override;
    /// Has the last column fill what the others leave of the visible width.
    void sizeLastColumnToFit();

    // Look

    NSTableHeaderView* headerView() { return _headerView; }
    /// Null for a table without titles.
    void setHeaderView(NSTableHeaderView* view);
    float rowHeight() { return _rowHeight; }
    /// Of the cells; a height that is not above 0 raises NSInvalidArgumentException.
    void setRowHeight(float height);
    /// Between cells; half of it is on each side of a cell.
    NSSize intercellSpacing() { return _spacing; }
    void setIntercellSpacing(NSSize spacing);
    bool usesAlternatingRowBackgroundColors() { return _alternatesRows; }
    void setUsesAlternatingRowBackgroundColors(bool alternates);
    NSUInteger gridStyleMask() { return _gridStyle; }
    void setGridStyleMask(NSUInteger mask);
    NSColor* backgroundColor();
    /// Null stands for the system's colour.
    void setBackgroundColor(NSColor* color);
    NSColor* gridColor();
    void setGridColor(NSColor* color);
    /// A picture in the header of the column, null for none.
    NSImage* indicatorImageInTableColumn(NSTableColumn* column);
    void setIndicatorImage_inTableColumn(NSImage* image, NSTableColumn* column);
    /// The column whose title is drawn as pressed, or null; not kept alive.
    NSTableColumn* highlightedTableColumn() { return _highlightedColumn; }
    void setHighlightedTableColumn(NSTableColumn* column);

    // What the user may do; all but column selection at first.

    bool allowsColumnReordering() { return _allowsColumnReordering; }
    void setAllowsColumnReordering(bool allows) { _allowsColumnReordering = allows; }
    bool allowsColumnResizing() { return _allowsColumnResizing; }
    void setAllowsColumnResizing(bool allows) { _allowsColumnResizing = allows; }
    /// Several rows or columns; not at first.
    bool allowsMultipleSelection() { return _allowsMultipleSelection; }
    void setAllowsMultipleSelection(bool allows) { _allowsMultipleSelection = allows; }
    bool allowsEmptySelection() { return _allowsEmptySelection; }
    void setAllowsEmptySelection(bool allows) { _allowsEmptySelection = allows; }
    /// Columns, by a click on their titles.
    bool allowsColumnSelection() { return _allowsColumnSelection; }
    void setAllowsColumnSelection(bool allows) { _allowsColumnSelection = allows; }

    // Selection: rows or columns, never both. Operations that name a row or column that does not exist raise
    // NSRangeException.

    /// Selects the rows in the place of the selection, or besides it where several may be selected.
    virtual void selectRowIndexes_byExtendingSelection(NSIndexSet* rows, bool extends);
    virtual void selectColumnIndexes_byExtendingSelection(NSIndexSet* columns, bool extends);
    virtual void selectRow_byExtendingSelection(NSInteger row, bool extends);
    virtual void selectColumn_byExtendingSelection(NSInteger column, bool extends);
    virtual void deselectRow(NSInteger row);
    virtual void deselectColumn(NSInteger column);
    /// All rows, where several may be selected and the delegate allows the change.
    virtual void selectAll(id sender);
    /// Nothing, where that is allowed and the delegate allows the change.
    virtual void deselectAll(id sender);
    /// Sets that later changes leave alone.
    NSIndexSet* selectedRowIndexes();
    NSIndexSet* selectedColumnIndexes();
    /// The row that was selected last, or -1.
    NSInteger selectedRow() { return _selectedRow; }
    NSInteger selectedColumn() { return _selectedColumn; }
    bool isRowSelected(NSInteger row);
    bool isColumnSelected(NSInteger column);
    NSInteger numberOfSelectedRows();
    NSInteger numberOfSelectedColumns();
    /// Of NSNumbers, in ascending order.
    NSEnumerator* selectedRowEnumerator();
    NSEnumerator* selectedColumnEnumerator();

    // Places. Rectangles of rows and columns that do not exist are NSZeroRect.

    NSRect rectOfRow(NSInteger row);
    NSRect rectOfColumn(NSInteger column);
    /// The rows and columns that have a part in the rectangle; {0, 0} for none.
    NSRange rowsInRect(NSRect rect);
    NSRange columnsInRect(NSRect rect);
    NSInteger rowAtPoint(NSPoint point);
    NSInteger columnAtPoint(NSPoint point);
    virtual NSRect frameOfCellAtColumn_row(NSInteger column, NSInteger row);
    /// Scrolls as little as shows the row or column; does nothing for one that does not exist.
    void scrollRowToVisible(NSInteger row);
    void scrollColumnToVisible(NSInteger column);

    // Clicks

    /// Where the user clicked that is told by the action; -1 where there was none.
    NSInteger clickedRow() { return _clickedRow; }
    NSInteger clickedColumn() { return _clickedColumn; }
    SEL doubleAction() { return _doubleAction; }
    void setDoubleAction(SEL action) { _doubleAction = action; }
    void keyDown(NSEvent* event) override;
    void mouseDown(NSEvent* event) override;

    // Editing, in the window's field editor

    /// The place that is being edited; -1 for none.
    NSInteger editedRow() { return _editedRow; }
    NSInteger editedColumn() { return _editedColumn; }
    /// Edits the text of the place, with all of it selected or with what the event does, which may be null.
    /// Return and Tab give the data source the text; Tab goes to the next column that can be edited, Escape
    /// forgets what was typed. Neither columns nor delegate are asked whether they can be edited. Does
    /// nothing if the table is in no window or the place has no text. Raises NSRangeException for a place
    /// that does not exist.
    virtual void editColumn_row_withEvent_select(NSInteger column, NSInteger row, NSEvent* event,
                                                 bool select);
    bool abortEditing() override;
    void validateEditing() override {}

    // What the field editor asks and tells its delegate, which the table is. The table's delegate may have
    // `control:textShouldBeginEditing:` and the others that NSTextField describes.

    virtual bool textShouldBeginEditing(NSText* text);
    virtual bool textShouldEndEditing(NSText* text);
    virtual void textDidBeginEditing(NSNotification* notification);
    virtual void textDidChange(NSNotification* notification);
    virtual void textDidEndEditing(NSNotification* notification);

    // Drawing, also for subclasses that draw in other ways. Rectangles are in the table's coordinates.

    virtual void drawRow_clipRect(NSInteger row, NSRect clip);
    virtual void highlightSelectionInClipRect(NSRect clip);
    virtual void drawGridInClipRect(NSRect clip);
    virtual void drawBackgroundInClipRect(NSRect clip);
    /// Takes the size that the rows and columns need. The operations that change them call it.
    virtual void tile();

    // Of the superclass

    void drawRect(NSRect dirty) override;
    bool isOpaque() override;
    void updateCell(NSCell* cell) override;
    void setFrameSize(NSSize size) override;
    void resizeWithOldSuperviewSize(NSSize oldSize) override;
    void viewWillMoveToWindow(NSWindow* window) override;
    void viewDidMoveToWindow() override;
    void viewDidMoveToSuperview() override;
    bool acceptsFirstResponder() override;
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void resetCursorRects() override {}

    // C++ only

    /// The columns themselves; valid until one is added, moved or removed.
    const std::vector<Retained<NSTableColumn>>& columns() { return _columns; }
    /// -1 for a column of another table.
    NSInteger indexOfColumn(NSTableColumn* column);
    /// Called by a column whose width has changed.
    void noteColumnResized(NSTableColumn* column, float oldWidth);
    /// Called by the header view: presses, drags and clicks of titles.
    void pressHeader(NSTableColumn* column);
    void dragHeader(NSTableColumn* column);
    void clickHeader(NSInteger column, NSUInteger modifiers);

  protected:
    NSTableView();
    ~NSTableView();

    /// The value that the data source has for the place; null without one.
    id objectValueAtColumn_row(NSTableColumn* column, NSInteger row);

  private:
    std::vector<float> columnEdges();
    float pitch() { return _rowHeight + _spacing.height; }
    bool isRow(NSInteger row) { return row >= 0 && row < numberOfRows(); }
    bool isColumn(NSInteger column) { return column >= 0 && column < numberOfColumns(); }
    float visibleWidth();
    void distribute(float difference);
    Retained<NSCell> preparedCell(NSTableColumn* column, NSInteger columnIndex, NSInteger row);
    Retained<NSCell> copiedCell(NSTableColumn* column, NSInteger columnIndex, NSInteger row);

    // Whether the delegate has no method for the question, or says yes.
    template <class... Arguments>
    bool delegateAllows(SEL question, Arguments... arguments) {
        const auto delegate = _delegate.object();
        return !delegate || !delegate->respondsToSelector(question) ||
               send<bool>(delegate, question, this, arguments...);
    }
    template <class... Arguments>
    void tellDelegate(SEL message, Arguments... arguments) {
        const auto delegate = _delegate.object();
        if (delegate && delegate->respondsToSelector(message)) send(delegate, message, arguments...);
    }
    bool delegateAllowsChange() { return delegateAllows("selectionShouldChangeInTableView:"_sel); }
    bool delegateAllowsRow(NSInteger row) { return delegateAllows("tableView:shouldSelectRow:"_sel, row); }
    bool setSelectedRows(NSMutableIndexSet* rows, NSInteger last);
    bool setSelectedColumns(NSMutableIndexSet* columns, NSInteger last);
    void redrawSelectedRows();
    void tell(NSString* notification, SEL message, NSDictionary* info);
    void tellSelection(bool isFinal);
    bool isActive();
    void keyWindowChanged(id notification);

    bool pressRow(NSInteger row, NSUInteger modifiers);
    bool followMouse();
    bool canChange(NSInteger column, NSInteger row);
    bool trackCell(NSEvent* event);
    bool moveSelection(NSInteger row, int direction, bool extends);
    bool selectSpan(NSInteger from, NSInteger to);
    bool selectAlone(NSInteger row);
    NSInteger rowsOnPage();
    void open(NSInteger column, NSInteger row);
    bool canEdit(NSInteger column, NSInteger row);
    NSInteger nextEditable(NSInteger column, NSInteger row, NSInteger step);

    WeakHandle _dataSource, _delegate;
    std::vector<Retained<NSTableColumn>> _columns;
    Retained<NSTableHeaderView> _headerView;
    Retained<NSMutableIndexSet> _selectedRows, _selectedColumns;
    Retained<NSColor> _backgroundColor, _gridColor;
    std::vector<std::pair<Retained<NSTableColumn>, Retained<NSImage>>> _indicators;
    Unretained<NSTableColumn> _highlightedColumn = nullptr;
    SEL _doubleAction;
    NSSize _spacing{3, 2};
    float _rowHeight;
    NSUInteger _gridStyle = NSTableViewGridNone;
    NSTableViewColumnAutoresizingStyle _autoresizingStyle = NSTableViewLastColumnOnlyAutoresizingStyle;
    NSInteger _rowCount = -1;  // below 0 until somebody asks
    NSInteger _selectedRow = -1, _selectedColumn = -1;
    NSInteger _anchorRow = -1;  // where a selection that Shift extends begins
    NSInteger _clickedRow = -1, _clickedColumn = -1;
    NSInteger _editedRow = -1, _editedColumn = -1;
    Retained<NSCell> _editedCell;   // the copy that is edited
    Retained<NSCell> _trackedCell;  // the copy that follows the mouse, for the place that was clicked
    int _cellUses = 0;              // cells are set up for a row at the moment, not changed
    bool _alternatesRows = false;
    bool _allowsColumnReordering = true;
    bool _allowsColumnResizing = true;
    bool _allowsMultipleSelection = false;
    bool _allowsEmptySelection = true;
    bool _allowsColumnSelection = false;
    bool _isTiling = false;
};

}  // namespace pelvor
