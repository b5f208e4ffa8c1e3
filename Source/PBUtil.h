// SPDX-License-Identifier: Apache-2.0
// Services of the whole process: localisation, shared character sets, method replacement, random numbers.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSBundle;
class NSCharacterSet;

// Localisation

/// The host's bundle, which is the toolbox for all: the one with the main bundle's identifier, or with the
/// one that was set. Kept once it has been found; none while there is none. Main thread.
PELVOR_EXPORT NSBundle* _PBDoToolboxBundle();
/// Sets the identifier of the toolbox bundle, none for the main bundle's, and has it looked up again.
PELVOR_EXPORT void PBSetToolboxBundleIdentifier(NSString* identifier);

/// The text for the key `rawStr` in the user's language: from the default string table of the toolbox
/// bundle, else, if an object is given, from that of the bundle of its class, else `rawStr` itself. Keys
/// are the English text after an underscore, "_Cancel". Main thread.
PELVOR_EXPORT NSString* _PBDoLocalize(NSString* rawStr, id obj);

// The shared character sets. None before the load-time sequence has sent `didLoad` to PBUtil_Dummy: hooks
// of the posing phase cannot use them. Immutable, and there until the process ends.

extern PELVOR_EXPORT NSCharacterSet* _pbLettersCharacterSet;
extern PELVOR_EXPORT NSCharacterSet* _pbWhitespaceCharacterSet;  ///< line ends included
extern PELVOR_EXPORT NSCharacterSet* _pbDecimalDigitCharacterSet;
extern PELVOR_EXPORT NSCharacterSet* _pbMoneyCharacterSet;         ///< dollar, euro, pound and yen signs
extern PELVOR_EXPORT NSCharacterSet* _pbDoubleQuotesCharacterSet;  ///< straight, curly and angle quotes
extern PELVOR_EXPORT NSCharacterSet* _pbSingleQuotesCharacterSet;  ///< straight and curly quotes

/// Makes the shared character sets. It has no instances of interest.
class PELVOR_EXPORT PBUtil_Dummy : public NSObject {
    PELVOR_CLASS(PBUtil_Dummy, NSObject);

  public:
    static void load() {}
    /// A hook of the load-time sequence.
    static void didLoad();

  protected:
    PBUtil_Dummy() = default;
    ~PBUtil_Dummy() = default;
};

// Method replacement. `aClass` is the class whose instances' methods change; for class operations it is
// a metaclass. To call the old behaviour from a replacement, register it under a second selector first:
//
//     PBRegisterInstanceMethodWithSelector(cls, "draw"_sel, "plainDraw"_sel);
//     PBReplaceMethodImplementationWithSelector(cls, "draw"_sel, "fancyDraw"_sel);   // sends plainDraw
//
// They belong into `performPosing` hooks: nobody else may call the methods meanwhile.

/// Has the method of `oldSelector`, be it inherited, answer to `newSelector` as well: adds it to the class
/// as a group of one method. Answers its implementation; none, and changes nothing, if the class has no
/// such method.
PELVOR_EXPORT IMP PBRegisterInstanceMethodWithSelector(Class* aClass, SEL oldSelector, SEL newSelector);

/// Gives the method of `oldSelector` another implementation and answers the previous one; none, and changes
/// nothing, if the class has no such method. The method's own record changes: of an inherited one that of
/// the superclass, hence also the behaviour of all its other subclasses. Raises NSInvalidArgumentException
/// if the types differ, or if the code cannot be called with all objects that have the method.
PELVOR_EXPORT IMP PBReplaceMethodImplementation(Class* aClass, SEL oldSelector, IMP newImp);

/// The same with the implementation of the class's own or inherited method `newSelector`. Raises
/// NSInvalidArgumentException if there is no such method.
PELVOR_EXPORT IMP PBReplaceMethodImplementationWithSelector(Class* aClass, SEL oldSelector, SEL newSelector);

/// The same for a method of `destClass` with the implementation of a method of `sourceClass`.
PELVOR_EXPORT IMP PBReplaceMethodImplementationWithSelectorOnClass(Class* destClass, SEL oldSelector,
                                                                   Class* sourceClass, SEL newSelector);

// The user-interface version of the platform, random numbers, the system's version.

/// Whether windows may vanish in a puff of smoke: the host wants it, and the platform's version is 743 or
/// later.
PELVOR_EXPORT bool PBIsRunPoofs();
/// What the host wants; at first it does not.
PELVOR_EXPORT void PBSetIsRunPoofs(bool isEn);

/// A number from 0 to 2^31 - 1. The first call of this or the next seeds the process's `random` with the
/// time.
PELVOR_EXPORT int PBRandomInt();
/// A number from 0 to 1, both included.
PELVOR_EXPORT float PBRandomFloat();

/// The operating system's version, "10.4.9". Minor and bug-fix numbers have one digit.
PELVOR_EXPORT NSString* PBSystemVersion();

// The feedback controller: one object for the whole process, that the library only keeps.

PELVOR_EXPORT id PBSharedFeedbackController();
/// Retains the controller, or none, and releases the previous one, unless it is the same.
PELVOR_EXPORT void PBSetSharedFeedbackController(id fc);

// Debug menu. There is none in what is shipped: these do nothing.

PELVOR_EXPORT void PBAddDebugMenuItem(id target, NSString* title, SEL action);
PELVOR_EXPORT void PBAddDebugMenuItemWithObjectAndTitleAndAction(id target_title_action);
/// An operation of every object.
PELVOR_EXPORT void PBAddDebugMenuItemWithTitle_action(id target, NSString* title, SEL action);
extern const Category NSObject_PelvorDebugMenus_category;

/// Raises "PBAbstractMethodException", "Lamp must implement the abstract method -colour": the whole body of
/// a method that subclasses have to override. `self` is the receiver, a class in a class operation, and
/// `_cmd` the method's selector.
[[noreturn]] PELVOR_EXPORT void PBAbstractMethodWasCalled(id self, SEL _cmd);
inline constexpr char PBAbstractMethodException[] = "PBAbstractMethodException";

}  // namespace pelvor
