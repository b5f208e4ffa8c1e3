// SPDX-License-Identifier: Apache-2.0
// Selecting a segment by its tag, on every platform version.
#pragma once

#include "Interface/NSSegmentedControl.h"

namespace pelvor {

struct Category;

/// Selects the first segment with that tag; does nothing if there is none. Raises NSInvalidArgumentException
/// for null as control.
PELVOR_EXPORT void pbSelectSegmentWithTag(NSSegmentedControl* control, int tag);

extern const Category NSSegmentedControl_PelvorPantherAdditions_category;

}  // namespace pelvor
