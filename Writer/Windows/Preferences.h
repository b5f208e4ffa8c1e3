// SPDX-License-Identifier: Apache-2.0
// The keys of Writer's settings in the user defaults.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// A boolean: whether misspelled words are marked while the user types. True at first.
inline constexpr NSString* WRMarksMisspellingsPreference = u"WRMarksMisspellings"_ns;
/// An array of strings: the paths of the files that were opened or saved last, the latest first. Empty at
/// first.
inline constexpr NSString* WRRecentDocumentsPreference = u"WRRecentDocuments"_ns;
/// A number from 0 to 50: how many of these are kept. 10 at first.
inline constexpr NSString* WRRecentDocumentCountPreference = u"WRRecentDocumentCount"_ns;

/// An array of strings: the colours that were mixed last, "#1E50B4", the latest first. Empty at first.
inline constexpr NSString* WRRecentColorsPreference = u"WRRecentColors"_ns;
/// A boolean: whether windows have a ruler. True at first.
inline constexpr NSString* WRShowsRulerPreference = u"WRShowsRuler"_ns;
/// A string: the abbreviation of the ruler's unit, "mm"; at first centimetres, or inches where these are
/// used.
inline constexpr NSString* WRRulerUnitPreference = u"WRRulerUnit"_ns;
/// A boolean: whether the keyboard is switched to the language of the text that the caret moves into, where
/// the user has a layout for that language. False at first.
inline constexpr NSString* WRKeyboardFollowsLanguagePreference = u"WRKeyboardFollowsLanguage"_ns;

/// The value of a boolean or a number above, or what holds at first. 0 for other keys.
NSInteger preference(NSString* key);

}  // namespace pelvor
