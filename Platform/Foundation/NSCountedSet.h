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
/// `count` and walks take each member once. A counted set is equal to another counted set with the same
/// members and counts, and to a set of another class if it has the same members and each count is 1. The
/// description tells the counts.
class PELVOR_EXPORT NSCountedSet : public NSMutableSet {
    PELVOR_CLASS(NSCountedSet, NSMutableSet);
    PELVOR_CREATORS(set, setWithCapacity, setWithObject, setWithObjects_count, setWithArray, setWithSet, init,
                    initWithCapacity, initWithObjects_count, initWithArray, initWithSet, of, setWithObjects,
                    initWithObjects);

  public:
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

    NSUInteger count() override;
    id member(id object) override;
    id stepFrom(NSUInteger& position) override;
    const std::uint32_t* mutationCounter() override;
    void addObject(id object) override;
    void removeObject(id object) override;
    void removeAllObjects() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    /// A counted set with the same members and counts. This copy can be changed, too.
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
