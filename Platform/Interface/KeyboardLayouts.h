// SPDX-License-Identifier: Apache-2.0
// The keyboard layouts that the user can switch between.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// The user enables layouts in the settings of the desktop: these are the groups of the X server, four at
// most. Without a screen, and where programs cannot switch the keyboard (under Wayland), no layout is
// enabled. The first call that asks for layouts reads the system's list of them, which takes some 10 ms. All
// functions are for the main thread, and raise nothing.
//
//     KeyboardLayoutRef layout = nullptr;
//     if (KLGetKeyboardLayoutWithIdentifier(stored, &layout) == noErr) KLSetCurrentKeyboardLayout(layout);

/// Stands for a layout, whether the user has enabled it or not; the functions below tell its properties. Each
/// layout has one object, which lives as long as the process.
struct OpaqueKeyboardLayout {
    std::int32_t identifier = 0;
};
using KeyboardLayoutRef = OpaqueKeyboardLayout*;

/// The outcome of a call: `noErr`, or why the call failed.
using OSStatus = std::int32_t;
enum : OSStatus {
    noErr = 0,
    paramErr = -50,      ///< a pointer is null, or an index is beyond the end
    resNotFound = -192,  ///< there is no such layout or property, or the user has not enabled the layout
};

/// The properties of a layout. A value is an object, which is borrowed, or an integer, which stands in the
/// place of the pointer.
using KeyboardLayoutPropertyTag = std::uint32_t;
enum : KeyboardLayoutPropertyTag {
    kKLIdentifier = 2,       ///< integer: what `keyboardLayoutIdentifier` returns
    kKLIcon = 3,             ///< NSImage of 16 × 16 points: the short name of the layout, "DE"
    kKLLocalizedName = 4,    ///< NSString in the user's language, "Deutsch (ohne Akzenttasten)"
    kKLName = 5,             ///< NSString, "de(nodeadkeys)"
    kKLGroupIdentifier = 6,  ///< integer: the script system that the layout's language is written in
};

/// The script systems by number. Layouts for scripts that have no number are `smUnicodeScript`.
enum : std::int32_t {
    smRoman = 0,
    smJapanese = 1,
    smTradChinese = 2,
    smKorean = 3,
    smArabic = 4,
    smHebrew = 5,
    smGreek = 6,
    smCyrillic = 7,
    smDevanagari = 9,
    smGurmukhi = 10,
    smGujarati = 11,
    smOriya = 12,
    smBengali = 13,
    smTamil = 14,
    smTelugu = 15,
    smKannada = 16,
    smMalayalam = 17,
    smSinhalese = 18,
    smBurmese = 19,
    smKhmer = 20,
    smThai = 21,
    smLao = 22,
    smGeorgian = 23,
    smArmenian = 24,
    smSimpChinese = 25,
    smTibetan = 26,
    smMongolian = 27,
    smEthiopic = 28,
    smCentralEuroRoman = 29,  ///< Latin: Czech, Estonian, Hungarian, Latvian, Lithuanian, Polish, Slovak
    smVietnamese = 30,
    smUnicodeScript = 126,
};

/// The selector of `GetScriptManagerVariable` for the script system of the current layout.
inline constexpr std::int16_t smKeyScript = 22;

// Notifications, which the default centre posts with a null object. They begin with the first call that asks
// for layouts.

/// The user has enabled or disabled layouts.
extern PELVOR_EXPORT NSString* const NSKeyboardLayoutsDidChangeNotification;
/// Another layout has become the current one, whoever switched. The run loop posts it, also after a switch by
/// the program itself.
extern PELVOR_EXPORT NSString* const NSCurrentKeyboardLayoutDidChangeNotification;

// The functions that find something write it to their last argument. Where they fail, they write null or 0.

/// Finds how many layouts are enabled. Fails with `resNotFound` if no layout is enabled.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutCount(NSInteger* count);
/// Finds the enabled layout at the index, from 0 on in the user's order.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutAtIndex(NSInteger index, KeyboardLayoutRef* layout);
/// Finds the layout with the identifier, whether the user has enabled it or the system merely knows it.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutWithIdentifier(std::int32_t identifier, KeyboardLayoutRef* layout);
/// Finds a property of the layout. Fails if the layout is null or has no such property.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutProperty(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag,
                                                   const void** value);
/// Finds the layout that the user types with. Fails with `resNotFound` if no layout is enabled.
PELVOR_EXPORT OSStatus KLGetCurrentKeyboardLayout(KeyboardLayoutRef* layout);
/// Switches the keyboard to the layout, which is the current one when the call returns. On desktops that have
/// one layout for all programs, this switches the keyboard of all programs. Fails with `resNotFound` if the
/// user has not enabled the layout.
PELVOR_EXPORT OSStatus KLSetCurrentKeyboardLayout(KeyboardLayoutRef layout);

/// Switches to the first enabled layout of the script system. Nothing happens if the current layout is of
/// that script system already, or if no enabled layout is. Bit 7 of the code does not count; a negative code
/// does nothing.
PELVOR_EXPORT void KeyScript(std::int16_t code);
/// Returns the script system of the current layout for the selector `smKeyScript`, or `smRoman` if no layout
/// is enabled. Returns 0 for any other selector.
PELVOR_EXPORT std::int32_t GetScriptManagerVariable(std::int16_t selector);

/// Returns the identifier of the layout with that name, "de(nodeadkeys)": the 32-bit FNV-1a hash of the name,
/// which does not depend on the layouts that are enabled. It is never 0.
PELVOR_EXPORT std::int32_t keyboardLayoutIdentifier(NSString* name);
/// Returns the language that the layout is for, "de-DE" or "es", borrowed; null if the language is unknown.
PELVOR_EXPORT NSString* keyboardLayoutLanguage(KeyboardLayoutRef layout);
/// Starts the program in which the user enables layouts: the one of the running desktop, or else any other
/// that is installed. Returns false if no such program is installed.
PELVOR_EXPORT bool openKeyboardSettings();

}  // namespace pelvor
