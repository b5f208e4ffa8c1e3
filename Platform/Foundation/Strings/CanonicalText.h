// SPDX-License-Identifier: Apache-2.0
// Comparing text up to canonical equivalence and case.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSString.h"
#include "Shared/Codepoints.h"

namespace pelvor {

/// Compares the texts as the options say: case-insensitive, literal, numeric. Texts that are not compared
/// literally are ordered by the units of their composed forms.
NSComparisonResult compareText(std::u16string_view a, std::u16string_view b, NSStringCompareOptions options);

}  // namespace pelvor
