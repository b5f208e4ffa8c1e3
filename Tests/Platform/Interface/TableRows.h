// SPDX-License-Identifier: Apache-2.0
// A data source and delegate of tables.
#pragma once

#include "Interface/InterfaceLibrary.h"
#include "Interface/NSTableView.h"
#include "Prelude.h"

namespace pelvor {

/// Rows of strings, the same in every column, and notes of what the table tells. A test may refuse rows.
class TableRows final : public NSObject {
    PELVOR_CLASS(TableRows, NSObject);

  public:
    static Retained<TableRows> of(std::initializer_list<const char*> names) {
        auto rows = make<TableRows>();
        for (const char* name : names)
            rows->values.push_back(Retained<Object>::retaining(NSString::ofUTF8(name)));
        return rows;
    }

    NSInteger numberOfRowsInTableView(id) { return static_cast<NSInteger>(values.size()); }
    id tableView_objectValueForTableColumn_row(id, id, NSInteger row) {
        ++asked;
        if (whenAsked) whenAsked();
        return static_cast<std::size_t>(row) < values.size() ? values[static_cast<std::size_t>(row)].get()
                                                             : nullptr;
    }
    void tableView_setObjectValue_forTableColumn_row(id, id value, id, NSInteger row) {
        if (static_cast<std::size_t>(row) < values.size()) values[static_cast<std::size_t>(row)].set(value);
        log += "set ";
    }
    bool tableView_shouldSelectRow(id, NSInteger row) { return !refused.contains(row); }
    bool selectionShouldChangeInTableView(id) { return allowsChange; }
    void tableViewSelectionDidChange(id) { log += "changed "; }
    void tableViewSelectionIsChanging(id) { log += "changing "; }
    void tableViewColumnDidResize(id) { log += "resized "; }
    void tableViewColumnDidMove(id) { log += "moved "; }
    void tableView_didClickTableColumn(id, NSTableColumn* column) {
        log += "title " + static_cast<NSString*>(column->identifier())->toUTF8() + " ";
    }
    void controlTextDidBeginEditing(id) { log += "begun "; }
    void controlTextDidEndEditing(id) { log += "ended "; }
    void act(id) { log += "act "; }
    void open(id) { log += "open "; }
    /// What was noted since the last call.
    std::string take() { return std::exchange(log, ""); }

    std::vector<Retained<Object>> values;
    std::set<NSInteger> refused;
    bool allowsChange = true;
    int asked = 0;
    std::function<void()> whenAsked;
    std::string log;
};

}  // namespace pelvor
