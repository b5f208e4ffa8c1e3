// SPDX-License-Identifier: Apache-2.0
// Additions to arrays that are lists of boxed ranges.
#pragma once

#include "Foundation/NSMutableArray.h"
#include "PBRangeUtil.h"

namespace pelvor {

struct Category;

// The operations of this header read and change arrays of boxed ranges:
//
//     auto selection = NSMutableArray::init();
//     insertSortedRange(selection, {9, 1});
//     insertSortedRange(selection, {0, 3});
//     NSRange first = rangeAtIndex(selection, 0);  // {0, 3}
//     NSRange whole = unionRange(selection);       // {0, 10}
//
// They raise NSInvalidArgumentException for an entry that is no boxed range, and NSRangeException for an
// index outside the array.

struct PELVOR_EXPORT NSArray_PelvorRangeArray {
    /// Makes an array of one range, which is mutable if `cls` is a class of mutable arrays.
    static Retained<NSArray> initWithRange(NSRange range, Class* cls = NSArray::classObject());
};

PELVOR_EXPORT NSRange rangeAtIndex(NSArray* array, NSUInteger index);
/// The index at which the range is inserted into a list that is sorted by location and then by length: behind
/// the ranges that are equal to it.
PELVOR_EXPORT NSUInteger insertionIndexForRange(NSArray* array, NSRange range);
/// The union of the first and the last range of the array; the ranges between them do not matter.
/// PBNotFoundRange for an empty array.
PELVOR_EXPORT NSRange unionRange(NSArray* array);

extern const Category NSArray_PelvorRangeArray_category;

PELVOR_EXPORT void addRange(NSMutableArray* array, NSRange range);
PELVOR_EXPORT void replaceRangeAtIndex_withRange(NSMutableArray* array, NSUInteger index, NSRange range);
PELVOR_EXPORT void insertRange_atIndex(NSMutableArray* array, NSRange range, NSUInteger index);
PELVOR_EXPORT void removeRangeAtIndex(NSMutableArray* array, NSUInteger index);
/// Inserts the range at the index that `insertionIndexForRange` returns.
PELVOR_EXPORT void insertSortedRange(NSMutableArray* array, NSRange range);

extern const Category NSMutableArray_PelvorMutableRangeArray_category;

}  // namespace pelvor
