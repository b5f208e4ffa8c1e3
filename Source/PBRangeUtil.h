// SPDX-License-Identifier: Apache-2.0
// Ranges that stay valid while text changes, and lists of ranges for selections.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

class NSArray;

// A list of ranges is an array of boxed ranges:
//
//     NSArray* selection = NSArray::of({NSValue::valueWithRange({0, 3}), NSValue::valueWithRange({9, 1})});
//     selection = PBAddRangeToNormalizedRanges({3, 2}, selection);  // (0, 5) and (9, 1)
//
// A list is normalised when it is sorted by location and no two of its entries overlap or touch. Lists that
// operations return are immutable and borrowed. An entry that is no boxed range raises
// NSInvalidArgumentException. A range at the location NSNotFound is absent: the adjusting operations return
// it as it is. Arithmetic wraps at 2^32.

/// The absent range.
inline constexpr NSRange PBNotFoundRange{NSNotFound, 0};

constexpr NSRange PBMakeRange(NSUInteger loc, NSUInteger len) { return {loc, len}; }
/// The position behind the range.
constexpr NSUInteger PBMaxRange(NSRange rng) { return rng.location + rng.length; }

/// How a range is combined with a selection.
enum PBSelectionMode : int {
    PBSelectionMode_Overwrite = 0,
    PBSelectionMode_Add = 1,
    PBSelectionMode_Subtract = 2,
};

/// Compares two boxed ranges by their locations alone and returns an NSComparisonResult. It can be given to
/// sorting operations; the third argument is not used.
PELVOR_EXPORT int PBCompareRanges(id obj1, id obj2, void* ignored);

/// The index of the first range in the list that equals `findRng` or shares a position with it; NSNotFound if
/// no range does. An empty `findRng` shares a position with a range if the character at its location is in
/// that range. The list need not be normalised.
PELVOR_EXPORT NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs);

/// The range `adjRng` after an insertion of text, which now has the range `inRng`. Text that is inserted at
/// the start of the range moves the range, text inside lengthens it, and text at its end does not change it.
constexpr NSRange PBAdjustedRangeForInsertedRange(NSRange adjRng, NSRange inRng) {
    if (adjRng.location == NSNotFound) return adjRng;
    if (adjRng.location >= inRng.location) return {adjRng.location + inRng.length, adjRng.length};
    if (PBMaxRange(adjRng) > inRng.location) return {adjRng.location, adjRng.length + inRng.length};
    return adjRng;
}
/// The range `adjRng` after the text at `remRng` was removed. A removal that begins before the range and ends
/// inside it moves the location of the range back by the whole length of the removed text.
PELVOR_EXPORT NSRange PBAdjustedRangeForRemovedRange(NSRange adjRng, NSRange remRng);
/// The range `adjRng` after an edit. `modRng` is the range that the edited text has after the edit, and
/// `delta` is the number of units by which the edit made the text longer. A range that began or ended inside
/// the edited text covers the whole edited text afterwards.
PELVOR_EXPORT NSRange PBAdjustedUnionRangeForModifiedRange(NSRange adjRng, NSRange modRng, NSInteger delta);

/// The union of two ranges that overlap or touch, else PBNotFoundRange.
PELVOR_EXPORT NSRange PBContiguousUnionRange(NSRange rng1, NSRange rng2);
/// Writes the parts of `rng` outside `subRng` to `resPtr`, which has room for two, the left part first, and
/// returns how many there are: 0, 1 or 2. An empty range at either bound of `subRng` counts as inside.
PELVOR_EXPORT int PBSubtractionRanges(NSRange rng, NSRange subRng, NSRange* resPtr);

/// The list in order, with overlapping and touching ranges merged. A list with less than two entries is
/// returned unchanged. Empty ranges inside other ranges are removed. With `isRemZeros`, all empty ranges are
/// removed, except one that sorts before all other ranges.
PELVOR_EXPORT NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros);
/// The list with the range added, normalised, without empty ranges. A null list counts as an empty one.
PELVOR_EXPORT NSArray* PBAddRangeToNormalizedRanges(NSRange addRng, NSArray* rngs);
/// The selection `rngs` after `rng` was put in its place (overwrite), added to it, or taken from the first
/// entry that it touches (subtract). Writes the index of the active range to `activeIdxPtr` unless that is
/// null. A selection that would become empty is the empty range at the location of `rng`. Null for another
/// mode.
PELVOR_EXPORT NSArray* PBCombineRangeWithNormalizedRanges(NSRange rng, NSArray* rngs, PBSelectionMode mode,
                                                          NSUInteger* activeIdxPtr);

}  // namespace pelvor
