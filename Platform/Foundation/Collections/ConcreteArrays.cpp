// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/FoundationLibrary.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

namespace {

void retainAll(Object* const* objects, std::size_t count, Object** references) {
    for (std::size_t i = 0; i < count; ++i) references[i] = objects[i]->retain();
}

void releaseAll(Object* const* references, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) references[i]->release();
}

[[noreturn]] void raiseTooMany() {
    throw NSException(NSMallocException, "an array of more than 2^32 - 1 objects");
}

}  // namespace

// MARK: Immutable

PELVOR_DEFINE_CLASS(NSInlineArray, foundationLibrary) {}

NSInlineArray* NSInlineArray::empty() {
    static NSInlineArray* const array = Instances::createWithExtra<NSInlineArray>(0, &classRecord, 0u);
    return array;
}

Retained<NSInlineArray> NSInlineArray::create(Object* const* objects, NSUInteger count) {
    if (count == 0) return Retained<NSInlineArray>::retaining(empty());
    auto* array = Instances::createWithExtra<NSInlineArray>(count * sizeof(Object*), &classRecord, count);
    retainAll(objects, count, array->objects());
    return Retained<NSInlineArray>::adopting(array);
}

Retained<NSInlineArray> NSInlineArray::createJoined(NSArray* first, std::span<Object* const> behind) {
    std::uint64_t own = first->count(), count = own + behind.size();
    if (count > UINT32_MAX) raiseTooMany();
    if (count == 0) return Retained<NSInlineArray>::retaining(empty());
    auto* array = Instances::createWithExtra<NSInlineArray>(count * sizeof(Object*), &classRecord,
                                                            static_cast<NSUInteger>(count));
    retainAll(first->contiguousObjects(), own, array->objects());
    retainAll(behind.data(), behind.size(), array->objects() + own);
    return Retained<NSInlineArray>::adopting(array);
}

NSInlineArray::~NSInlineArray() {
    // A release may run code that looks at the array, so the array is empty by then.
    NSUInteger count = std::exchange(_count, 0);
    releaseAll(objects(), count);
}

id NSInlineArray::objectAtIndex(NSUInteger index) {
    requireIndex(index, _count, "objectAtIndex:");
    return objects()[index];
}

Retained<Object> NSInlineArray::copyWithZone(void*) { return Retained<Object>::retaining(this); }

// MARK: Mutable

PELVOR_DEFINE_CLASS(NSBufferArray, foundationLibrary) {}

NSBufferArray::~NSBufferArray() {
    // A release may run code that looks at the array and adds to it, so the array is empty by then.
    while (NSUInteger leaving = count()) {
        std::vector<Object*> objects = std::exchange(_objects, {});
        releaseAll(objects.data() + std::exchange(_start, 0), leaving);
    }
}

id NSBufferArray::objectAtIndex(NSUInteger index) {
    requireIndex(index, count(), "objectAtIndex:");
    return first()[index];
}

// Replaces `removed` places by `added` new places, whose content is undefined. Places that become free at the
// front stay until they are half of all places, since a queue would be slow if all objects moved up each
// time.
void NSBufferArray::replacePlaces(NSUInteger index, NSUInteger removed, NSUInteger added) {
    if (std::uint64_t{count()} - removed + added > UINT32_MAX) raiseTooMany();
    if (index == 0 && added == 0) {
        _start += removed;
        if (_start < _objects.size() - _start) return;
        _objects.erase(_objects.begin(), _objects.begin() + std::exchange(_start, 0));
    } else if (auto place = _objects.begin() + _start + index; added > removed) {
        _objects.insert(place + removed, added - removed, nullptr);
    } else {
        _objects.erase(place + added, place + removed);
    }
}

void NSBufferArray::addObject(id object) {
    requireArgument(object, "addObject:", "the object");
    adoptObject(Retained<Object>::retaining(object));
}

void NSBufferArray::adoptObject(Retained<Object> object) {
    if (count() == UINT32_MAX) raiseTooMany();
    _objects.push_back(object);
    (void)object.leak();
    ++_mutations;
}

void NSBufferArray::insertObject_atIndex(id object, NSUInteger index) {
    requireArgument(object, "insertObject:atIndex:", "the object");
    requirePlace(index, count(), "insertObject:atIndex:");
    replacePlaces(index, 0, 1);
    first()[index] = object->retain();
    ++_mutations;
}

void NSBufferArray::replaceObjectAtIndex_withObject(NSUInteger index, id object) {
    requireArgument(object, "replaceObjectAtIndex:withObject:", "the object");
    requireIndex(index, count(), "replaceObjectAtIndex:withObject:");
    std::exchange(first()[index], object->retain())->release();
}

void NSBufferArray::removeObjectAtIndex(NSUInteger index) {
    requireIndex(index, count(), "removeObjectAtIndex:");
    id object = first()[index];
    replacePlaces(index, 1, 0);
    ++_mutations;
    object->release();
}

void NSBufferArray::removeObjectsInRange(NSRange range) {
    requireRange(range, count(), "removeObjectsInRange:");
    replaceObjects(range, nullptr, 0);
}

void NSBufferArray::replaceObjects(NSRange range, Object* const* objects, NSUInteger count) {
    if (range.length == 0 && count == 0) return;
    Object** leaving = first() + range.location;
    std::vector<Object*> removed(leaving, leaving + range.length);
    replacePlaces(range.location, range.length, count);
    retainAll(objects, count, first() + range.location);
    ++_mutations;
    releaseAll(removed.data(), removed.size());
}

}  // namespace pelvor
