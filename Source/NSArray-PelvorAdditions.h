// SPDX-License-Identifier: Apache-2.0
// Arrays sorted by a caller's comparison, answers of all elements, shuffling.
#pragma once

#include "Foundation/NSMutableArray.h"

namespace pelvor {

struct Category;

/// None for an empty array.
PELVOR_EXPORT id firstObject(NSArray* array);

// Sorted arrays. The comparison is given the object that is looked for and an element, and answers -1 if the
// object sorts before it, 1 if after; the array is in ascending order by it. One that changes the array may
// have the operation raise NSRangeException.

/// Whether no element of the range sorts after the next. Of a range that is empty, too, the element at its
/// location is read: raises NSRangeException if there is none.
PELVOR_EXPORT bool _isSortedInRange_withCompareFunction_context(NSArray* array, NSRange range,
                                                                NSCompareFunction compare, void* context);
/// Binary search: the index of an equal element, the first of those within the bounds that the search has
/// come to; NSNotFound if there is none. `nextIndex`, unless none, then receives the index of the first
/// element that sorts after the object.
PELVOR_EXPORT NSUInteger _indexOfObject_withCompareFunction_context_nextIndex(NSArray* array, id object,
                                                                              NSCompareFunction compare,
                                                                              void* context,
                                                                              NSUInteger* nextIndex);
PELVOR_EXPORT NSUInteger indexOfObject_withCompareFunction_context(NSArray* array, id object,
                                                                   NSCompareFunction compare, void* context);
/// The index of an equal element, else of the first that sorts after the object, else NSNotFound.
PELVOR_EXPORT NSUInteger nearestIndexOfObject_withCompareFunction_context(NSArray* array, id object,
                                                                          NSCompareFunction compare,
                                                                          void* context);

/// What the elements answer, borrowed, in their order; an answer of none leaves no place. Raises
/// NSGenericException if a message changes the array.
PELVOR_EXPORT NSArray* arrayByMakingObjectsPerformSelector(NSArray* array, SEL selector);
PELVOR_EXPORT NSArray* arrayByMakingObjectsPerformSelector_withObject(NSArray* array, SEL selector,
                                                                      id argument);

extern const Category NSArray_PelvorAdditions_category;

struct PELVOR_EXPORT NSMutableArray_PelvorAdditions {
    /// An owned array of the object `count` times. Raises NSInvalidArgumentException for no object.
    static Retained<NSMutableArray> initWithSingleObject_count(id object, NSUInteger count);
};

/// Inserts before an equal element, or in its place in the order; answers the index.
PELVOR_EXPORT NSUInteger insertObject_withCompareFunction_context(NSMutableArray* array, id object,
                                                                  NSCompareFunction compare, void* context);
/// Removes the run of equal elements from the first that is found; answers whether there was one.
PELVOR_EXPORT bool removeObject_withCompareFunction_context(NSMutableArray* array, id object,
                                                            NSCompareFunction compare, void* context);
/// Shuffles the elements by PBRandomInt.
PELVOR_EXPORT void randomize(NSMutableArray* array);

extern const Category NSMutableArray_PelvorAdditions_category;

}  // namespace pelvor
