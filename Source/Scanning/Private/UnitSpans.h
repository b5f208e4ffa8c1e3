// SPDX-License-Identifier: Apache-2.0
// Where a unit or a member of a set comes next, found in blocks; for the scanner.
#pragma once

#include <cstdint>

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

/// The first place in [begin, end) with the unit; `end` without it.
unichar* findUnit(unichar* begin, unichar* end, unichar unit);
/// The first place with a member of the bitmap, in which unit c is bit c & 7 of byte c >> 3.
PELVOR_EXPORT unichar* findMember(unichar* begin, unichar* end, const std::uint8_t* bitmap);
/// The first place in [begin, end) with `first`, and `second` so many units behind it; `end` without them.
/// There are units to read as far as `end` and that distance.
PELVOR_EXPORT unichar* findPair(unichar* begin, unichar* end, unichar first, unichar second,
                                std::size_t distance);
/// The first place with a unit above the limit.
unichar* findAbove(unichar* begin, unichar* end, unichar limit);

}  // namespace pelvor
