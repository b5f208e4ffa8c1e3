// SPDX-License-Identifier: Apache-2.0
// An addition to values: the order of boxed ranges.
#pragma once

#include "Foundation/NSValue.h"

namespace pelvor {

struct Category;

/// Compares two boxed ranges by their locations; the lengths do not matter. Raises NSInvalidArgumentException
/// for a value of another type and for null.
PELVOR_EXPORT NSComparisonResult compareRange(NSValue* value, NSValue* other);

extern const Category NSValue_PelvorAdditions_category;

}  // namespace pelvor
