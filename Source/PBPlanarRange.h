// SPDX-License-Identifier: Apache-2.0
// PBPlanarRange: a range in each of two directions, and its box.
#pragma once

#include "Foundation/NSValue.h"

namespace pelvor {

struct Category;

struct PBPlanarRange {
    NSRange horizontalRange;
    NSRange verticalRange;

    static constexpr FixedString kTypeName = "_PBPlanarRange";
    friend constexpr bool operator==(const PBPlanarRange&, const PBPlanarRange&) = default;
};

struct PELVOR_EXPORT NSValue_PlanarRangeAdditions {
    /// A borrowed value of type "{_PBPlanarRange={_NSRange=II}{_NSRange=II}}".
    static NSValue* valueWithPlanarRange(PBPlanarRange range);
};

/// Raises NSInvalidArgumentException for a value of another type.
PELVOR_EXPORT PBPlanarRange planarRangeValue(NSValue* value);

extern const Category NSValue_PlanarRangeAdditions_category;

}  // namespace pelvor
