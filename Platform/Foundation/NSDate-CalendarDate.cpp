// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSDate-CalendarDate.h"

#include "Foundation/NSCalendarDate.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSTimeZone.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSDate>& methods) {
    methods.instance<"dateWithCalendarFormat:timeZone:", &dateWithCalendarFormat_timeZone>();
    methods.instance<"descriptionWithCalendarFormat:timeZone:locale:",
                     &descriptionWithCalendarFormat_timeZone_locale>();
}

}  // namespace

constinit const Category NSDate_CalendarDate_category = Category::of<NSDate, defineAdditions>("CalendarDate");

NSCalendarDate* dateWithCalendarFormat_timeZone(NSDate* date, NSString* format, NSTimeZone* zone) {
    requireArgument(date, "dateWithCalendarFormat:timeZone:", "the date");
    auto* result =
        NSCalendarDate::dateWithTimeIntervalSinceReferenceDate(date->timeIntervalSinceReferenceDate());
    result->setCalendarFormat(format);
    result->setTimeZone(zone);
    return result;
}

NSString* descriptionWithCalendarFormat_timeZone_locale(NSDate* date, NSString* format, NSTimeZone* zone,
                                                        NSDictionary* locale) {
    requireArgument(date, "descriptionWithCalendarFormat:timeZone:locale:", "the date");
    return dateWithCalendarFormat_timeZone(date, format, zone)->descriptionWithLocale(locale);
}

}  // namespace pelvor
