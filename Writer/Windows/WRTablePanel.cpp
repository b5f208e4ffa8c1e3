// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRTablePanel.h"

#include "Foundation/NSArray.h"
#include "Interface/NSCell.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTableColumn.h"
#include "PBAutoscrollingTableView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSSize kSize{520, 360};

}  // namespace

PELVOR_DEFINE_CLASS(WRTablePanel, windowsLibrary) {
    methods.instance<"window", &WRTablePanel::window>();
    methods.instance<"reload", &WRTablePanel::reload>();
    methods.instance<"numberOfRowsInTableView:", &WRTablePanel::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &WRTablePanel::tableView_objectValueForTableColumn_row>();
    methods.instance<"chooseRow:", &WRTablePanel::chooseRow>();
}

WRTablePanel::WRTablePanel() = default;
WRTablePanel::~WRTablePanel() = default;

void WRTablePanel::makeWindow(NSString* title, std::span<const Column> columns) {
    _window =
        WRPalette::create({{0, 0}, kSize}, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask);
    _window->setTitle(title);
    _table = PBAutoscrollingTableView::initWithFrame({{0, 0}, kSize});
    for (const Column& each : columns) {
        auto column = NSTableColumn::initWithIdentifier(each.title);
        column->headerCell()->setStringValue(each.title);
        column->setWidth(each.width);
        column->setEditable(false);
        _table->addTableColumn(column);
    }
    _table->setUsesAlternatingRowBackgroundColors(true);
    _table->setDataSource(this);
    _table->setDelegate(this);
    _table->setTarget(this);
    _table->setDoubleAction("chooseRow:"_sel);
    auto scrollView = NSScrollView::initWithFrame({{0, 0}, kSize});
    scrollView->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
    scrollView->setHasVerticalScroller(true);
    scrollView->setAutohidesScrollers(true);
    scrollView->setDocumentView(_table);
    _window->contentView()->addSubview(scrollView);
    _table->sizeLastColumnToFit();
    _window->setInitialFirstResponder(_table);
}

void WRTablePanel::reload() { _table->reloadData(); }

int WRTablePanel::numberOfRowsInTableView(NSTableView*) { return static_cast<int>(rowCount()); }

void WRTablePanel::chooseRow(id) {
    const NSInteger row = _table->selectedRow();
    if (row >= 0 && static_cast<NSUInteger>(row) < rowCount()) rowWasChosen(static_cast<NSUInteger>(row));
}

id WRTablePanel::tableView_objectValueForTableColumn_row(NSTableView*, NSTableColumn* column, NSInteger row) {
    const NSUInteger index = _table->tableColumns()->indexOfObjectIdenticalTo(column);
    const auto place = static_cast<NSUInteger>(row);
    return index == NSNotFound || place >= rowCount() ? nullptr : valueAt(place, index);
}

}  // namespace pelvor
