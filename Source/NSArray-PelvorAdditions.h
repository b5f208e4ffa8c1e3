// SPDX-License-Identifier: Apache-2.0
// Additions to arrays: arrays sorted by a caller's comparison, messages to all elements, shuffling.
#pragma once

#include "Foundation/NSMutableArray.h"

namespace pelvor {

struct Category;

/// The first object of the array; null for an empty array.
PELVOR_EXPORT id firstObject(NSArray* array);

// Sorted arrays. The comparison is called with the object that is looked for, an element and `context`. It
// returns -1 if the object sorts before the element, 1 if the object sorts behind it, and 0 if they are
// equal; the array is in ascending order by it:
//
//     insertObject_withCompareFunction_context(names, name, compareNames, nullptr);
//     NSUInteger index = indexOfObject_withCompareFunction_context(names, name, compareNames, nullptr);
//
// A comparison that changes the array may make the operation raise NSRangeException.

/// Whether no element of the range sorts behind the next element. The element at the location of the range is
/// read even if the range is empty: the operation raises NSRangeException if there is no such element.
PELVOR_EXPORT bool _isSortedInRange_withCompareFunction_context(NSArray* array, NSRange range,
                                                                NSCompareFunction compare, void* context);
/// Searches by halves and returns the index of an equal element. If several elements are equal, the result is
/// the first of them within the bounds to which the search has come. If there is no equal element, returns
/// NSNotFound and writes the index of the first element that sorts behind the object to `nextIndex`, unless
/// `nextIndex` is null.
PELVOR_EXPORT NSUInteger _indexOfObject_withCompareFunction_context_nextIndex(NSArray* array, id object,
                                                                              NSCompareFunction compare,
                                                                              void* context,
                                                                              NSUInteger* nextIndex);
PELVOR_EXPORT NSUInteger indexOfObject_withCompareFunction_context(NSArray* array, id object,
                                                                   NSCompareFunction compare, void* context);
/// The index of an equal element; else the index of the first element that sorts behind the object; else
/// NSNotFound.
PELVOR_EXPORT NSUInteger nearestIndexOfObject_withCompareFunction_context(NSArray* array, id object,
                                                                          NSCompareFunction compare,
                                                                          void* context);

/// The objects that the elements return for the message, in the order of the elements, borrowed. Null results
/// are left out. Raises NSGenericException if a message changes the array.
PELVOR_EXPORT NSArray* arrayByMakingObjectsPerformSelector(NSArray* array, SEL selector);
PELVOR_EXPORT NSArray* arrayByMakingObjectsPerformSelector_withObject(NSArray* array, SEL selector,
                                                                      id argument);

extern const Category NSArray_PelvorAdditions_category;

struct PELVOR_EXPORT NSMutableArray_PelvorAdditions {
    /// Makes an array that holds the object `count` times. Raises NSInvalidArgumentException if the object is
    /// null.
    static Retained<NSMutableArray> initWithSingleObject_count(id object, NSUInteger count);
};

/// Inserts the object before an equal element, else at its place in the order, and returns the index. Raises
/// NSInvalidArgumentException if the object is null.
PELVOR_EXPORT NSUInteger insertObject_withCompareFunction_context(NSMutableArray* array, id object,
                                                                  NSCompareFunction compare, void* context);
/// Searches an equal element, and removes it and the equal elements behind it. Returns whether an element was
/// removed.
PELVOR_EXPORT bool removeObject_withCompareFunction_context(NSMutableArray* array, id object,
                                                            NSCompareFunction compare, void* context);
/// Shuffles the elements by PBRandomInt.
PELVOR_EXPORT void randomize(NSMutableArray* array);

extern const Category NSMutableArray_PelvorAdditions_category;

}  // namespace pelvor
