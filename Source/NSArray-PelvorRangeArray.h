// SPDX-License-Identifier: Apache-2.0
// Arrays as lists of boxed ranges.
#pragma once

#include "Foundation/NSMutableArray.h"
#include "PBRangeUtil.h"

namespace pelvor {

struct Category;

// Entries that are no boxed ranges raise NSInvalidArgumentException, bad indexes NSRangeException.

struct PELVOR_EXPORT NSArray_PelvorRangeArray {
    /// An owned array of one range, mutable where `cls` is.
    static Retained<NSArray> initWithRange(NSRange range, Class* cls = NSArray::classObject());
};

PELVOR_EXPORT NSRange rangeAtIndex(NSArray* array, NSUInteger index);
/// Where the range goes in a list sorted by location and then length: after those that are equal to it.
PELVOR_EXPORT NSUInteger insertionIndexForRange(NSArray* array, NSRange range);
/// The smallest range that holds the first and the last entry; the others are not looked at.
/// PBNotFoundRange for an empty array.
PELVOR_EXPORT NSRange unionRange(NSArray* array);

extern const Category NSArray_PelvorRangeArray_category;

PELVOR_EXPORT void addRange(NSMutableArray* array, NSRange range);
PELVOR_EXPORT void replaceRangeAtIndex_withRange(NSMutableArray* array, NSUInteger index, NSRange range);
PELVOR_EXPORT void insertRange_atIndex(NSMutableArray* array, NSRange range, NSUInteger index);
PELVOR_EXPORT void removeRangeAtIndex(NSMutableArray* array, NSUInteger index);
/// Inserts at `insertionIndexForRange`.
PELVOR_EXPORT void insertSortedRange(NSMutableArray* array, NSRange range);

extern const Category NSMutableArray_PelvorMutableRangeArray_category;

}  // namespace pelvor
