// SPDX-License-Identifier: Apache-2.0
// The names and formats of a locale dictionary, in English where it has none; for Foundation's own sources.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

/// A list of names: its key in a locale dictionary, and the names in English.
struct NameList {
    NSString* key;
    NSString* const* english;
    NSUInteger count;

    /// The name at an index below the count; borrowed.
    NSString* nameAt(NSUInteger index, NSDictionary* locale) const;
};

extern const NameList kMonthNames;
extern const NameList kShortMonthNames;
extern const NameList kWeekDayNames;
extern const NameList kShortWeekDayNames;
extern const NameList kDayHalves;  ///< AM and PM

/// The locale's format for the conversion c, x or X; borrowed. Null for another conversion.
NSString* formatOfLocale(char16_t conversion, NSDictionary* locale);

}  // namespace pelvor
