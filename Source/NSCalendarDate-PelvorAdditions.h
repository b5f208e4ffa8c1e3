// SPDX-License-Identifier: Apache-2.0
// How the user writes dates and times: the formats and names among the user's settings.
#pragma once

#include "Foundation/NSCalendarDate.h"

namespace pelvor {

struct Category;

/// Class operations that read the standard user defaults:
///
///     NSString* format = NSCalendarDate_PelvorAdditions::systemDefinedShortDateFormatString();
///     NSDictionary* locale = NSCalendarDate_PelvorAdditions::systemDefinedLocale();
///     NSString* text = date->descriptionWithCalendarFormat_locale(format ? format : u"%x"_ns, locale);
///
/// The results are borrowed. Main thread.
struct PELVOR_EXPORT NSCalendarDate_PelvorAdditions {
    /// These return the setting now under NSTimeDateFormatString, NSDateFormatString, NSShortDateFormatString
    /// and NSTimeFormatString; null if it is not set or is no text.
    static NSString* systemDefinedTimeDateFormatString();
    static NSString* systemDefinedDateFormatString();
    static NSString* systemDefinedShortDateFormatString();
    static NSString* systemDefinedTimeFormatString();

    /// Returns a locale dictionary of the settings NSTimeDateFormatString, NSAMPMDesignation,
    /// NSMonthNameArray, NSShortMonthNameArray, NSWeekDayNameArray and NSShortWeekDayNameArray. The first of
    /// them, in this order, that is not set ends the dictionary: those behind it are left out. The first call
    /// makes the dictionary, which then stays as it is for the life of the process.
    static NSDictionary* systemDefinedLocale();
};

extern const Category NSCalendarDate_PelvorAdditions_category;

}  // namespace pelvor
