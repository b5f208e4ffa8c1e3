// SPDX-License-Identifier: Apache-2.0
// Index sets from arrays, and their runs.
#pragma once

#include "Foundation/NSIndexSet.h"

namespace pelvor {

struct Category;
class NSArray;

/// Borrowed immutable sets; empty for an empty array. Indexes outside those that a set can hold raise
/// NSRangeException, elements of another kind NSInvalidArgumentException.
struct PELVOR_EXPORT NSIndexSet_PelvorAdditions {
    /// The indexes of all boxed ranges.
    static NSIndexSet* indexSetWithRangeArray(NSArray* ranges);
    /// The numbers, each taken as an unsigned index.
    static NSIndexSet* indexSetWithNumberArray(NSArray* numbers);
};

/// The first member from the index on with those that follow it without a gap; PBNotFoundRange if there
/// is none.
PELVOR_EXPORT NSRange indexRangeStartingAtOrAfterIndex(NSIndexSet* set, NSUInteger index);

extern const Category NSIndexSet_PelvorAdditions_category;

}  // namespace pelvor
