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
/// The first place with a unit above the limit.
unichar* findAbove(unichar* begin, unichar* end, unichar limit);

/// Takes the machine's wide instructions into use, or back out of it: without them `findMember` goes unit by
/// unit, to the same results. Answers whether they are in use now. For tests.
PELVOR_EXPORT bool useWideInstructions(bool wanted);

}  // namespace pelvor
