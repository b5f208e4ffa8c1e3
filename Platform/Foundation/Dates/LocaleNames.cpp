// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Dates/LocaleNames.h"

#include <iterator>

#include "Foundation/NSArray.h"
#include "Foundation/NSCalendarDate.h"

namespace pelvor {
namespace {

constexpr NSString* kMonths[] = {u"January"_ns,   u"February"_ns, u"March"_ns,    u"April"_ns,
                                 u"May"_ns,       u"June"_ns,     u"July"_ns,     u"August"_ns,
                                 u"September"_ns, u"October"_ns,  u"November"_ns, u"December"_ns};
constexpr NSString* kShortMonths[] = {u"Jan"_ns, u"Feb"_ns, u"Mar"_ns, u"Apr"_ns, u"May"_ns, u"Jun"_ns,
                                      u"Jul"_ns, u"Aug"_ns, u"Sep"_ns, u"Oct"_ns, u"Nov"_ns, u"Dec"_ns};
constexpr NSString* kWeekDays[] = {u"Sunday"_ns,   u"Monday"_ns, u"Tuesday"_ns, u"Wednesday"_ns,
                                   u"Thursday"_ns, u"Friday"_ns, u"Saturday"_ns};
constexpr NSString* kShortWeekDays[] = {u"Sun"_ns, u"Mon"_ns, u"Tue"_ns, u"Wed"_ns,
                                        u"Thu"_ns, u"Fri"_ns, u"Sat"_ns};
constexpr NSString* kHalves[] = {u"AM"_ns, u"PM"_ns};

struct LocaleFormat {
    char16_t conversion;
    NSString* key;
    NSString* english;
};
constexpr LocaleFormat kFormats[] = {
    {u'c', NSTimeDateFormatString, u"%a %b %d %H:%M:%S %Y"_ns},
    {u'x', NSDateFormatString, u"%m/%d/%y"_ns},
    {u'X', NSTimeFormatString, u"%H:%M:%S"_ns},
};

}  // namespace

const NameList kMonthNames{NSMonthNameArray, kMonths, std::size(kMonths)};
const NameList kShortMonthNames{NSShortMonthNameArray, kShortMonths, std::size(kShortMonths)};
const NameList kWeekDayNames{NSWeekDayNameArray, kWeekDays, std::size(kWeekDays)};
const NameList kShortWeekDayNames{NSShortWeekDayNameArray, kShortWeekDays, std::size(kShortWeekDays)};
const NameList kDayHalves{NSAMPMDesignation, kHalves, std::size(kHalves)};

NSString* NameList::nameAt(NSUInteger index, NSDictionary* locale) const {
    auto* names = locale ? cast<NSArray>(locale->objectForKey(key)) : nullptr;
    auto* name = names && index < names->count() ? cast<NSString>(names->objectAtIndex(index)) : nullptr;
    return name ? name : english[index];
}

NSString* formatOfLocale(char16_t conversion, NSDictionary* locale) {
    for (const LocaleFormat& format : kFormats) {
        if (format.conversion != conversion) continue;
        auto* own = locale ? cast<NSString>(locale->objectForKey(format.key)) : nullptr;
        return own ? own : format.english;
    }
    return nullptr;
}

}  // namespace pelvor
