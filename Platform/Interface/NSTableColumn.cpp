// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTableColumn.h"

#include <algorithm>
#include <cmath>

#include "Interface/InterfaceLibrary.h"
#include "Interface/NSTableHeaderCell.h"
#include "Interface/NSTableView.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableColumn, interfaceLibrary) {
    methods.creator<"initWithIdentifier:", &NSTableColumn::initWithIdentifier>();
    methods.instance<"identifier", &NSTableColumn::identifier>();
    methods.instance<"setIdentifier:", &NSTableColumn::setIdentifier>();
    methods.instance<"tableView", &NSTableColumn::tableView>();
    methods.instance<"width", &NSTableColumn::width>();
    methods.instance<"setWidth:", &NSTableColumn::setWidth>();
    methods.instance<"minWidth", &NSTableColumn::minWidth>();
    methods.instance<"setMinWidth:", &NSTableColumn::setMinWidth>();
    methods.instance<"maxWidth", &NSTableColumn::maxWidth>();
    methods.instance<"setMaxWidth:", &NSTableColumn::setMaxWidth>();
    methods.instance<"sizeToFit", &NSTableColumn::sizeToFit>();
    methods.instance<"resizingMask", &NSTableColumn::resizingMask>();
    methods.instance<"setResizingMask:", &NSTableColumn::setResizingMask>();
    methods.instance<"isResizable", &NSTableColumn::isResizable>();
    methods.instance<"setResizable:", &NSTableColumn::setResizable>();
    methods.instance<"isEditable", &NSTableColumn::isEditable>();
    methods.instance<"setEditable:", &NSTableColumn::setEditable>();
    methods.instance<"headerCell", &NSTableColumn::headerCell>();
    methods.instance<"setHeaderCell:", &NSTableColumn::setHeaderCell>();
    methods.instance<"dataCell", &NSTableColumn::dataCell>();
    methods.instance<"setDataCell:", &NSTableColumn::setDataCell>();
    methods.instance<"dataCellForRow:", &NSTableColumn::dataCellForRow>();
}

NSTableColumn::NSTableColumn()
    : _headerCell(NSTableHeaderCell::initTextCell(nullptr)),
      _dataCell(NSTextFieldCell::initTextCell(nullptr)) {
    _dataCell->setEditable(true);
}

Retained<NSTableColumn> NSTableColumn::initWithIdentifier(id identifier, Class* cls) {
    auto column = make<NSTableColumn>(cls);
    column->setIdentifier(identifier);
    return column;
}

void NSTableColumn::setIdentifier(id identifier) {
    auto* string = cast<NSString>(identifier);
    _identifier = string ? Retained<Object>(string->copy()) : Retained<Object>::retaining(identifier);
}

void NSTableColumn::setTableView(NSTableView* table) {
    _tableView = table;
    _dataCell->setControlView(table);
}

void NSTableColumn::setWidth(float width) {
    width = std::clamp(width, _minWidth, _maxWidth);
    if (width == _width || !std::isfinite(width)) return;
    const float oldWidth = std::exchange(_width, width);
    if (_tableView) _tableView->noteColumnResized(this, oldWidth);
}

void NSTableColumn::setMinWidth(float width) {
    _minWidth = std::max(width, 0.0f);
    _maxWidth = std::max(_maxWidth, _minWidth);
    setWidth(_width);
}

void NSTableColumn::setMaxWidth(float width) {
    _maxWidth = std::max(width, 0.0f);
    _minWidth = std::min(_maxWidth, _minWidth);
    setWidth(_width);
}

void NSTableColumn::sizeToFit() {
    const float width = _headerCell->cellSize().width;
    _minWidth = std::min(_minWidth, width);
    _maxWidth = std::max(_maxWidth, width);
    setWidth(width);
}

void NSTableColumn::setResizable(bool isResizable) {
    _resizingMask = isResizable ? NSTableColumnAutoresizingMask | NSTableColumnUserResizingMask
                                : NSUInteger{NSTableColumnNoResizing};
}

void NSTableColumn::setHeaderCell(NSCell* cell) {
    if (cell) _headerCell.set(cell);
}

void NSTableColumn::setDataCell(NSCell* cell) {
    if (!cell) return;
    _dataCell.set(cell);
    cell->setControlView(_tableView);
    if (_tableView) _tableView->setNeedsDisplay(true);
}

NSCell* NSTableColumn::dataCellForRow(NSInteger) { return _dataCell; }

}  // namespace pelvor
