// SPDX-License-Identifier: Apache-2.0
// Ranges kept valid while text changes, and lists of ranges for selections.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

class NSArray;

// A list of ranges is an array of boxed ranges. It is normalised when it is sorted by location and no two
// entries overlap or touch. Operations raise NSInvalidArgumentException for entries that are no ranges.
// The range at NSNotFound is absent: adjusting leaves it as it is. Arithmetic wraps at 2^32.

/// No range.
inline constexpr NSRange PBNotFoundRange{NSNotFound, 0};

constexpr NSRange PBMakeRange(NSUInteger loc, NSUInteger len) { return {loc, len}; }
/// The position after the range; wraps.
constexpr NSUInteger PBMaxRange(NSRange rng) { return rng.location + rng.length; }

/// How a range is combined with a selection.
enum PBSelectionMode : int {
    PBSelectionMode_Overwrite = 0,
    PBSelectionMode_Add = 1,
    PBSelectionMode_Subtract = 2,
};

/// Orders boxed ranges by location alone: an NSComparisonResult; can be given to sorting operations.
PELVOR_EXPORT int PBCompareRanges(id obj1, id obj2, void* ignored);

/// The index of the first range of the list that is the same or shares a position with `findRng`; an
/// empty one is looked for as the position after it. NSNotFound if there is none. Any list will do.
PELVOR_EXPORT NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs);

/// Where `adjRng` is after text came in at `inRng`. An insertion at its start moves it, one inside
/// lengthens it, one at its end does nothing.
constexpr NSRange PBAdjustedRangeForInsertedRange(NSRange adjRng, NSRange inRng) {
    if (adjRng.location == NSNotFound) return adjRng;
    if (adjRng.location >= inRng.location) return {adjRng.location + inRng.length, adjRng.length};
    if (PBMaxRange(adjRng) > inRng.location) return {adjRng.location, adjRng.length + inRng.length};
    return adjRng;
}
/// Where `adjRng` is after the text of `remRng` went. A removal that began before the range and ends
/// inside moves the location by all that was removed.
PELVOR_EXPORT NSRange PBAdjustedRangeForRemovedRange(NSRange adjRng, NSRange remRng);
/// Where `adjRng` is after an edit that left `modRng` and made it longer by `delta`; a range that the edit
/// crosses the bounds of covers all that was edited.
PELVOR_EXPORT NSRange PBAdjustedUnionRangeForModifiedRange(NSRange adjRng, NSRange modRng, NSInteger delta);

/// Both as one range if they overlap or touch, else PBNotFoundRange.
PELVOR_EXPORT NSRange PBContiguousUnionRange(NSRange rng1, NSRange rng2);
/// Writes the parts of `rng` outside `subRng`, left before right, and answers how many: 0, 1 or 2. An
/// empty range at either bound of `subRng` counts as inside.
PELVOR_EXPORT int PBSubtractionRanges(NSRange rng, NSRange subRng, NSRange* resPtr);

/// The list in order, overlapping and touching ranges merged; a borrowed new list, or the list itself if
/// it has less than two entries. Empty ranges inside others go, with `isRemZeros` all but one that sorts
/// first.
PELVOR_EXPORT NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros);
/// The list with the range, normalised without empty ranges.
PELVOR_EXPORT NSArray* PBAddRangeToNormalizedRanges(NSRange addRng, NSArray* rngs);
/// The selection after `rng` was put in its place, added, or taken from the first entry that it touches,
/// borrowed; `activeIdxPtr`, unless none, receives the index of the active range. A selection that would
/// become empty is the empty range at `rng`. None for another mode.
PELVOR_EXPORT NSArray* PBCombineRangeWithNormalizedRanges(NSRange rng, NSArray* rngs, PBSelectionMode mode,
                                                          NSUInteger* activeIdxPtr);

}  // namespace pelvor
