// SPDX-License-Identifier: Apache-2.0
#include "NSArray-PelvorAdditions.h"

#include <algorithm>

#include "PBUtil.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSArray>& methods) {
    methods.instance<"firstObject", &firstObject>();
    methods.instance<"_isSortedInRange:withCompareFunction:context:",
                     &_isSortedInRange_withCompareFunction_context>();
    methods.instance<"_indexOfObject:withCompareFunction:context:nextIndex:",
                     &_indexOfObject_withCompareFunction_context_nextIndex>();
    methods
        .instance<"indexOfObject:withCompareFunction:context:", &indexOfObject_withCompareFunction_context>();
    methods.instance<"nearestIndexOfObject:withCompareFunction:context:",
                     &nearestIndexOfObject_withCompareFunction_context>();
    methods.instance<"arrayByMakingObjectsPerformSelector:", &arrayByMakingObjectsPerformSelector>();
    methods.instance<"arrayByMakingObjectsPerformSelector:withObject:",
                     &arrayByMakingObjectsPerformSelector_withObject>();
}

void defineMutableAdditions(MethodTable<NSMutableArray>& methods) {
    methods.classLevel<"initWithSingleObject:count:",
                       &NSMutableArray_PelvorAdditions::initWithSingleObject_count>();
    methods
        .instance<"insertObject:withCompareFunction:context:", &insertObject_withCompareFunction_context>();
    methods
        .instance<"removeObject:withCompareFunction:context:", &removeObject_withCompareFunction_context>();
    methods.instance<"randomize", &randomize>();
}

template <class Perform>
NSArray* resultsOf(NSArray* array, Perform perform) {
    NSMutableArray* results = NSMutableArray::array();
    for (id element : array)
        if (id result = perform(element)) results->addObject(result);
    return results;
}

}  // namespace

constinit const Category NSArray_PelvorAdditions_category =
    Category::of<NSArray, defineAdditions>("PelvorAdditions");
constinit const Category NSMutableArray_PelvorAdditions_category =
    Category::of<NSMutableArray, defineMutableAdditions>("PelvorAdditions");

id firstObject(NSArray* array) {
    requireArgument(array, "firstObject", "the array");
    return array->count() ? array->objectAtIndex(0) : nullptr;
}

// MARK: Sorted arrays

namespace {

void requireSorted(NSArray* array, NSCompareFunction compare, const char* operation) {
    requireArgument(array, operation, "the array");
    if (!compare) raiseNullArgument(operation, "the function");
}

// Reads single elements of an array that a comparison may change in between.
class ElementReader {
  public:
    explicit ElementReader(NSArray* array) : _array(array), _counter(array->mutationCounter()) { look(); }
    id operator[](NSUInteger index) {
        if (*_counter != _seen) look();
        return _objects && index < _count ? _objects[index] : _array->objectAtIndex(index);
    }

  private:
    void look() {
        _seen = *_counter;
        _objects = _array->contiguousObjects();
        _count = _array->count();
    }

    Unretained<NSArray> _array;
    const std::uint32_t* _counter;
    std::uint32_t _seen;
    Object* const* _objects;
    NSUInteger _count;
};

}  // namespace

bool _isSortedInRange_withCompareFunction_context(NSArray* array, NSRange range, NSCompareFunction compare,
                                                  void* context) {
    requireSorted(array, compare, "_isSortedInRange:withCompareFunction:context:");
    ElementReader elements(array);
    elements[range.location];
    std::uint64_t end = std::uint64_t{range.location} + range.length;
    for (std::uint64_t i = std::uint64_t{range.location} + 1; i < end; ++i) {
        id previous = elements[static_cast<NSUInteger>(i - 1)], next = elements[static_cast<NSUInteger>(i)];
        if (compare(previous, next, context) == NSOrderedDescending) return false;
    }
    return true;
}

NSUInteger _indexOfObject_withCompareFunction_context_nextIndex(NSArray* array, id object,
                                                                NSCompareFunction compare, void* context,
                                                                NSUInteger* nextIndex) {
    requireSorted(array, compare, "_indexOfObject:withCompareFunction:context:nextIndex:");
    ElementReader elements(array);
    auto order = [&](NSUInteger index) { return compare(object, elements[index], context); };
    NSUInteger low = 0, end = array->count();
    while (low < end) {
        NSUInteger middle = low + (end - 1 - low) / 2;
        int result = order(middle);
        if (result == NSOrderedAscending) {
            end = middle;
        } else if (result == NSOrderedDescending) {
            low = middle + 1;
        } else {
            while (middle > low && order(middle - 1) == NSOrderedSame) --middle;
            return middle;
        }
    }
    if (nextIndex) *nextIndex = low;
    return NSNotFound;
}

NSUInteger indexOfObject_withCompareFunction_context(NSArray* array, id object, NSCompareFunction compare,
                                                     void* context) {
    requireSorted(array, compare, "indexOfObject:withCompareFunction:context:");
    return _indexOfObject_withCompareFunction_context_nextIndex(array, object, compare, context, nullptr);
}

NSUInteger nearestIndexOfObject_withCompareFunction_context(NSArray* array, id object,
                                                            NSCompareFunction compare, void* context) {
    requireSorted(array, compare, "nearestIndexOfObject:withCompareFunction:context:");
    NSUInteger next = 0;
    NSUInteger index =
        _indexOfObject_withCompareFunction_context_nextIndex(array, object, compare, context, &next);
    if (index != NSNotFound) return index;
    return next < array->count() ? next : NSNotFound;
}

// MARK: Messages to all elements

NSArray* arrayByMakingObjectsPerformSelector(NSArray* array, SEL selector) {
    requireArgument(array, "arrayByMakingObjectsPerformSelector:", "the array");
    return resultsOf(array, [&](id element) { return element->performSelector(selector); });
}

NSArray* arrayByMakingObjectsPerformSelector_withObject(NSArray* array, SEL selector, id argument) {
    requireArgument(array, "arrayByMakingObjectsPerformSelector:withObject:", "the array");
    return resultsOf(array,
                     [&](id element) { return element->performSelector_withObject(selector, argument); });
}

// MARK: Mutable arrays

Retained<NSMutableArray> NSMutableArray_PelvorAdditions::initWithSingleObject_count(id object,
                                                                                    NSUInteger count) {
    requireArgument(object, "initWithSingleObject:count:", "the object");
    constexpr NSUInteger kLargestReserve = 1u << 20;
    auto array = NSMutableArray::initWithCapacity(std::min(count, kLargestReserve));
    for (NSUInteger i = 0; i < count; ++i) array->addObject(object);
    return array;
}

NSUInteger insertObject_withCompareFunction_context(NSMutableArray* array, id object,
                                                    NSCompareFunction compare, void* context) {
    requireSorted(array, compare, "insertObject:withCompareFunction:context:");
    requireArgument(object, "insertObject:withCompareFunction:context:", "the object");
    NSUInteger next = 0;
    NSUInteger index =
        _indexOfObject_withCompareFunction_context_nextIndex(array, object, compare, context, &next);
    if (index == NSNotFound) index = next;
    array->insertObject_atIndex(object, index);
    return index;
}

bool removeObject_withCompareFunction_context(NSMutableArray* array, id object, NSCompareFunction compare,
                                              void* context) {
    requireSorted(array, compare, "removeObject:withCompareFunction:context:");
    NSUInteger index = indexOfObject_withCompareFunction_context(array, object, compare, context);
    if (index == NSNotFound) return false;
    ElementReader elements(array);
    NSUInteger end = index + 1;
    while (end < array->count() && compare(object, elements[end], context) == NSOrderedSame) ++end;
    array->removeObjectsInRange({index, end - index});
    return true;
}

void randomize(NSMutableArray* array) {
    requireArgument(array, "randomize", "the array");
    NSUInteger count = array->count();
    for (NSUInteger i = 0; i < count; ++i) {
        NSUInteger other = i + static_cast<NSUInteger>(PBRandomInt()) % (count - i);
        array->exchangeObjectAtIndex_withObjectAtIndex(i, other);
    }
}

}  // namespace pelvor
