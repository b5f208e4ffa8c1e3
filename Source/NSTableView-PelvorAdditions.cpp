// SPDX-License-Identifier: Apache-2.0
#include "NSTableView-PelvorAdditions.h"

#include "Interface/NSTableHeaderView.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSTableView>& methods) {
    methods.instance<"setTableColumn:isEnabled:", &setTableColumn_isEnabled>();
    methods.instance<"setTableViewEnabled:", &setTableViewEnabled>();
}

}  // namespace

constinit const Category NSTableView_PelvorAdditions_category =
    Category::of<NSTableView, defineAdditions>("PelvorAdditions");

void setTableColumn_isEnabled(NSTableView* table, NSTableColumn* colObj, bool isEn) {
    requireArgument(table, "setTableColumn:isEnabled:", "the table");
    requireArgument(colObj, "setTableColumn:isEnabled:", "the column");
    colObj->dataCell()->setEnabled(isEn);
    colObj->headerCell()->setEnabled(isEn);
    // The header is a view of its own.
    if (NSTableHeaderView* header = table->headerView()) header->setNeedsDisplay(true);
}

void setTableViewEnabled(NSTableView* table, bool isEn) {
    requireArgument(table, "setTableViewEnabled:", "the table");
    table->setEnabled(isEn);
    NSArray* columns = table->tableColumns();
    for (NSUInteger i = 0; i < columns->count(); ++i)
        setTableColumn_isEnabled(table, static_cast<NSTableColumn*>(columns->objectAtIndex(i)), isEn);
    if (!isEn) table->deselectAll(nullptr);
}

}  // namespace pelvor
