// SPDX-License-Identifier: Apache-2.0
// NSMutableSet: a set that can be changed.
#pragma once

#include "Foundation/NSSet.h"

namespace pelvor {

/// A set that can be changed.
///
///     auto names = NSMutableSet::initWithArray(list);
///     names->addObject(u"Anna"_ns);
///     names->minusSet(others);
///
/// The class is abstract: a subclass implements NSSet's primitives and the three operations under
/// "Primitives" below. An operation that raises changes nothing. Members that an operation removes are
/// released only when they are out of the set, so their destructors may use and change the set. One thread at
/// a time.
class PELVOR_EXPORT NSMutableSet : public NSSet {
    PELVOR_CLASS(NSMutableSet, NSSet);
    PELVOR_CREATORS(set, setWithCapacity, setWithObject, setWithObjects_count, setWithArray, setWithSet, init,
                    initWithCapacity, initWithObjects_count, initWithArray, initWithSet, of, setWithObjects,
                    initWithObjects);

  public:
    // Creation, as in NSSet. The results can be changed.

    static NSMutableSet* set();
    static NSMutableSet* setWithCapacity(NSUInteger capacity);
    static NSMutableSet* setWithObject(id object);
    static NSMutableSet* setWithObjects_count(Object* const* objects, NSUInteger count);
    static NSMutableSet* setWithArray(NSArray* array);
    static NSMutableSet* setWithSet(NSSet* set);

    static Retained<NSMutableSet> init();
    static Retained<NSMutableSet> initWithCapacity(NSUInteger capacity);
    static Retained<NSMutableSet> initWithObjects_count(Object* const* objects, NSUInteger count);
    static Retained<NSMutableSet> initWithArray(NSArray* array);
    static Retained<NSMutableSet> initWithSet(NSSet* set);

    // C++ only
    static NSMutableSet* of(std::initializer_list<Object*> objects);
    static NSMutableSet* setWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSMutableSet> initWithObjects(std::initializer_list<Object*> objects);

    // Primitives

    /// Adds the object unless a member is equal to it. Raises NSInvalidArgumentException for null.
    virtual void addObject(id object) = 0;
    /// Removes the member that is equal to the object, if there is one.
    virtual void removeObject(id object) = 0;
    virtual void removeAllObjects() = 0;

    void addObjectsFromArray(NSArray* other);
    void unionSet(NSSet* other);
    void minusSet(NSSet* other);
    /// Removes the members that the other set does not have.
    void intersectSet(NSSet* other);
    void setSet(NSSet* other);

  protected:
    NSMutableSet() = default;
    ~NSMutableSet() = default;
};

}  // namespace pelvor
