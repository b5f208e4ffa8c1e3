// SPDX-License-Identifier: Apache-2.0
// NSSet: an immutable collection of objects, each of them once.
#pragma once

#include <initializer_list>

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class NSArray;
class NSMutableSet;

/// An immutable collection of objects that differ from each other; the set retains its members.
///
///     NSSet* names = NSSet::of({u"Anna"_ns, u"Berta"_ns, u"Anna"_ns});
///     names->count();                          // 2
///     names->containsObject(u"Berta"_ns);      // true
///     for (id name : names) NSLog(u"%@"_ns, name);
///
/// Members are told apart by `hash` and `isEqual`: a look-up sends `isEqual` to the object that is looked up,
/// with a member as the argument. An object must not change its hash while it is a member. Walks go in the
/// order in which the members were added. Immutable sets may be used on any thread as far as their members
/// may. The class is abstract: a subclass implements `count`, `member` and `stepFrom` and hides the creators,
/// which return objects of private classes; NSArray.h has an example.
class PELVOR_EXPORT NSSet : public NSObject {
    PELVOR_CLASS(NSSet, NSObject);
    PELVOR_CREATORS(set, setWithObject, setWithObjects_count, setWithArray, setWithSet, init,
                    initWithObjects_count, initWithArray, initWithSet, of, setWithObjects, initWithObjects);

  public:
    // Creation. Operations whose names begin with "init" return owned sets, the others borrowed ones.
    // Operations that take objects raise NSInvalidArgumentException if null is among them.

    static NSSet* set();
    static NSSet* setWithObject(id object);
    static NSSet* setWithObjects_count(Object* const* objects, NSUInteger count);
    static NSSet* setWithArray(NSArray* array);
    static NSSet* setWithSet(NSSet* set);

    static Retained<NSSet> init();
    static Retained<NSSet> initWithObjects_count(Object* const* objects, NSUInteger count);
    static Retained<NSSet> initWithArray(NSArray* array);
    static Retained<NSSet> initWithSet(NSSet* set);

    // C++ only
    static NSSet* of(std::initializer_list<Object*> objects);
    static NSSet* setWithObjects(std::initializer_list<Object*> objects);
    static Retained<NSSet> initWithObjects(std::initializer_list<Object*> objects);

    // Primitives

    virtual NSUInteger count() = 0;
    /// The member that is equal to the object; null if there is no such member.
    virtual id member(id object) = 0;

    // C++ only
    /// Returns the member at or after `position`, and moves `position` behind this member. Returns null at
    /// the end of the walk. A walk begins at position 0.
    virtual id stepFrom(NSUInteger& position) = 0;
    /// The address of a number that changes when members come or go; by this number walks notice changes.
    virtual const std::uint32_t* mutationCounter() { return &detail::kNeverMutated; }

    bool containsObject(id object) { return member(object) != nullptr; }
    /// The member that was added first; null for an empty set.
    id anyObject();
    NSArray* allObjects();
    NSEnumerator* objectEnumerator();

    bool isSubsetOfSet(NSSet* other);
    bool intersectsSet(NSSet* other);
    bool isEqualToSet(NSSet* other);
    /// These return a borrowed set of the receiver's members and the object or objects.
    NSSet* setByAddingObject(id object);
    NSSet* setByAddingObjectsFromSet(NSSet* other);
    NSSet* setByAddingObjectsFromArray(NSArray* other);
    /// Sends the message to each object that is a member when the operation begins.
    void makeObjectsPerformSelector(SEL selector);
    void makeObjectsPerformSelector_withObject(SEL selector, id argument);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "{(\n    a,\n    b\n)}".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSSet> copy() { return cast<NSSet>(copyWithZone(nullptr)); }
    Retained<NSMutableSet> mutableCopy();

  protected:
    NSSet() = default;
    ~NSSet() = default;
};

namespace detail {

class SetCursor {
  public:
    using value_type = id;

    explicit SetCursor(NSSet* set) : _set(set) {
        if (!set) return;
        _watch = MutationWatch(set->mutationCounter());
        _object = set->stepFrom(_position);
    }
    id operator*() const { return _object; }
    SetCursor& operator++() {
        _watch.check(_set);
        _object = _set->stepFrom(_position);
        return *this;
    }
    bool operator==(std::default_sentinel_t) const { return !_object; }

  private:
    Unretained<NSSet> _set;
    MutationWatch _watch;
    NSUInteger _position = 0;
    Unretained<Object> _object = nullptr;
};

inline BorrowedWalk<SetCursor, NSSet> walk(NSSet* set) { return {set}; }

}  // namespace detail

/// The place of a range-for loop in a set. Raises NSGenericException when the set was changed.
using NSSetIterator = detail::KeepingIterator<detail::SetCursor, NSSet>;

inline NSSetIterator begin(NSSet* set) { return NSSetIterator(set); }
inline std::default_sentinel_t end(NSSet*) { return {}; }

}  // namespace pelvor
