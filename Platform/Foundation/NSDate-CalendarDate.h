// SPDX-License-Identifier: Apache-2.0
// Dates as calendar dates, and as texts in a calendar format.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

class NSCalendarDate;
class NSDictionary;
class NSString;
class NSTimeZone;
struct Category;

/// The moment as a calendar date; borrowed. A null format or zone stands for that of a new calendar date.
PELVOR_EXPORT NSCalendarDate* dateWithCalendarFormat_timeZone(NSDate* date, NSString* format,
                                                              NSTimeZone* zone);

/// The moment as a text; borrowed. NSCalendarDate.h explains formats and locales. A null format stands for
/// that of a new calendar date, a null zone for the program's, and a null locale for English.
PELVOR_EXPORT NSString* descriptionWithCalendarFormat_timeZone_locale(NSDate* date, NSString* format,
                                                                      NSTimeZone* zone, NSDictionary* locale);

extern const Category NSDate_CalendarDate_category;

}  // namespace pelvor
