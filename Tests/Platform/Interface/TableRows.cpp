// SPDX-License-Identifier: Apache-2.0
#include "TableRows.h"

namespace pelvor {

extern Library tableTestLibrary;
PELVOR_DEFINE_CLASS(TableRows, tableTestLibrary) {
    methods.instance<"numberOfRowsInTableView:", &TableRows::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &TableRows::tableView_objectValueForTableColumn_row>();
    methods.instance<"tableView:setObjectValue:forTableColumn:row:",
                     &TableRows::tableView_setObjectValue_forTableColumn_row>();
    methods.instance<"tableView:shouldSelectRow:", &TableRows::tableView_shouldSelectRow>();
    methods.instance<"selectionShouldChangeInTableView:", &TableRows::selectionShouldChangeInTableView>();
    methods.instance<"tableViewSelectionDidChange:", &TableRows::tableViewSelectionDidChange>();
    methods.instance<"tableViewSelectionIsChanging:", &TableRows::tableViewSelectionIsChanging>();
    methods.instance<"tableViewColumnDidResize:", &TableRows::tableViewColumnDidResize>();
    methods.instance<"tableViewColumnDidMove:", &TableRows::tableViewColumnDidMove>();
    methods.instance<"tableView:didClickTableColumn:", &TableRows::tableView_didClickTableColumn>();
    methods.instance<"controlTextDidBeginEditing:", &TableRows::controlTextDidBeginEditing>();
    methods.instance<"controlTextDidEndEditing:", &TableRows::controlTextDidEndEditing>();
    methods.instance<"act:", &TableRows::act>();
    methods.instance<"open:", &TableRows::open>();
}
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library tableTestLibrary{"TestTables", kDependencies, kClassesOf<TableRows>, {}};

}  // namespace pelvor
