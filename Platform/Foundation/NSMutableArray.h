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
/// Abstract over NSArray's primitives and the five below. An operation that raises changes nothing. An
/// operation first takes objects out of the array and releases them afterwards, so the end of such an object
/// may use and change the array. Adding at the end and removing at either end take the same time however long
/// the array is. One thread at a time.
class PELVOR_EXPORT NSMutableArray : public NSArray {
    PELVOR_CLASS(NSMutableArray, NSArray);
    PELVOR_CREATORS(array, arrayWithCapacity, arrayWithObject, arrayWithObjects_count, arrayWithArray, init,
                    initWithCapacity, initWithObjects_count, initWithArray, of, arrayWithObjects,
                    initWithObjects);

  public:
    // Creation; as in NSArray.

    static NSMutableArray* array();
    static NSMutableArray* arrayWithCapacity(NSUInteger capacity);
    static NSMutableArray* arrayWithObject(id object);
    static NSMutableArray* arrayWithObjects_count(Object* const* objects, NSUInteger count);
    static NSMutableArray* arrayWithArray(NSArray* array);

    static Retained<NSMutableArray> init();
    /// Room for so many objects is made beforehand.
    static Retained<NSMutableArray> initWithCapacity(NSUInteger capacity);
    static Retained<NSMutableArray> initWithObjects_count(Object* const* objects, NSUInteger count);
    static Retained<NSMutableArray> initWithArray(NSArray* array);

    // C++ only
    static NSMutableArray* of(std::initializer_list<Object*> objects) { return arrayWithObjects(objects); }
    static NSMutableArray* arrayWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSMutableArray> initWithObjects(std::initializer_list<Object*> objects);

    // Primitives. They raise NSInvalidArgumentException for null as object and NSRangeException for a bad
    // index or range, as all operations do.

    virtual void addObject(id object) = 0;
    /// The index may be the count.
    virtual void insertObject_atIndex(id object, NSUInteger index) = 0;
    virtual void replaceObjectAtIndex_withObject(NSUInteger index, id object) = 0;
    virtual void removeObjectAtIndex(NSUInteger index) = 0;
    virtual void removeObjectsInRange(NSRange range) = 0;

    // Adding and replacing

    void addObjectsFromArray(NSArray* other);
    virtual void replaceObjectsInRange_withObjectsFromArray(NSRange range, NSArray* other);
    void exchangeObjectAtIndex_withObjectAtIndex(NSUInteger first, NSUInteger second);
    void setArray(NSArray* other);

    // Removing

    /// Raises NSRangeException when the array is empty.
    void removeLastObject();
    void removeAllObjects();
    /// Removes every object that is equal to this one; does nothing if there is none.
    void removeObject(id object);
    void removeObject_inRange(id object, NSRange range);
    void removeObjectIdenticalTo(id object);
    void removeObjectsInArray(NSArray* other);

    // Sorting, as in NSArray

    void sortUsingSelector(SEL comparator);
    void sortUsingFunction_context(NSCompareFunction comparator, void* context);

  protected:
    NSMutableArray() = default;
    ~NSMutableArray() = default;

    /// Puts the objects, without null, in the place of those of a range that is inside.
    virtual void replaceObjects(NSRange range, Object* const* objects, NSUInteger count);
};

}  // namespace pelvor
