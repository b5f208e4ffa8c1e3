// SPDX-License-Identifier: Apache-2.0
#include "NSCalendarDate-PelvorAdditions.h"

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSUserDefaults.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

using Additions = NSCalendarDate_PelvorAdditions;

void defineAdditions(MethodTable<NSCalendarDate>& methods) {
    methods.classLevel<"systemDefinedTimeDateFormatString", &Additions::systemDefinedTimeDateFormatString>();
    methods.classLevel<"systemDefinedDateFormatString", &Additions::systemDefinedDateFormatString>();
    methods
        .classLevel<"systemDefinedShortDateFormatString", &Additions::systemDefinedShortDateFormatString>();
    methods.classLevel<"systemDefinedTimeFormatString", &Additions::systemDefinedTimeFormatString>();
    methods.classLevel<"systemDefinedLocale", &Additions::systemDefinedLocale>();
}

NSString* setting(NSString* key) { return NSUserDefaults::standardUserDefaults()->stringForKey(key); }

// Hosts may rely on it that the dictionary ends at the first setting that is missing.
Retained<NSDictionary> makeLocale() {
    auto locale = NSMutableDictionary::init();
    for (NSString* key : {NSTimeDateFormatString, NSAMPMDesignation, NSMonthNameArray, NSShortMonthNameArray,
                          NSWeekDayNameArray, NSShortWeekDayNameArray}) {
        id value = NSUserDefaults::standardUserDefaults()->objectForKey(key);
        if (!value) break;
        locale->setObject_forKey(value, key);
    }
    return locale->copy();
}

}  // namespace

constinit const Category NSCalendarDate_PelvorAdditions_category =
    Category::of<NSCalendarDate, defineAdditions>("PelvorAdditions");

NSString* NSCalendarDate_PelvorAdditions::systemDefinedTimeDateFormatString() {
    return setting(NSTimeDateFormatString);
}

NSString* NSCalendarDate_PelvorAdditions::systemDefinedDateFormatString() {
    return setting(NSDateFormatString);
}

NSString* NSCalendarDate_PelvorAdditions::systemDefinedShortDateFormatString() {
    return setting(NSShortDateFormatString);
}

NSString* NSCalendarDate_PelvorAdditions::systemDefinedTimeFormatString() {
    return setting(NSTimeFormatString);
}

NSDictionary* NSCalendarDate_PelvorAdditions::systemDefinedLocale() {
    static auto* const locale = new Retained<NSDictionary>(makeLocale());
    return *locale;
}

}  // namespace pelvor
