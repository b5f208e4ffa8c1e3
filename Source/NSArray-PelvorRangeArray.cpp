// SPDX-License-Identifier: Apache-2.0
#include "NSArray-PelvorRangeArray.h"

#include "Private/PBRangeList.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineRangeArray(MethodTable<NSArray>& methods) {
    methods.classLevel<"initWithRange:", &NSArray_PelvorRangeArray::initWithRange>();
    methods.instance<"rangeAtIndex:", &rangeAtIndex>();
    methods.instance<"insertionIndexForRange:", &insertionIndexForRange>();
    methods.instance<"unionRange", &unionRange>();
}

void defineMutableRangeArray(MethodTable<NSMutableArray>& methods) {
    methods.instance<"addRange:", &addRange>();
    methods.instance<"replaceRangeAtIndex:withRange:", &replaceRangeAtIndex_withRange>();
    methods.instance<"insertRange:atIndex:", &insertRange_atIndex>();
    methods.instance<"removeRangeAtIndex:", &removeRangeAtIndex>();
    methods.instance<"insertSortedRange:", &insertSortedRange>();
}

}  // namespace

constinit const Category NSArray_PelvorRangeArray_category =
    Category::of<NSArray, defineRangeArray>("PelvorRangeArray");
constinit const Category NSMutableArray_PelvorMutableRangeArray_category =
    Category::of<NSMutableArray, defineMutableRangeArray>("PelvorMutableRangeArray");

Retained<NSArray> NSArray_PelvorRangeArray::initWithRange(NSRange range, Class* cls) {
    requireArgument(cls, "initWithRange:", "the class");
    NSValue* value = NSValue::valueWithRange(range);
    if (cls->isSubclassOfClass(NSMutableArray::classObject()))
        return NSMutableArray::initWithObjects({value});
    return NSArray::initWithObjects({value});
}

NSRange rangeAtIndex(NSArray* array, NSUInteger index) {
    requireArgument(array, "rangeAtIndex:", "the array");
    const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(array);
    if (plain && index < plain->size()) return (*plain)[index];
    requireIndex(index, array->count(), "rangeAtIndex:");
    return rangeInBox(array->objectAtIndex(index), "rangeAtIndex:");
}

NSUInteger insertionIndexForRange(NSArray* array, NSRange range) {
    requireArgument(array, "insertionIndexForRange:", "the array");
    NSUInteger index = indexOfRange(array, "insertionIndexForRange:", [range](NSRange other) {
        return range.location < other.location ||
               (range.location == other.location && range.length < other.length);
    });
    return index == NSNotFound ? array->count() : index;
}

NSRange unionRange(NSArray* array) {
    requireArgument(array, "unionRange", "the array");
    NSUInteger count = array->count();
    if (count == 0) return PBNotFoundRange;
    return NSUnionRange(rangeAtIndex(array, 0), rangeAtIndex(array, count - 1));
}

void addRange(NSMutableArray* array, NSRange range) {
    requireArgument(array, "addRange:", "the array");
    array->addObject(NSValue::valueWithRange(range));
}

void replaceRangeAtIndex_withRange(NSMutableArray* array, NSUInteger index, NSRange range) {
    requireArgument(array, "replaceRangeAtIndex:withRange:", "the array");
    requireIndex(index, array->count(), "replaceRangeAtIndex:withRange:");
    array->replaceObjectAtIndex_withObject(index, NSValue::valueWithRange(range));
}

void insertRange_atIndex(NSMutableArray* array, NSRange range, NSUInteger index) {
    requireArgument(array, "insertRange:atIndex:", "the array");
    requirePlace(index, array->count(), "insertRange:atIndex:");
    array->insertObject_atIndex(NSValue::valueWithRange(range), index);
}

void removeRangeAtIndex(NSMutableArray* array, NSUInteger index) {
    requireArgument(array, "removeRangeAtIndex:", "the array");
    requireIndex(index, array->count(), "removeRangeAtIndex:");
    array->removeObjectAtIndex(index);
}

void insertSortedRange(NSMutableArray* array, NSRange range) {
    requireArgument(array, "insertSortedRange:", "the array");
    insertRange_atIndex(array, range, insertionIndexForRange(array, range));
}

}  // namespace pelvor
