// SPDX-License-Identifier: Apache-2.0
// Small operations that every object has, and an object that equals nothing but itself.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSBundle;
class NSNotificationCenter;
class NSSet;

/// Class operations of every class.
struct PELVOR_EXPORT NSObject_PelvorAdditions {
    /// The bundle that holds the class; none for a class of none.
    static NSBundle* bundle(Class* cls);
    /// The names, once each, of all selectors that the class itself answers: its class operations and its
    /// superclasses', and, as every class is an object, the instance operations of the root class.
    static NSSet* classSelectorNames(Class* cls);
    /// The names of all selectors that instances of the class answer.
    static NSSet* instanceSelectorNames(Class* cls);
};

/// The process's default notification centre.
PELVOR_EXPORT NSNotificationCenter* notificationCenter(id object);
/// The bundle that holds the object's class.
PELVOR_EXPORT NSBundle* bundle(id object);

/// Copies of the object together with what it holds. They send `deepCopy` and `mutableDeepCopy`, which a
/// class overrides that has something to copy deeply; of other objects they are `copy` and `mutableCopy`.
PELVOR_EXPORT Retained<Object> deepCopy(NSObject* object);
PELVOR_EXPORT Retained<Object> mutableDeepCopy(NSObject* object);

// Messages whose result or argument is a plain number, by selector. A result is read as the type asked for
// without being converted: its first bytes as they lie in memory, with zeros where it is shorter; a method
// without a result answers zero. A number travels the same way to an argument of any number type, and an
// object to an argument that is an object, or, as its address, to a number. All raise
// NSInvalidArgumentException for a message that the object does not answer, that takes no argument where
// one is given, or whose argument is of another kind.

PELVOR_EXPORT int intForPerformSelector(id object, SEL selector);
PELVOR_EXPORT int intForPerformSelector_withObject(id object, SEL selector, id argument);
PELVOR_EXPORT float floatForPerformSelector(id object, SEL selector);
PELVOR_EXPORT float floatForPerformSelector_withObject(id object, SEL selector, id argument);
PELVOR_EXPORT bool boolForPerformSelector(id object, SEL selector);
PELVOR_EXPORT bool boolForPerformSelector_withObject(id object, SEL selector, id argument);

/// Answer the result if it has exactly four bytes, else 0.
PELVOR_EXPORT int performSelector_withInt(id object, SEL selector, int argument);
PELVOR_EXPORT int performSelector_withFloat(id object, SEL selector, float argument);
PELVOR_EXPORT int performSelector_withBool(id object, SEL selector, bool argument);

/// Stands for one release: at the next idle moment of the main loop, or at once for an object that waits
/// for one already. Main thread.
PELVOR_EXPORT void releaseWhenIdle(id object);

extern const Category NSObject_PelvorAdditions_category;

/// A dictionary key that no other object equals. Made with `new` or `init`. A copy of one is the same
/// instance, so a dictionary that copies its keys keeps it findable. Any thread.
class PELVOR_EXPORT PBUniqueObject : public NSObject {
    PELVOR_CLASS(PBUniqueObject, NSObject);

  public:
    /// The object's address.
    std::uintptr_t hash() override { return reinterpret_cast<std::uintptr_t>(this); }
    bool isEqual(id other) override { return this == other; }
    /// The same instance, retained.
    Retained<Object> copyWithZone(void* zone) override { return Retained<Object>::retaining(this); }
    Retained<Object> mutableCopyWithZone(void* zone) override { return Retained<Object>::retaining(this); }

  protected:
    PBUniqueObject() = default;
    ~PBUniqueObject() = default;
};

}  // namespace pelvor
