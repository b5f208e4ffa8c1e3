// SPDX-License-Identifier: Apache-2.0
// NSCountedSet: a set that counts how often each member was added.
#pragma once

#include <memory>

#include "Foundation/NSMutableSet.h"

namespace pelvor {

/// A mutable set that counts: a member stays until it was removed as often as it was added.
///
///     NSCountedSet* words = NSCountedSet::setWithArray(text->componentsSeparatedByString(u" "_ns));
///     words->countForObject(u"the"_ns);        // how often the word stands in the text
///
/// The operation `count` and loops over the set take each member once, however often it was added. A counted
/// set is equal to another counted set with equal members and counts, and to a set of another class that has
/// equal members if each count is 1. The description shows the counts. One thread at a time.
class PELVOR_EXPORT NSCountedSet : public NSMutableSet {
    PELVOR_CLASS(NSCountedSet, NSMutableSet);
    PELVOR_CREATORS(set, setWithCapacity, setWithObject, setWithObjects_count, setWithArray, setWithSet, init,
                    initWithCapacity, initWithObjects_count, initWithArray, initWithSet, of, setWithObjects,
                    initWithObjects);

  public:
    // Creation, as in NSMutableSet. An object that is given several times is counted as often. A set that is
    // made from a counted set takes over the counts.

    static NSCountedSet* set();
    static NSCountedSet* setWithCapacity(NSUInteger capacity);
    static NSCountedSet* setWithObject(id object);
    static NSCountedSet* setWithObjects_count(Object* const* objects, NSUInteger count);
    static NSCountedSet* setWithArray(NSArray* array);
    static NSCountedSet* setWithSet(NSSet* set);

    static Retained<NSCountedSet> init(Class* cls = classObject());
    static Retained<NSCountedSet> initWithCapacity(NSUInteger capacity, Class* cls = classObject());
    static Retained<NSCountedSet> initWithObjects_count(Object* const* objects, NSUInteger count,
                                                        Class* cls = classObject());
    static Retained<NSCountedSet> initWithArray(NSArray* array, Class* cls = classObject());
    static Retained<NSCountedSet> initWithSet(NSSet* set, Class* cls = classObject());

    // C++ only
    static NSCountedSet* of(std::initializer_list<Object*> objects);
    static NSCountedSet* setWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSCountedSet> initWithObjects(std::initializer_list<Object*> objects);

    /// How many times more the object was added than removed; 0 if it is no member.
    NSUInteger countForObject(id object);

    /// The number of members, without their counts.
    NSUInteger count() override;
    id member(id object) override;
    id stepFrom(NSUInteger& position) override;
    const std::uint32_t* mutationCounter() override;
    void addObject(id object) override;
    /// Lowers the member's count by 1, and removes the member when its count gets to 0.
    void removeObject(id object) override;
    /// Removes all members, whatever their counts.
    void removeAllObjects() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    /// These return an owned counted set with the same members and counts. Unlike the copies of other
    /// sets, the result of `copy` can be changed.
    Retained<NSCountedSet> copy();
    Retained<NSCountedSet> mutableCopy();

  protected:
    NSCountedSet();
    ~NSCountedSet();

  private:
    struct Table;
    std::unique_ptr<Table> _table;
};

}  // namespace pelvor
