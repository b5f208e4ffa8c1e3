// SPDX-License-Identifier: Apache-2.0
// The arrays that creators answer; for Foundation's own sources.
#pragma once

#include <span>
#include <vector>

#include "Foundation/NSMutableArray.h"

namespace pelvor {

/// Objects in the same memory as the array, directly after it.
class NSInlineArray final : public NSArray {
    PELVOR_CLASS(NSInlineArray, NSArray);

  public:
    /// An owned array; the objects, none of which is none, are retained.
    static Retained<NSInlineArray> create(Object* const* objects, NSUInteger count);
    /// The same from an array, which has its objects in one piece, and objects behind them.
    static Retained<NSInlineArray> createJoined(NSArray* first, std::span<Object* const> behind);
    /// The same from references that are taken over.
    template <class T>
    static Retained<NSInlineArray> createAdopting(std::vector<Retained<T>>&& references) {
        auto count = static_cast<NSUInteger>(references.size());
        if (count == 0) return Retained<NSInlineArray>::retaining(empty());
        auto* array = Instances::createWithExtra<NSInlineArray>(count * sizeof(Object*), &classRecord, count);
        for (NSUInteger i = 0; i < count; ++i) array->objects()[i] = references[i].leak();
        return Retained<NSInlineArray>::adopting(array);
    }
    /// The array without objects, borrowed; there is one.
    static NSInlineArray* empty();

    NSUInteger count() override { return _count; }
    id objectAtIndex(NSUInteger index) override;
    Object* const* contiguousObjects() override { return objects(); }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    explicit NSInlineArray(NSUInteger count) : _count(count) {}
    ~NSInlineArray();

  private:
    Object** objects() { return reinterpret_cast<Object**>(this + 1); }
    NSUInteger _count;
};

/// Pointers with room at both ends; it neither retains nor releases.
class ObjectBuffer {
  public:
    ObjectBuffer() = default;
    ObjectBuffer(const ObjectBuffer&) = delete;
    ObjectBuffer& operator=(const ObjectBuffer&) = delete;
    ~ObjectBuffer() { delete[] _memory; }

    NSUInteger count() const { return _count; }
    Object** begin() { return _memory + _head; }
    /// Opens `added` places, whose content is open, in the place of `removed` others at `index`.
    void replace(NSUInteger index, NSUInteger removed, NSUInteger added);
    void reserve(NSUInteger capacity);
    void swap(ObjectBuffer& other) {
        std::swap(_memory, other._memory);
        std::swap(_head, other._head);
        std::swap(_count, other._count);
        std::swap(_capacity, other._capacity);
    }

  private:
    void openGap(NSUInteger index, NSUInteger added);
    void closeGap(NSUInteger index, NSUInteger removed);
    void growAround(NSUInteger index, NSUInteger added);
    void relocate(NSUInteger capacity, NSUInteger index, NSUInteger added);

    Object** _memory = nullptr;
    NSUInteger _head = 0;
    NSUInteger _count = 0;
    NSUInteger _capacity = 0;
};

/// A mutable array in one piece of memory; both ends are cheap to change.
class NSBufferArray final : public NSMutableArray {
    PELVOR_CLASS(NSBufferArray, NSMutableArray);

  public:
    NSUInteger count() override { return _buffer.count(); }
    id objectAtIndex(NSUInteger index) override;
    Object* const* contiguousObjects() override { return _buffer.begin(); }
    const std::uint32_t* mutationCounter() override { return &_mutations; }
    void addObject(id object) override;
    void insertObject_atIndex(id object, NSUInteger index) override;
    void replaceObjectAtIndex_withObject(NSUInteger index, id object) override;
    void removeObjectAtIndex(NSUInteger index) override;
    void removeObjectsInRange(NSRange range) override;
    void reserve(NSUInteger capacity) { _buffer.reserve(capacity); }
    /// Adds an object and takes the reference over.
    void adoptObject(Retained<Object> object);

  protected:
    NSBufferArray() = default;
    ~NSBufferArray();
    void replaceObjects(NSRange range, Object* const* objects, NSUInteger count) override;

  private:
    ObjectBuffer _buffer;
    std::uint32_t _mutations = 0;
};

}  // namespace pelvor
