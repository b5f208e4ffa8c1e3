// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>
#include <vector>

#include "Foundation/Collections/CollectionFailures.h"
#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/FoundationLibrary.h"
#include "Runtime/NSException.h"

namespace pelvor {

namespace {

// Objects may lie anywhere in memory: each is asked for some steps before its turn.
void fetchForCounting(Object* const* objects, std::size_t index, std::size_t count) {
    constexpr std::size_t kAhead = 12;
    if (index + kAhead < count) __builtin_prefetch(objects[index + kAhead], 1);
}

void retainAll(Object* const* objects, std::size_t count, Object** references) {
    for (std::size_t i = 0; i < count; ++i) {
        fetchForCounting(objects, i, count);
        references[i] = objects[i]->retain();
    }
}

void releaseAll(Object* const* references, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        fetchForCounting(references, i, count);
        references[i]->release();
    }
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
    if (count > UINT32_MAX) throw NSException(NSMallocException, "an array of more than 2^32 - 1 objects");
    if (count == 0) return Retained<NSInlineArray>::retaining(empty());
    auto* array = Instances::createWithExtra<NSInlineArray>(count * sizeof(Object*), &classRecord,
                                                            static_cast<NSUInteger>(count));
    retainAll(first->contiguousObjects(), own, array->objects());
    retainAll(behind.data(), behind.size(), array->objects() + own);
    return Retained<NSInlineArray>::adopting(array);
}

NSInlineArray::~NSInlineArray() {
    // What a release does may look at the array: it is empty by then.
    NSUInteger count = std::exchange(_count, 0);
    releaseAll(objects(), count);
}

id NSInlineArray::objectAtIndex(NSUInteger index) {
    requireIndex(index, _count);
    return objects()[index];
}

Retained<Object> NSInlineArray::copyWithZone(void*) { return Retained<Object>::retaining(this); }

// MARK: The buffer

namespace {

void movePointers(Object** to, Object** from, std::size_t count) {
    if (count) std::memmove(to, from, count * sizeof(Object*));
}

}  // namespace

void ObjectBuffer::replace(NSUInteger index, NSUInteger removed, NSUInteger added) {
    if (added > removed)
        openGap(index + removed, added - removed);
    else if (removed > added)
        closeGap(index + added, removed - added);
}

void ObjectBuffer::reserve(NSUInteger capacity) {
    if (capacity > _capacity - _head) relocate(std::max(capacity, _count), _count, 0);
}

// Moves the shorter side, and makes room when there is none on that side: moving the longer one each time
// would make a queue slow.
void ObjectBuffer::openGap(NSUInteger index, NSUInteger added) {
    NSUInteger tail = _count - index;
    bool movesFront = index < tail;
    if (movesFront ? _head < added : _capacity - _head - _count < added) {
        growAround(index, added);
    } else if (movesFront) {
        movePointers(begin() - added, begin(), index);
        _head -= added;
    } else {
        movePointers(begin() + index + added, begin() + index, tail);
    }
    _count += added;
}

void ObjectBuffer::closeGap(NSUInteger index, NSUInteger removed) {
    NSUInteger tail = _count - index - removed;
    if (index < tail) {
        movePointers(begin() + removed, begin(), index);
        _head += removed;
    } else {
        movePointers(begin() + index, begin() + index + removed, tail);
    }
    _count -= removed;
    if (_count == 0) _head = 0;
}

void ObjectBuffer::growAround(NSUInteger index, NSUInteger added) {
    std::uint64_t needed = std::uint64_t{_count} + added;
    if (needed > UINT32_MAX) throw NSException(NSMallocException, "an array of more than 2^32 - 1 objects");
    std::uint64_t capacity = _capacity;
    if (needed > capacity - capacity / 4) capacity = std::max(needed, capacity + capacity / 2 + 4);
    relocate(static_cast<NSUInteger>(std::min<std::uint64_t>(capacity, UINT32_MAX)), index, added);
}

// Whoever adds at the front will do it again: half of the spare room goes there.
void ObjectBuffer::relocate(NSUInteger capacity, NSUInteger index, NSUInteger added) {
    NSUInteger head = index < _count - index ? (capacity - _count - added) / 2 : 0;
    auto* memory = new Object*[capacity];
    movePointers(memory + head, begin(), index);
    movePointers(memory + head + index + added, begin() + index, _count - index);
    delete[] std::exchange(_memory, memory);
    _head = head;
    _capacity = capacity;
}

// MARK: Mutable

PELVOR_DEFINE_CLASS(NSBufferArray, foundationLibrary) {}

NSBufferArray::~NSBufferArray() {
    // What a release does may look at the array: it is empty by then.
    ObjectBuffer leaving;
    leaving.swap(_buffer);
    releaseAll(leaving.begin(), leaving.count());
}

id NSBufferArray::objectAtIndex(NSUInteger index) {
    requireIndex(index, _buffer.count());
    return _buffer.begin()[index];
}

void NSBufferArray::addObject(id object) {
    requireObject(object, "addObject:");
    adoptObject(Retained<Object>::retaining(object));
}

void NSBufferArray::adoptObject(Retained<Object> object) {
    NSUInteger index = _buffer.count();
    _buffer.replace(index, 0, 1);
    _buffer.begin()[index] = object.leak();
    ++_mutations;
}

void NSBufferArray::insertObject_atIndex(id object, NSUInteger index) {
    requireObject(object, "insertObject:atIndex:");
    if (index > _buffer.count()) raiseIndexBeyondBounds(index, _buffer.count());
    _buffer.replace(index, 0, 1);
    _buffer.begin()[index] = object->retain();
    ++_mutations;
}

void NSBufferArray::replaceObjectAtIndex_withObject(NSUInteger index, id object) {
    requireObject(object, "replaceObjectAtIndex:withObject:");
    requireIndex(index, _buffer.count());
    std::exchange(_buffer.begin()[index], object->retain())->release();
}

void NSBufferArray::removeObjectAtIndex(NSUInteger index) {
    requireIndex(index, _buffer.count());
    id object = _buffer.begin()[index];
    _buffer.replace(index, 1, 0);
    ++_mutations;
    object->release();
}

void NSBufferArray::removeObjectsInRange(NSRange range) {
    requireRange(range, _buffer.count());
    replaceObjects(range, nullptr, 0);
}

void NSBufferArray::replaceObjects(NSRange range, Object* const* objects, NSUInteger count) {
    if (range.length == 0 && count == 0) return;
    Object** first = _buffer.begin() + range.location;
    std::vector<Object*> removed(first, first + range.length);
    _buffer.replace(range.location, range.length, count);
    retainAll(objects, count, _buffer.begin() + range.location);
    ++_mutations;
    releaseAll(removed.data(), removed.size());
}

}  // namespace pelvor
