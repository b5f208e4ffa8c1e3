// SPDX-License-Identifier: Apache-2.0
// Additions to all objects.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSBundle;
class NSNotificationCenter;
class NSSet;

/// Class operations of every class.
struct PELVOR_EXPORT NSObject_PelvorAdditions {
    /// The bundle that holds the class; null if no bundle does.
    static NSBundle* bundle(Class* cls);
    /// The names of all messages that the class itself responds to: the class operations of the class and its
    /// superclasses and, since a class is an object, the instance operations of the root class.
    static NSSet* classSelectorNames(Class* cls);
    /// The names of all messages that instances of the class respond to.
    static NSSet* instanceSelectorNames(Class* cls);
};

/// The process's default notification centre.
PELVOR_EXPORT NSNotificationCenter* notificationCenter(id object);
/// The bundle that holds the object's class.
PELVOR_EXPORT NSBundle* bundle(id object);

// Copies of the object together with the objects that it holds. These functions send `deepCopy` and
// `mutableDeepCopy`. A class that has something to copy deeply overrides these methods; for other objects
// they do what `copy` and `mutableCopy` do.

PELVOR_EXPORT Retained<Object> deepCopy(NSObject* object);
PELVOR_EXPORT Retained<Object> mutableDeepCopy(NSObject* object);

// Messages, given by selector, whose result or argument is a plain number:
//
//     int pages = intForPerformSelector(document, "pageCount"_sel);
//     performSelector_withBool(ruler, "setVisible:"_sel, true);
//
// A result is not converted: the first bytes of the result, followed by zeros if it is shorter, are read as
// the type of the function. The result of a method that returns nothing is 0. An argument is not converted
// either: the bytes of a number go to an argument of any number type, and the address of an object goes to an
// argument that is an object or a number. All functions raise NSInvalidArgumentException if the object does
// not respond to the message. Functions with an argument also raise it if the message takes no argument, or
// an argument of another kind.

PELVOR_EXPORT int intForPerformSelector(id object, SEL selector);
PELVOR_EXPORT int intForPerformSelector_withObject(id object, SEL selector, id argument);
PELVOR_EXPORT float floatForPerformSelector(id object, SEL selector);
PELVOR_EXPORT float floatForPerformSelector_withObject(id object, SEL selector, id argument);
PELVOR_EXPORT bool boolForPerformSelector(id object, SEL selector);
PELVOR_EXPORT bool boolForPerformSelector_withObject(id object, SEL selector, id argument);

// These return the result if it has exactly four bytes, else 0.

PELVOR_EXPORT int performSelector_withInt(id object, SEL selector, int argument);
PELVOR_EXPORT int performSelector_withFloat(id object, SEL selector, float argument);
PELVOR_EXPORT int performSelector_withBool(id object, SEL selector, bool argument);

/// Releases the object once: at the next idle moment of the main loop, or at once if the object already waits
/// for that moment. Main thread.
PELVOR_EXPORT void releaseWhenIdle(id object);

extern const Category NSObject_PelvorAdditions_category;

}  // namespace pelvor
