// SPDX-License-Identifier: Apache-2.0
// Comparing text up to canonical equivalence and case; for Foundation's own sources.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSString.h"
#include "Shared/Codepoints.h"

namespace pelvor {

/// Compares as the options say: case-insensitive, literal, numeric. Text that is not compared literally is
/// ordered by the units of its composed form.
NSComparisonResult compareText(std::u16string_view a, std::u16string_view b, NSStringCompareOptions options);

}  // namespace pelvor
