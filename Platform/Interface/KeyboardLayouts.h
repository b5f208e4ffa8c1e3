// SPDX-License-Identifier: Apache-2.0
// The keyboard layouts that the user can switch between.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// The user enables layouts in the settings of the desktop: the groups of the X server, four at most. All
// functions are for the main thread, and raise nothing. Without a screen, and where programs cannot switch
// the keyboard (under Wayland), there are no layouts. The first question about layouts reads the system's
// list of them, in some 10 ms.
//
//     KeyboardLayoutRef layout = nullptr;
//     if (KLGetKeyboardLayoutWithIdentifier(stored, &layout) == noErr) KLSetCurrentKeyboardLayout(layout);

/// Refers to a layout, enabled or not; what it is, the functions below tell. A layout has one reference as
/// long as the process lives.
struct OpaqueKeyboardLayout {
    std::int32_t identifier = 0;
};
using KeyboardLayoutRef = OpaqueKeyboardLayout*;

/// What came of a call.
using OSStatus = std::int32_t;
enum : OSStatus {
    noErr = 0,
    paramErr = -50,      ///< a pointer is null, or an index is beyond the end
    resNotFound = -192,  ///< there is no such layout or property, or the user has not enabled the layout
};

/// What can be asked about a layout, and what the value is: an integer in place of a pointer, or an object,
/// which is borrowed.
using KeyboardLayoutPropertyTag = std::uint32_t;
enum : KeyboardLayoutPropertyTag {
    kKLIdentifier = 2,       ///< integer, see `keyboardLayoutIdentifier`
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
    smCentralEuroRoman =
        29,  ///< Latin letters of Czech, Estonian, Hungarian, Latvian, Lithuanian, Polish, Slovak
    smVietnamese = 30,
    smUnicodeScript = 126,
};

/// The selector of `GetScriptManagerVariable` for the script system of the current layout.
inline constexpr std::int16_t smKeyScript = 22;

// Told from the moment on that somebody asked for layouts.

/// Posted by the default centre, with no object, when the user has enabled or disabled layouts.
extern PELVOR_EXPORT NSString* const NSKeyboardLayoutsDidChangeNotification;
/// Posted by the default centre, with no object, when another layout is the current one, whoever switched.
extern PELVOR_EXPORT NSString* const NSCurrentKeyboardLayoutDidChangeNotification;

/// How many layouts are enabled. Fails if there is none.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutCount(NSInteger* count);
/// The enabled layout at the index, in the user's order.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutAtIndex(NSInteger index, KeyboardLayoutRef* layout);
/// The layout with the identifier, whether enabled or merely known to the system.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutWithIdentifier(std::int32_t identifier, KeyboardLayoutRef* layout);
/// Fails, and sets the value to null, if the layout has no such property or is null.
PELVOR_EXPORT OSStatus KLGetKeyboardLayoutProperty(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag,
                                                   const void** value);
PELVOR_EXPORT OSStatus KLGetCurrentKeyboardLayout(KeyboardLayoutRef* layout);
/// Switches the keyboard, of all programs where the desktop has one layout for all. Fails if the user has not
/// enabled the layout. The layout is the current one when the call returns.
PELVOR_EXPORT OSStatus KLSetCurrentKeyboardLayout(KeyboardLayoutRef layout);

/// Switches to the first enabled layout of the script system, unless the current layout is one of it or there
/// is none. Bit 7 of the code is ignored, and negative codes do nothing.
PELVOR_EXPORT void KeyScript(std::int16_t code);
/// The script system of the current layout, `smRoman` if there is none, for `smKeyScript`; 0 for any other
/// selector.
PELVOR_EXPORT std::int32_t GetScriptManagerVariable(std::int16_t selector);

/// The identifier of the layout with that name, "de(nodeadkeys)": 32 bits of the FNV-1a hash of the name, so
/// that it stays as it is whatever layouts there are and in whatever order. Never 0.
PELVOR_EXPORT std::int32_t keyboardLayoutIdentifier(NSString* name);
/// The language that the layout is for, "de" or "sr-Latn"; null if that is not known. Borrowed.
PELVOR_EXPORT NSString* keyboardLayoutLanguage(KeyboardLayoutRef layout);
/// Starts the program in which the user enables layouts: that of the running desktop, else any that is
/// installed. Returns false if there is none.
PELVOR_EXPORT bool openKeyboardSettings();

}  // namespace pelvor
