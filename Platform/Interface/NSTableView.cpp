// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTableView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSActionCell.h"
#include "Interface/NSEvent.h"
#include "Interface/NSTableHeaderView.h"
#include "Interface/NSText.h"
#include "Interface/NSWindow.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSTableView::initWithFrame>();
    methods.instance<"dataSource", &NSTableView::dataSource>();
    methods.instance<"setDataSource:", &NSTableView::setDataSource>();
    methods.instance<"delegate", &NSTableView::delegate>();
    methods.instance<"setDelegate:", &NSTableView::setDelegate>();
    methods.instance<"reloadData", &NSTableView::reloadData>();
    methods.instance<"noteNumberOfRowsChanged", &NSTableView::noteNumberOfRowsChanged>();
    methods.instance<"numberOfRows", &NSTableView::numberOfRows>();
    methods.instance<"numberOfColumns", &NSTableView::numberOfColumns>();
    methods.instance<"tableColumns", &NSTableView::tableColumns>();
    methods.instance<"setTableColumns:", &NSTableView::setTableColumns>();
    methods.instance<"addTableColumn:", &NSTableView::addTableColumn>();
    methods.instance<"removeTableColumn:", &NSTableView::removeTableColumn>();
    methods.instance<"columnWithIdentifier:", &NSTableView::columnWithIdentifier>();
    methods.instance<"tableColumnWithIdentifier:", &NSTableView::tableColumnWithIdentifier>();
    methods.instance<"moveColumn:toColumn:", &NSTableView::moveColumn_toColumn>();
    methods.instance<"columnAutoresizingStyle", &NSTableView::columnAutoresizingStyle>();
    methods.instance<"setColumnAutoresizingStyle:", &NSTableView::setColumnAutoresizingStyle>();
    methods.instance<"sizeLastColumnToFit", &NSTableView::sizeLastColumnToFit>();
    methods.instance<"headerView", &NSTableView::headerView>();
    methods.instance<"setHeaderView:", &NSTableView::setHeaderView>();
    methods.instance<"rowHeight", &NSTableView::rowHeight>();
    methods.instance<"setRowHeight:", &NSTableView::setRowHeight>();
    methods.instance<"intercellSpacing", &NSTableView::intercellSpacing>();
    methods.instance<"setIntercellSpacing:", &NSTableView::setIntercellSpacing>();
    methods
        .instance<"usesAlternatingRowBackgroundColors", &NSTableView::usesAlternatingRowBackgroundColors>();
    methods.instance<"setUsesAlternatingRowBackgroundColors:",
                     &NSTableView::setUsesAlternatingRowBackgroundColors>();
    methods.instance<"gridStyleMask", &NSTableView::gridStyleMask>();
    methods.instance<"setGridStyleMask:", &NSTableView::setGridStyleMask>();
    methods.instance<"backgroundColor", &NSTableView::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSTableView::setBackgroundColor>();
    methods.instance<"gridColor", &NSTableView::gridColor>();
    methods.instance<"setGridColor:", &NSTableView::setGridColor>();
    methods.instance<"indicatorImageInTableColumn:", &NSTableView::indicatorImageInTableColumn>();
    methods.instance<"setIndicatorImage:inTableColumn:", &NSTableView::setIndicatorImage_inTableColumn>();
    methods.instance<"highlightedTableColumn", &NSTableView::highlightedTableColumn>();
    methods.instance<"setHighlightedTableColumn:", &NSTableView::setHighlightedTableColumn>();
    methods.instance<"allowsColumnReordering", &NSTableView::allowsColumnReordering>();
    methods.instance<"setAllowsColumnReordering:", &NSTableView::setAllowsColumnReordering>();
    methods.instance<"allowsColumnResizing", &NSTableView::allowsColumnResizing>();
    methods.instance<"setAllowsColumnResizing:", &NSTableView::setAllowsColumnResizing>();
    methods.instance<"allowsMultipleSelection", &NSTableView::allowsMultipleSelection>();
    methods.instance<"setAllowsMultipleSelection:", &NSTableView::setAllowsMultipleSelection>();
    methods.instance<"allowsEmptySelection", &NSTableView::allowsEmptySelection>();
    methods.instance<"setAllowsEmptySelection:", &NSTableView::setAllowsEmptySelection>();
    methods.instance<"allowsColumnSelection", &NSTableView::allowsColumnSelection>();
    methods.instance<"setAllowsColumnSelection:", &NSTableView::setAllowsColumnSelection>();
    methods.instance<"selectRowIndexes:byExtendingSelection:",
                     &NSTableView::selectRowIndexes_byExtendingSelection>();
    methods.instance<"selectColumnIndexes:byExtendingSelection:",
                     &NSTableView::selectColumnIndexes_byExtendingSelection>();
    methods.instance<"selectRow:byExtendingSelection:", &NSTableView::selectRow_byExtendingSelection>();
    methods.instance<"selectColumn:byExtendingSelection:", &NSTableView::selectColumn_byExtendingSelection>();
    methods.instance<"deselectRow:", &NSTableView::deselectRow>();
    methods.instance<"deselectColumn:", &NSTableView::deselectColumn>();
    methods.instance<"selectAll:", &NSTableView::selectAll>();
    methods.instance<"deselectAll:", &NSTableView::deselectAll>();
    methods.instance<"selectedRowIndexes", &NSTableView::selectedRowIndexes>();
    methods.instance<"selectedColumnIndexes", &NSTableView::selectedColumnIndexes>();
    methods.instance<"selectedRow", &NSTableView::selectedRow>();
    methods.instance<"selectedColumn", &NSTableView::selectedColumn>();
    methods.instance<"isRowSelected:", &NSTableView::isRowSelected>();
    methods.instance<"isColumnSelected:", &NSTableView::isColumnSelected>();
    methods.instance<"numberOfSelectedRows", &NSTableView::numberOfSelectedRows>();
    methods.instance<"numberOfSelectedColumns", &NSTableView::numberOfSelectedColumns>();
    methods.instance<"selectedRowEnumerator", &NSTableView::selectedRowEnumerator>();
    methods.instance<"selectedColumnEnumerator", &NSTableView::selectedColumnEnumerator>();
    methods.instance<"rectOfRow:", &NSTableView::rectOfRow>();
    methods.instance<"rectOfColumn:", &NSTableView::rectOfColumn>();
    methods.instance<"rowsInRect:", &NSTableView::rowsInRect>();
    methods.instance<"columnsInRect:", &NSTableView::columnsInRect>();
    methods.instance<"rowAtPoint:", &NSTableView::rowAtPoint>();
    methods.instance<"columnAtPoint:", &NSTableView::columnAtPoint>();
    methods.instance<"frameOfCellAtColumn:row:", &NSTableView::frameOfCellAtColumn_row>();
    methods.instance<"scrollRowToVisible:", &NSTableView::scrollRowToVisible>();
    methods.instance<"scrollColumnToVisible:", &NSTableView::scrollColumnToVisible>();
    methods.instance<"clickedRow", &NSTableView::clickedRow>();
    methods.instance<"clickedColumn", &NSTableView::clickedColumn>();
    methods.instance<"doubleAction", &NSTableView::doubleAction>();
    methods.instance<"setDoubleAction:", &NSTableView::setDoubleAction>();
    methods.instance<"editedRow", &NSTableView::editedRow>();
    methods.instance<"editedColumn", &NSTableView::editedColumn>();
    methods.instance<"editColumn:row:withEvent:select:", &NSTableView::editColumn_row_withEvent_select>();
    methods.instance<"textShouldBeginEditing:", &NSTableView::textShouldBeginEditing>();
    methods.instance<"textShouldEndEditing:", &NSTableView::textShouldEndEditing>();
    methods.instance<"textDidBeginEditing:", &NSTableView::textDidBeginEditing>();
    methods.instance<"textDidChange:", &NSTableView::textDidChange>();
    methods.instance<"textDidEndEditing:", &NSTableView::textDidEndEditing>();
    methods.instance<"drawRow:clipRect:", &NSTableView::drawRow_clipRect>();
    methods.instance<"highlightSelectionInClipRect:", &NSTableView::highlightSelectionInClipRect>();
    methods.instance<"drawGridInClipRect:", &NSTableView::drawGridInClipRect>();
    methods.instance<"drawBackgroundInClipRect:", &NSTableView::drawBackgroundInClipRect>();
    methods.instance<"tile", &NSTableView::tile>();
    methods.instance<"keyWindowChanged:", &NSTableView::keyWindowChanged>();
}

NSTableView::NSTableView()
    : _selectedRows(NSMutableIndexSet::init()),
      _selectedColumns(NSMutableIndexSet::init()),
      _rowHeight(metrics::kRowHeight) {}

Retained<NSTableView> NSTableView::initWithFrame(NSRect frame, Class* cls) {
    auto table = cast<NSTableView>(NSControl::initWithFrame(frame, cls));
    table->setHeaderView(
        NSTableHeaderView::initWithFrame({{0, 0}, {frame.size.width, metrics::kHeaderHeight}}).get());
    return table;
}

NSTableView::~NSTableView() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    for (const auto& column : _columns) column->setTableView(nullptr);
    if (_headerView) _headerView->setTableView(nullptr);
}

// MARK: Data

void NSTableView::setDataSource(id source) {
    _dataSource = WeakHandle(source);
    reloadData();
}

void NSTableView::setDelegate(id delegate) { _delegate = WeakHandle(delegate); }

void NSTableView::reloadData() {
    noteNumberOfRowsChanged();
    setNeedsDisplay(true);
}

void NSTableView::noteNumberOfRowsChanged() {
    const auto self = Retained<NSTableView>::retaining(this);
    abortEditing();
    _rowCount = -1;
    const NSInteger count = numberOfRows();
    tile();
    setNeedsDisplay(true);
    const NSUInteger last = _selectedRows->lastIndex();
    if (last == NSNotFound || static_cast<NSInteger>(last) < count) return;
    auto remaining = _selectedRows->mutableCopy();
    remaining->removeIndexesInRange(
        {static_cast<NSUInteger>(count), NSNotFound - static_cast<NSUInteger>(count)});
    const NSUInteger newLast = remaining->lastIndex();
    if (setSelectedRows(remaining, newLast == NSNotFound ? -1 : static_cast<NSInteger>(newLast)))
        tellSelection(true);
}

NSInteger NSTableView::numberOfRows() {
    if (_rowCount < 0) {
        _rowCount = 0;  // for who asks again on the way
        const auto source = _dataSource.object();
        if (source && source->respondsToSelector("numberOfRowsInTableView:"_sel))
            _rowCount = std::max(0, send<NSInteger>(source, "numberOfRowsInTableView:"_sel, this));
    }
    return _rowCount;
}

id NSTableView::objectValueAtColumn_row(NSTableColumn* column, NSInteger row) {
    const auto source = _dataSource.object();
    const SEL kGetter = "tableView:objectValueForTableColumn:row:"_sel;
    return source && source->respondsToSelector(kGetter) ? send<id>(source, kGetter, this, column, row)
                                                         : nullptr;
}

// MARK: Columns

NSArray* NSTableView::tableColumns() {
    auto columns = NSMutableArray::init();
    for (const auto& column : _columns) columns->addObject(column);
    return columns->copy().autorelease();
}

NSInteger NSTableView::indexOfColumn(NSTableColumn* column) {
    const auto found = std::find(_columns.begin(), _columns.end(), column);
    return found == _columns.end() ? -1 : static_cast<NSInteger>(found - _columns.begin());
}

void NSTableView::setTableColumns(NSArray* columns) {
    constexpr const char* kOperation = "setTableColumns:";
    const auto self = Retained<NSTableView>::retaining(this);
    std::vector<Retained<NSTableColumn>> wanted;
    for (id object : columns) {
        auto* column = cast<NSTableColumn>(object);
        if (!column) raiseBadArgument(kOperation, "an object of the array is no column");
        if (column->tableView() && column->tableView() != this)
            raiseBadArgument(kOperation, "a column of the array is in another table");
        if (std::find(wanted.begin(), wanted.end(), column) != wanted.end())
            raiseBadArgument(kOperation, "a column stands in the array twice");
        wanted.push_back(Retained<NSTableColumn>::retaining(column));
    }
    for (const auto& column : std::vector<Retained<NSTableColumn>>(_columns)) removeTableColumn(column);
    for (const auto& column : wanted) addTableColumn(column);
}

void NSTableView::addTableColumn(NSTableColumn* column) {
    requireArgument(column, "addTableColumn:", "the column");
    if (column->tableView()) raiseBadArgument("addTableColumn:", "the column is in a table already");
    _columns.push_back(Retained<NSTableColumn>::retaining(column));
    column->setTableView(this);
    tile();
    setNeedsDisplay(true);
}

void NSTableView::removeTableColumn(NSTableColumn* column) {
    const NSInteger index = indexOfColumn(column);
    if (index < 0) return;
    const auto self = Retained<NSTableView>::retaining(this);
    const auto removed = Retained<NSTableColumn>::retaining(column);
    abortEditing();
    _columns.erase(_columns.begin() + index);
    column->setTableView(nullptr);
    std::erase_if(_indicators, [&](const auto& indicator) { return indicator.first == column; });
    if (_highlightedColumn == column) _highlightedColumn = nullptr;
    tile();
    setNeedsDisplay(true);
    // The selected columns behind it move up.
    auto selected = NSMutableIndexSet::init();
    const auto removedIndex = static_cast<NSUInteger>(index);
    for (NSRange run : _selectedColumns->runs())
        for (NSUInteger i = run.location; i < NSMaxRange(run); ++i)
            if (i != removedIndex) selected->addIndex(i > removedIndex ? i - 1 : i);
    const NSUInteger last = selected->lastIndex();
    if (setSelectedColumns(selected, last == NSNotFound ? -1 : static_cast<NSInteger>(last)))
        tellSelection(true);
}

NSInteger NSTableView::columnWithIdentifier(id identifier) {
    for (std::size_t i = 0; i < _columns.size(); ++i) {
        id own = _columns[i]->identifier();
        if (own == identifier || (own && identifier && own->isEqual(identifier)))
            return static_cast<NSInteger>(i);
    }
    return -1;
}

NSTableColumn* NSTableView::tableColumnWithIdentifier(id identifier) {
    const NSInteger index = columnWithIdentifier(identifier);
    return index < 0 ? nullptr : _columns[static_cast<std::size_t>(index)].get();
}

void NSTableView::moveColumn_toColumn(NSInteger column, NSInteger newIndex) {
    const auto count = static_cast<NSUInteger>(_columns.size());
    requireIndex(static_cast<NSUInteger>(column), count, "moveColumn:toColumn:");
    requireIndex(static_cast<NSUInteger>(newIndex), count, "moveColumn:toColumn:");
    if (column == newIndex) return;
    const auto self = Retained<NSTableView>::retaining(this);
    abortEditing();
    const auto begin = _columns.begin();
    if (column < newIndex)
        std::rotate(begin + column, begin + column + 1, begin + newIndex + 1);
    else
        std::rotate(begin + newIndex, begin + column, begin + column + 1);
    const auto placeAfter = [&](NSInteger place) {
        if (place == column) return newIndex;
        if (place > column && place <= newIndex) return place - 1;
        return place < column && place >= newIndex ? place + 1 : place;
    };
    auto selected = NSMutableIndexSet::init();
    for (NSRange run : _selectedColumns->runs())
        for (NSUInteger i = run.location; i < NSMaxRange(run); ++i)
            selected->addIndex(static_cast<NSUInteger>(placeAfter(static_cast<NSInteger>(i))));
    _selectedColumns = std::move(selected);
    if (_selectedColumn >= 0) _selectedColumn = placeAfter(_selectedColumn);
    tile();
    setNeedsDisplay(true);
    auto info = NSMutableDictionary::init();
    info->setObject_forKey(NSNumber::numberWithInt(column), u"NSOldColumn"_ns);
    info->setObject_forKey(NSNumber::numberWithInt(newIndex), u"NSNewColumn"_ns);
    tell(NSTableViewColumnDidMoveNotification, "tableViewColumnDidMove:"_sel, info);
}

void NSTableView::noteColumnResized(NSTableColumn* column, float oldWidth) {
    const auto self = Retained<NSTableView>::retaining(this);
    const auto kept = Retained<NSTableColumn>::retaining(column);
    tile();
    setNeedsDisplay(true);
    auto info = NSMutableDictionary::init();
    info->setObject_forKey(column, u"NSTableColumn"_ns);
    info->setObject_forKey(NSNumber::numberWithFloat(oldWidth), u"NSOldWidth"_ns);
    tell(NSTableViewColumnDidResizeNotification, "tableViewColumnDidResize:"_sel, info);
}

// MARK: Widths

namespace {

// The view that shows a part of the table, or null.
NSView* clipView(NSView* table) {
    NSView* around = table->superview();
    return around && around->respondsToSelector("documentVisibleRect"_sel) ? around : nullptr;
}

}  // namespace

void NSTableView::setColumnAutoresizingStyle(NSTableViewColumnAutoresizingStyle style) {
    _autoresizingStyle = style;
}

float NSTableView::visibleWidth() {
    NSView* clip = clipView(this);
    return clip ? clip->bounds().size.width : bounds().size.width;
}

void NSTableView::sizeToFit() {
    if (_columns.empty()) return;
    distribute(visibleWidth() - columnEdges().back());
}

void NSTableView::sizeLastColumnToFit() {
    if (_columns.empty()) return;
    NSTableColumn* last = _columns.back();
    last->setWidth(last->width() + visibleWidth() - columnEdges().back());
}

// Gives the columns that follow the table's width a difference of it, as the style says.
void NSTableView::distribute(float difference) {
    std::vector<Retained<NSTableColumn>> columns;
    for (const auto& column : _columns)
        if (column->resizingMask() & NSTableColumnAutoresizingMask) columns.push_back(column);
    if (columns.empty() || _autoresizingStyle == NSTableViewNoColumnAutoresizing) return;
    switch (_autoresizingStyle) {
        case NSTableViewLastColumnOnlyAutoresizingStyle:
            columns = {columns.back()};
            break;
        case NSTableViewFirstColumnOnlyAutoresizingStyle:
            columns.resize(1);
            break;
        case NSTableViewSequentialColumnAutoresizingStyle:
            std::reverse(columns.begin(), columns.end());
            break;
        default:
            break;
    }
    const bool isUniform = _autoresizingStyle == NSTableViewUniformColumnAutoresizingStyle;
    // A column that has reached its limit leaves the rest to those that follow.
    for (std::size_t i = 0; i < columns.size() && difference != 0; ++i) {
        const float oldWidth = columns[i]->width();
        const float share =
            isUniform ? std::trunc(difference / static_cast<float>(columns.size() - i)) : difference;
        columns[i]->setWidth(oldWidth + share);
        difference -= columns[i]->width() - oldWidth;
    }
}

void NSTableView::setFrameSize(NSSize size) {
    NSControl::setFrameSize(size);
    if (!_isTiling) tile();
}

void NSTableView::resizeWithOldSuperviewSize(NSSize oldSize) {
    NSView* clip = clipView(this);
    if (!clip) return NSControl::resizeWithOldSuperviewSize(oldSize);
    const float difference = clip->bounds().size.width - oldSize.width;
    if (difference != 0) distribute(difference);
    tile();
}

void NSTableView::viewDidMoveToSuperview() { tile(); }

void NSTableView::tile() {
    if (_isTiling) return;
    const auto self = Retained<NSTableView>::retaining(this);
    NSSize size{columnEdges().back(), pitch() * static_cast<float>(numberOfRows())};
    if (NSView* clip = clipView(this)) {
        const NSSize room = clip->bounds().size;
        size = {std::max(size.width, room.width), std::max(size.height, room.height)};
    } else {
        const NSSize present = frame().size;
        size = {std::max(size.width, present.width), std::max(size.height, present.height)};
    }
    _isTiling = true;
    if (!(size == frame().size)) NSControl::setFrameSize(size);
    _isTiling = false;
    if (_headerView) _headerView->fitTable();
}

// MARK: Look

void NSTableView::setHeaderView(NSTableHeaderView* view) {
    if (view == _headerView) return;
    if (_headerView) _headerView->setTableView(nullptr);
    _headerView.set(view);
    if (view) view->setTableView(this);
    tile();
}

void NSTableView::setRowHeight(float height) {
    if (!(height > 0) || !std::isfinite(height))
        raiseBadArgument("setRowHeight:", "a row cannot be " + std::to_string(height) + " points high");
    _rowHeight = height;
    tile();
    setNeedsDisplay(true);
}

void NSTableView::setIntercellSpacing(NSSize spacing) {
    const auto usable = [](float length) { return std::isfinite(length) ? std::max(length, 0.0f) : 0; };
    _spacing = {usable(spacing.width), usable(spacing.height)};
    tile();
    setNeedsDisplay(true);
}

void NSTableView::setUsesAlternatingRowBackgroundColors(bool alternates) {
    _alternatesRows = alternates;
    setNeedsDisplay(true);
}

void NSTableView::setGridStyleMask(NSUInteger mask) {
    _gridStyle = mask;
    setNeedsDisplay(true);
}

NSColor* NSTableView::backgroundColor() {
    return _backgroundColor ? _backgroundColor.get() : themeColor(ThemeColor::content);
}

void NSTableView::setBackgroundColor(NSColor* color) {
    _backgroundColor.set(color);
    setNeedsDisplay(true);
}

NSColor* NSTableView::gridColor() { return _gridColor ? _gridColor.get() : themeColor(ThemeColor::grid); }

void NSTableView::setGridColor(NSColor* color) {
    _gridColor.set(color);
    setNeedsDisplay(true);
}

NSImage* NSTableView::indicatorImageInTableColumn(NSTableColumn* column) {
    for (const auto& [owner, image] : _indicators)
        if (owner == column) return image;
    return nullptr;
}

void NSTableView::setIndicatorImage_inTableColumn(NSImage* image, NSTableColumn* column) {
    std::erase_if(_indicators, [&](const auto& indicator) { return indicator.first == column; });
    if (image && indexOfColumn(column) >= 0)
        _indicators.emplace_back(Retained<NSTableColumn>::retaining(column),
                                 Retained<NSImage>::retaining(image));
    if (_headerView) _headerView->setNeedsDisplay(true);
}

void NSTableView::setHighlightedTableColumn(NSTableColumn* column) {
    _highlightedColumn = indexOfColumn(column) < 0 ? nullptr : column;
    if (_headerView) _headerView->setNeedsDisplay(true);
}

bool NSTableView::isOpaque() { return backgroundColor()->alphaComponent() >= 1; }

void NSTableView::updateCell(NSCell* cell) {
    if (_cellUses > 0) return;
    for (std::size_t i = 0; i < _columns.size(); ++i)
        if (_columns[i]->dataCell() == cell)
            return setNeedsDisplayInRect(rectOfColumn(static_cast<NSInteger>(i)));
    NSControl::updateCell(cell);
}

// MARK: Places

// Where the columns begin, and where the last one ends.
std::vector<float> NSTableView::columnEdges() {
    std::vector<float> edges{0};
    edges.reserve(_columns.size() + 1);
    for (const auto& column : _columns) edges.push_back(edges.back() + column->width() + _spacing.width);
    return edges;
}

NSRect NSTableView::rectOfRow(NSInteger row) {
    if (!isRow(row)) return NSZeroRect;
    return {{0, pitch() * static_cast<float>(row)}, {bounds().size.width, pitch()}};
}

NSRect NSTableView::rectOfColumn(NSInteger column) {
    if (!isColumn(column)) return NSZeroRect;
    const std::vector<float> edges = columnEdges();
    const float left = edges[static_cast<std::size_t>(column)];
    return {{left, 0}, {edges[static_cast<std::size_t>(column) + 1] - left, bounds().size.height}};
}

NSRange NSTableView::rowsInRect(NSRect rect) {
    const double count = numberOfRows(), height = pitch();
    const double top = std::max(0.0, std::floor(rect.origin.y / height));
    const double bottom = std::min(count, std::ceil(NSMaxY(rect) / height));
    if (NSIsEmptyRect(rect) || !(top < bottom)) return {0, 0};
    return {static_cast<NSUInteger>(top), static_cast<NSUInteger>(bottom - top)};
}

NSRange NSTableView::columnsInRect(NSRect rect) {
    const std::vector<float> edges = columnEdges();
    NSUInteger first = 0, count = 0;
    for (std::size_t i = 0; i < _columns.size() && !NSIsEmptyRect(rect); ++i) {
        if (!(edges[i] < NSMaxX(rect) && edges[i + 1] > NSMinX(rect))) continue;
        if (count++ == 0) first = static_cast<NSUInteger>(i);
    }
    return {first, count};
}

NSInteger NSTableView::rowAtPoint(NSPoint point) {
    if (!NSPointInRect(point, bounds())) return -1;
    const auto row = static_cast<NSInteger>(std::floor(point.y / pitch()));
    return isRow(row) ? row : -1;
}

NSInteger NSTableView::columnAtPoint(NSPoint point) {
    if (!NSPointInRect(point, bounds())) return -1;
    const std::vector<float> edges = columnEdges();
    const auto edge = std::upper_bound(edges.begin(), edges.end(), point.x);
    const auto column = static_cast<NSInteger>(edge - edges.begin()) - 1;
    return isColumn(column) ? column : -1;
}

NSRect NSTableView::frameOfCellAtColumn_row(NSInteger column, NSInteger row) {
    if (!isColumn(column) || !isRow(row)) return NSZeroRect;
    const NSRect cell = NSIntersectionRect(rectOfColumn(column), rectOfRow(row));
    return NSInsetRect(cell, _spacing.width / 2, _spacing.height / 2);
}

void NSTableView::scrollRowToVisible(NSInteger row) {
    if (!isRow(row)) return;
    const NSRect place = rectOfRow(row), visible = visibleRect();
    scrollRectToVisible({{visible.origin.x, place.origin.y}, {visible.size.width, place.size.height}});
}

void NSTableView::scrollColumnToVisible(NSInteger column) {
    if (!isColumn(column)) return;
    const NSRect place = rectOfColumn(column), visible = visibleRect();
    scrollRectToVisible({{place.origin.x, visible.origin.y}, {place.size.width, visible.size.height}});
}

// MARK: Telling

void NSTableView::tell(NSString* notification, SEL message, NSDictionary* info) {
    const auto self = Retained<NSTableView>::retaining(this);
    auto note = NSNotification::notificationWithName_object_userInfo(notification, this, info);
    NSNotificationCenter::defaultCenter()->postNotification(note);
    tellDelegate(message, note);
}

}  // namespace pelvor
