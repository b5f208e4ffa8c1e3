// SPDX-License-Identifier: Apache-2.0
// Additions to index sets: sets made from arrays, and runs of members.
#pragma once

#include "Foundation/NSIndexSet.h"

namespace pelvor {

struct Category;
class NSArray;

/// Class operations of index sets:
///
///     NSArray* ranges = NSArray::of({NSValue::valueWithRange({0, 3}), NSValue::valueWithRange({7, 2})});
///     NSIndexSet* rows = NSIndexSet_PelvorAdditions::indexSetWithRangeArray(ranges);  // 0, 1, 2, 7, 8
///     NSRange next = indexRangeStartingAtOrAfterIndex(rows, 5);                       // {7, 2}
///
/// The sets are immutable and borrowed, and empty for an empty array. The operations raise NSRangeException
/// for an index that a set cannot hold, and NSInvalidArgumentException for an element of another kind.
struct PELVOR_EXPORT NSIndexSet_PelvorAdditions {
    /// The indexes in all boxed ranges of the array.
    static NSIndexSet* indexSetWithRangeArray(NSArray* ranges);
    /// The numbers of the array, each read as an unsigned index.
    static NSIndexSet* indexSetWithNumberArray(NSArray* numbers);
};

/// The range of the first member at or behind the index and of the members that follow it without a gap;
/// PBNotFoundRange if there is no such member.
PELVOR_EXPORT NSRange indexRangeStartingAtOrAfterIndex(NSIndexSet* set, NSUInteger index);

extern const Category NSIndexSet_PelvorAdditions_category;

}  // namespace pelvor
