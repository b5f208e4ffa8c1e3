// SPDX-License-Identifier: Apache-2.0
// PBPlanarRange: a range in each of two directions, and its boxed form.
#pragma once

#include "Foundation/NSValue.h"

namespace pelvor {

struct Category;

/// Two ranges, such as the columns and the rows of a part of a table:
///
///     PBPlanarRange cells{{0, 2}, {5, 1}};  // two columns of row 5
///     NSValue* boxed = NSValue_PlanarRangeAdditions::valueWithPlanarRange(cells);
///     PBPlanarRange same = planarRangeValue(boxed);
struct PBPlanarRange {
    NSRange horizontalRange;
    NSRange verticalRange;

    static constexpr FixedString kTypeName = "_PBPlanarRange";
    friend constexpr bool operator==(const PBPlanarRange&, const PBPlanarRange&) = default;
};

/// Class operations of values.
struct PELVOR_EXPORT NSValue_PlanarRangeAdditions {
    /// A value that boxes the two ranges, borrowed. Its type is
    /// "{_PBPlanarRange={_NSRange=II}{_NSRange=II}}".
    static NSValue* valueWithPlanarRange(PBPlanarRange range);
};

/// The ranges in a value. Raises NSInvalidArgumentException for a value of another type.
PELVOR_EXPORT PBPlanarRange planarRangeValue(NSValue* value);

extern const Category NSValue_PlanarRangeAdditions_category;

}  // namespace pelvor
