// SPDX-License-Identifier: Apache-2.0
// NSArray: an immutable sequence of objects.
#pragma once

#include <initializer_list>

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class NSMutableArray;
class NSString;

/// Compares two objects for sorting. Returns a number below 0 if the first object sorts before the second,
/// above 0 if it sorts after the second, else 0.
using NSCompareFunction = int (*)(id first, id second, void* context);

/// An immutable sequence of objects, which the array retains; null is never among them.
///
///     NSArray* names = NSArray::of({u"Berta"_ns, u"Anna"_ns});
///     for (id name : names) NSLog(u"%@"_ns, name);
///     NSArray* sorted = names->sortedArrayUsingSelector("compare:"_sel);   // Anna, Berta
///     NSUInteger place = names->indexOfObject(u"Anna"_ns);                 // 1
///
/// A search compares by `isEqual` of the array's objects, unless the operation says that it looks for an
/// identical object. Operations return borrowed objects. Immutable arrays may be used on any thread as far as
/// their objects may.
///
/// The class is abstract, and its creators return objects of private classes. A subclass implements `count`
/// and `objectAtIndex`, on which all other operations stand, and hides the creators, which cannot make
/// objects of the subclass (Runtime/Creators.h):
///
///     class PBPageNumbers : public NSArray, NSArray::HiddenCreators {
///         PELVOR_CLASS(PBPageNumbers, NSArray);
///         PELVOR_CREATORS(initWithPageCount);
///
///       public:
///         static Retained<PBPageNumbers> initWithPageCount(NSUInteger count, Class* cls = classObject());
///         NSUInteger count() override { return _count; }
///         id objectAtIndex(NSUInteger index) override;  // the number index + 1
class PELVOR_EXPORT NSArray : public NSObject {
    PELVOR_CLASS(NSArray, NSObject);
    PELVOR_CREATORS(array, arrayWithObject, arrayWithObjects_count, arrayWithArray, init,
                    initWithObjects_count, initWithArray, of, arrayWithObjects, initWithObjects);

  public:
    // Creation. Operations whose names begin with "init" return owned arrays, the others borrowed ones.
    // Operations that take objects raise NSInvalidArgumentException if null is among them.

    static NSArray* array();
    static NSArray* arrayWithObject(id object);
    static NSArray* arrayWithObjects_count(Object* const* objects, NSUInteger count);
    static NSArray* arrayWithArray(NSArray* array);

    static Retained<NSArray> init();
    static Retained<NSArray> initWithObjects_count(Object* const* objects, NSUInteger count);
    static Retained<NSArray> initWithArray(NSArray* array);

    // C++ only
    static NSArray* of(std::initializer_list<Object*> objects);
    static NSArray* arrayWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSArray> initWithObjects(std::initializer_list<Object*> objects);

    // Primitives

    virtual NSUInteger count() = 0;
    /// Raises NSRangeException for an index that is not below the count.
    virtual id objectAtIndex(NSUInteger index) = 0;

    // C++ only
    /// All objects in one piece of memory if the array keeps them so, else null. Valid until the array
    /// changes or is destroyed.
    virtual Object* const* contiguousObjects() { return nullptr; }
    /// The address of a number that changes when objects come, go or move; by this number walks notice
    /// changes.
    virtual const std::uint32_t* mutationCounter() { return &detail::kNeverMutated; }

    // Objects and indexes. Searches return NSNotFound if they find nothing.

    /// Null for an empty array.
    id lastObject();
    bool containsObject(id object);
    NSUInteger indexOfObject(id object);
    /// Raises NSRangeException for a range that is not inside, as all operations with a range do.
    NSUInteger indexOfObject_inRange(id object, NSRange range);
    /// The index of this very object.
    NSUInteger indexOfObjectIdenticalTo(id object);
    NSUInteger indexOfObjectIdenticalTo_inRange(id object, NSRange range);
    /// The receiver's first object that is also in the other array; null if there is no such object.
    id firstObjectCommonWithArray(NSArray* other);
    /// These copy borrowed pointers to all objects, or to the objects of the range, to the buffer. They raise
    /// NSInvalidArgumentException if the buffer is null and there is an object to copy.
    void getObjects(Object** buffer);
    void getObjects_range(Object** buffer, NSRange range);
    NSEnumerator* objectEnumerator();
    NSEnumerator* reverseObjectEnumerator();

    // Other arrays, borrowed

    NSArray* subarrayWithRange(NSRange range);
    NSArray* arrayByAddingObject(id object);
    virtual NSArray* arrayByAddingObjectsFromArray(NSArray* other);
    /// The objects in ascending order; objects that compare as equal keep their order. The message is sent to
    /// an object with another object as the argument, and returns an NSComparisonResult.
    NSArray* sortedArrayUsingSelector(SEL comparator);
    NSArray* sortedArrayUsingFunction_context(NSCompareFunction comparator, void* context);

    // Everything else

    /// The descriptions of the objects, with the separator between them.
    NSString* componentsJoinedByString(NSString* separator);
    /// Sends the message to each object that is in the array when the operation begins.
    void makeObjectsPerformSelector(SEL selector);
    void makeObjectsPerformSelector_withObject(SEL selector, id argument);
    bool isEqualToArray(NSArray* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The text of the array as an old-style property list.
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSArray> copy() { return cast<NSArray>(copyWithZone(nullptr)); }
    Retained<NSMutableArray> mutableCopy();

  protected:
    constexpr NSArray() noexcept = default;
    constexpr NSArray(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSArray() = default;
};

namespace detail {

class ArrayCursor {
  public:
    using value_type = id;

    explicit ArrayCursor(NSArray* array) : _array(array) {
        if (!array) return;
        _objects = array->contiguousObjects();
        _watch = MutationWatch(array->mutationCounter());
        _count = array->count();
    }
    id operator*() const { return _objects ? _objects[_index] : _array->objectAtIndex(_index); }
    ArrayCursor& operator++() {
        _watch.check(_array);
        ++_index;
        return *this;
    }
    bool operator==(std::default_sentinel_t) const { return _index >= _count; }

  private:
    Unretained<NSArray> _array;
    Object* const* _objects = nullptr;
    MutationWatch _watch;
    NSUInteger _index = 0;
    NSUInteger _count = 0;
};

inline BorrowedWalk<ArrayCursor, NSArray> walk(NSArray* array) { return {array}; }

}  // namespace detail

/// The place of a range-for loop in an array. Raises NSGenericException when the array was changed.
using NSArrayIterator = detail::KeepingIterator<detail::ArrayCursor, NSArray>;

inline NSArrayIterator begin(NSArray* array) { return NSArrayIterator(array); }
inline std::default_sentinel_t end(NSArray*) { return {}; }

}  // namespace pelvor
