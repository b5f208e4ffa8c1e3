// SPDX-License-Identifier: Apache-2.0
// The arrays that creators return; for Foundation's own sources.
#pragma once

#include <span>
#include <vector>

#include "Foundation/NSMutableArray.h"

namespace pelvor {

/// An array whose objects stand in the memory of the array itself, directly behind its fields.
class NSInlineArray final : public NSArray {
    PELVOR_CLASS(NSInlineArray, NSArray);

  public:
    /// An owned array of the objects, which it retains; null is not among them.
    static Retained<NSInlineArray> create(Object* const* objects, NSUInteger count);
    /// An owned array with the objects of `first`, which has its objects in one piece, and then the objects
    /// of `behind`.
    static Retained<NSInlineArray> createJoined(NSArray* first, std::span<Object* const> behind);
    /// An owned array that takes over the references.
    template <class T>
    static Retained<NSInlineArray> createAdopting(std::vector<Retained<T>>&& references) {
        auto count = static_cast<NSUInteger>(references.size());
        if (count == 0) return Retained<NSInlineArray>::retaining(empty());
        auto* array = Instances::createWithExtra<NSInlineArray>(count * sizeof(Object*), &classRecord, count);
        for (NSUInteger i = 0; i < count; ++i) array->objects()[i] = references[i].leak();
        return Retained<NSInlineArray>::adopting(array);
    }
    /// The one array without objects, borrowed.
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

/// A mutable array in one piece of memory. Adding at the end and removing at either end are cheap.
class NSBufferArray final : public NSMutableArray {
    PELVOR_CLASS(NSBufferArray, NSMutableArray);

  public:
    NSUInteger count() override { return static_cast<NSUInteger>(_objects.size()) - _start; }
    id objectAtIndex(NSUInteger index) override;
    Object* const* contiguousObjects() override { return first(); }
    const std::uint32_t* mutationCounter() override { return &_mutations; }
    void addObject(id object) override;
    void insertObject_atIndex(id object, NSUInteger index) override;
    void replaceObjectAtIndex_withObject(NSUInteger index, id object) override;
    void removeObjectAtIndex(NSUInteger index) override;
    void removeObjectsInRange(NSRange range) override;
    void reserve(NSUInteger capacity) { _objects.reserve(capacity); }
    /// Adds an object and takes the reference over.
    void adoptObject(Retained<Object> object);

  protected:
    NSBufferArray() = default;
    ~NSBufferArray();
    void replaceObjects(NSRange range, Object* const* objects, NSUInteger count) override;

  private:
    Object** first() { return _objects.data() + _start; }
    void replacePlaces(NSUInteger index, NSUInteger removed, NSUInteger added);

    std::vector<Object*> _objects;  // retained from `_start` on; what stood before has left
    NSUInteger _start = 0;
    std::uint32_t _mutations = 0;
};

}  // namespace pelvor
