// SPDX-License-Identifier: Apache-2.0
// The order of boxed ranges.
#pragma once

#include "Foundation/NSValue.h"

namespace pelvor {

struct Category;

/// Orders two boxed ranges by their locations; lengths do not count. Raises NSInvalidArgumentException
/// for values of other types and for none.
PELVOR_EXPORT NSComparisonResult compareRange(NSValue* value, NSValue* other);

extern const Category NSValue_PelvorAdditions_category;

}  // namespace pelvor
