// SPDX-License-Identifier: Apache-2.0
// Services for the whole process: localisation, shared character sets, method replacement, random numbers,
// points and rectangles on the screen.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSBundle;
class NSCharacterSet;

// Localisation

/// The toolbox bundle, which is the bundle of the host: the bundle with the identifier that
/// PBSetToolboxBundleIdentifier was given, or else with the identifier of the main bundle. Returns null if
/// there is no such bundle yet; once the bundle is found, it is kept. Main thread.
PELVOR_EXPORT NSBundle* _PBDoToolboxBundle();
/// Sets the identifier of the toolbox bundle; null stands for the identifier of the main bundle. The next
/// call looks the bundle up again.
PELVOR_EXPORT void PBSetToolboxBundleIdentifier(NSString* identifier);

/// The text for the key `rawStr` in the user's language: from the default strings table of the toolbox
/// bundle, else, if `obj` is not null, from that of the bundle of its class, else from the library's own
/// table, else `rawStr` itself. Keys of the library are English texts behind an underscore:
///
///     NSString* title = _PBDoLocalize(u"_Cancel"_ns, nullptr);
///
/// Main thread.
PELVOR_EXPORT NSString* _PBDoLocalize(NSString* rawStr, id obj);

// Shared character sets. They are null until the load-time sequence has called the `didLoad` hook of
// PBUtil_Dummy, so that hooks of the posing phase cannot use them. They are immutable and exist until the
// process ends.

extern PELVOR_EXPORT NSCharacterSet* _pbLettersCharacterSet;
extern PELVOR_EXPORT NSCharacterSet* _pbWhitespaceCharacterSet;  ///< line ends included
extern PELVOR_EXPORT NSCharacterSet* _pbDecimalDigitCharacterSet;
extern PELVOR_EXPORT NSCharacterSet* _pbMoneyCharacterSet;         ///< dollar, euro, pound and yen signs
extern PELVOR_EXPORT NSCharacterSet* _pbDoubleQuotesCharacterSet;  ///< straight, curly and angle quotes
extern PELVOR_EXPORT NSCharacterSet* _pbSingleQuotesCharacterSet;  ///< straight and curly quotes

// Method replacement. `aClass` is the class whose instances get other methods; for class operations it is a
// metaclass. A replacement that calls the old behaviour registers it under a second selector first:
//
//     PBRegisterInstanceMethodWithSelector(cls, "draw"_sel, "plainDraw"_sel);
//     PBReplaceMethodImplementationWithSelector(cls, "draw"_sel, "fancyDraw"_sel);   // sends plainDraw
//
// These functions belong in `performPosing` hooks, since nobody may call the methods at the same time.

/// Gives the method of `oldSelector`, which may be inherited, a second name: adds it to the class under
/// `newSelector`, as a group of one method. Returns its implementation. Returns null and changes nothing if
/// the class has no such method.
PELVOR_EXPORT IMP PBRegisterInstanceMethodWithSelector(Class* aClass, SEL oldSelector, SEL newSelector);

/// Gives the method of `oldSelector` another implementation and returns the previous one. Returns null and
/// changes nothing if the class has no such method. An inherited method changes in the superclass that has
/// it, and so for all other subclasses too. Raises NSInvalidArgumentException if the types differ, or if the
/// new code cannot be called with all objects that have the method.
PELVOR_EXPORT IMP PBReplaceMethodImplementation(Class* aClass, SEL oldSelector, IMP newImp);

/// Gives the method of `oldSelector` the implementation of another method of the class, `newSelector`, which
/// may be inherited. Raises NSInvalidArgumentException if there is no such method.
PELVOR_EXPORT IMP PBReplaceMethodImplementationWithSelector(Class* aClass, SEL oldSelector, SEL newSelector);

/// Gives the method of `oldSelector` in `destClass` the implementation of the method of `newSelector` in
/// `sourceClass`.
PELVOR_EXPORT IMP PBReplaceMethodImplementationWithSelectorOnClass(Class* destClass, SEL oldSelector,
                                                                   Class* sourceClass, SEL newSelector);

// The user-interface version of the platform, random numbers, the system's version.

/// Whether windows may vanish in a puff of smoke: true if the host wants it and the version of the platform
/// is 743 or later.
PELVOR_EXPORT bool PBIsRunPoofs();
/// Sets whether the host wants puffs of smoke. At first it does not.
PELVOR_EXPORT void PBSetIsRunPoofs(bool isEn);

/// A random number from 0 to 2^31 - 1. The first call of this or of PBRandomFloat seeds the `random` of the
/// process with the time.
PELVOR_EXPORT int PBRandomInt();
/// A random number from 0 to 1, both included.
PELVOR_EXPORT float PBRandomFloat();

/// The version of the operating system, such as "10.4.9". The minor and the bug-fix number have one digit
/// each.
PELVOR_EXPORT NSString* PBSystemVersion();

// The feedback controller: one object for the whole process, which the library keeps and does not use.

PELVOR_EXPORT id PBSharedFeedbackController();
/// Retains the controller, which may be null, and releases the previous controller. Does nothing if both are
/// the same object.
PELVOR_EXPORT void PBSetSharedFeedbackController(id fc);

// The debug menu. The library that is shipped has no debug menu: these functions do nothing.

PELVOR_EXPORT void PBAddDebugMenuItem(id target, NSString* title, SEL action);
PELVOR_EXPORT void PBAddDebugMenuItemWithObjectAndTitleAndAction(id target_title_action);
/// An operation of every object.
PELVOR_EXPORT void PBAddDebugMenuItemWithTitle_action(id target, NSString* title, SEL action);
extern const Category NSObject_PelvorDebugMenus_category;

// Places and extents on the screen, in points, y upwards. Sums and products are computed in double precision,
// and rounded to single precision where they are stored. PBSnapFrame.h has what needs to know the screens.

/// Whether both coordinates differ by less than 0.1. False where one of them is NaN.
PELVOR_EXPORT bool PBEqualDisplayPoints(NSPoint pt1, NSPoint pt2);
/// Whether width and height differ by less than 0.1 each.
PELVOR_EXPORT bool PBEqualDisplaySizes(NSSize sz1, NSSize sz2);
/// Whether the rectangles differ by less than 0.1 in each direction, where the differences of origin and size
/// add up: rectangles that are 0.06 apart in x and 0.06 apart in width are not equal.
PELVOR_EXPORT bool PBEqualDisplayRects(NSRect rect1, NSRect rect2);

/// The rectangle with its origin moved to the centre of the pixel that the origin is in, and with whole
/// numbers as width and height: {10.2, 20.7, 100, 50} becomes {10.5, 20.5, 99, 50}. A line of one point
/// along its edges then fills pixels.
PELVOR_EXPORT NSRect PBIntegralDisplayRect(NSRect rect);
/// Where to put a line of the thickness `th`, in points, so that it fills whole pixels: for an even thickness
/// the nearest whole number, the even one of two, and for an odd one, or 0 for a hairline, the centre of the
/// pixel. For coordinates that are not negative; a thickness is cut to a whole number first.
///
///     PBIntegralDisplayCoordinateForThickness(3.4f, 1)   // 3.5
///     PBIntegralDisplayCoordinateForThickness(3.4f, 2)   // 3
PELVOR_EXPORT float PBIntegralDisplayCoordinateForThickness(float coord, float th);
/// The size at so many per cent of its width and height; 0 per cent leaves the width or height as it is.
PELVOR_EXPORT NSSize PBScaleSize(NSSize size, int scaleX, int scaleY);
/// The rectangle that has the points as two of its corners.
PELVOR_EXPORT NSRect PBRectEnclosingPoints(NSPoint pt1, NSPoint pt2);

/// Raises "PBAbstractMethodException", "Lamp must implement the abstract method -colour". The call is the
/// whole body of a method that subclasses have to override. `self` is the receiver, which in a class
/// operation is the class, and `_cmd` is the selector of the method.
[[noreturn]] PELVOR_EXPORT void PBAbstractMethodWasCalled(id self, SEL _cmd);
inline constexpr char PBAbstractMethodException[] = "PBAbstractMethodException";

}  // namespace pelvor
