// SPDX-License-Identifier: Apache-2.0
// NSMutableArray: a sequence of objects that can be changed.
#pragma once

#include "Foundation/NSArray.h"

namespace pelvor {

/// An array that can be changed.
///
///     auto queue = NSMutableArray::init();
///     queue->addObject(u"first"_ns);
///     queue->addObjectsFromArray(others);
///     queue->removeObjectAtIndex(0);
///
/// An operation that raises changes nothing. Objects that an operation removes are released only when they
/// are out of the array, so their destructors may use and change the array. Adding an object at the end, and
/// removing an object at either end, take a time that does not depend on the length of the array. One thread
/// at a time.
///
/// The class is abstract, and its creators return objects of private classes. A subclass implements NSArray's
/// primitives and the five operations under "Primitives" below, and hides the creators (Runtime/Creators.h):
///
///     class PBPageList : public NSMutableArray, NSMutableArray::HiddenCreators {
///         PELVOR_CLASS(PBPageList, NSMutableArray);
///         PELVOR_CREATORS(init);
///
///       public:
///         static Retained<PBPageList> init(Class* cls = classObject());
///         …
class PELVOR_EXPORT NSMutableArray : public NSArray {
    PELVOR_CLASS(NSMutableArray, NSArray);
    PELVOR_CREATORS(array, arrayWithCapacity, arrayWithObject, arrayWithObjects_count, arrayWithArray, init,
                    initWithCapacity, initWithObjects_count, initWithArray, of, arrayWithObjects,
                    initWithObjects);

  public:
    // Creation, as in NSArray. The results can be changed.

    static NSMutableArray* array();
    static NSMutableArray* arrayWithCapacity(NSUInteger capacity);
    static NSMutableArray* arrayWithObject(id object);
    static NSMutableArray* arrayWithObjects_count(Object* const* objects, NSUInteger count);
    static NSMutableArray* arrayWithArray(NSArray* array);

    static Retained<NSMutableArray> init();
    /// Makes an empty array with room for `capacity` objects. The array grows as needed.
    static Retained<NSMutableArray> initWithCapacity(NSUInteger capacity);
    static Retained<NSMutableArray> initWithObjects_count(Object* const* objects, NSUInteger count);
    static Retained<NSMutableArray> initWithArray(NSArray* array);

    // C++ only
    static NSMutableArray* of(std::initializer_list<Object*> objects);
    static NSMutableArray* arrayWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSMutableArray> initWithObjects(std::initializer_list<Object*> objects);

    // Primitives. All operations of the class, not only these, raise NSRangeException for an index or a range
    // that is not inside the array. Those that add or replace raise NSInvalidArgumentException for a null
    // object; those that remove an object do nothing for null.

    virtual void addObject(id object) = 0;
    /// With the count as the index, adds the object at the end.
    virtual void insertObject_atIndex(id object, NSUInteger index) = 0;
    virtual void replaceObjectAtIndex_withObject(NSUInteger index, id object) = 0;
    virtual void removeObjectAtIndex(NSUInteger index) = 0;
    virtual void removeObjectsInRange(NSRange range) = 0;

    // Adding and replacing. A null array counts as an empty one.

    void addObjectsFromArray(NSArray* other);
    virtual void replaceObjectsInRange_withObjectsFromArray(NSRange range, NSArray* other);
    void exchangeObjectAtIndex_withObjectAtIndex(NSUInteger first, NSUInteger second);
    void setArray(NSArray* other);

    // Removing

    /// Raises NSRangeException when the array is empty.
    void removeLastObject();
    void removeAllObjects();
    /// Removes every object of the array that is equal to this object; does nothing if there is no such
    /// object.
    void removeObject(id object);
    /// Removes the objects inside the range that are equal to this object.
    void removeObject_inRange(id object, NSRange range);
    /// Removes the object wherever it stands in the array; equal objects stay.
    void removeObjectIdenticalTo(id object);
    /// Removes every object that is equal to an object of `other`.
    void removeObjectsInArray(NSArray* other);

    // Sorting, as in NSArray

    void sortUsingSelector(SEL comparator);
    void sortUsingFunction_context(NSCompareFunction comparator, void* context);

  protected:
    NSMutableArray() = default;
    ~NSMutableArray() = default;

    /// Replaces the objects of the range by `count` other objects. The range is inside the array, and null is
    /// not among the new objects.
    virtual void replaceObjects(NSRange range, Object* const* objects, NSUInteger count);
};

}  // namespace pelvor
