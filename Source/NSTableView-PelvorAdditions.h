// SPDX-License-Identifier: Apache-2.0
// Additions to table views: columns and whole tables that cannot be used.
#pragma once

#include "Interface/NSTableView.h"

namespace pelvor {

struct Category;

/// Sets whether the column's values, and its title, look and react as something that can be used. Null as
/// table or column raises NSInvalidArgumentException.
PELVOR_EXPORT void setTableColumn_isEnabled(NSTableView* table, NSTableColumn* colObj, bool isEn);
/// Sets whether the table and all its columns can be used. A table that cannot be used has no selected rows,
/// where it allows an empty selection; that it can be used again does not restore the selection.
PELVOR_EXPORT void setTableViewEnabled(NSTableView* table, bool isEn);

extern const Category NSTableView_PelvorAdditions_category;

}  // namespace pelvor
