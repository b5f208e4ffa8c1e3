// SPDX-License-Identifier: Apache-2.0
// Writes a moment in a format and reads a text by it. The input is a moment, a format, a text, and names of a
// locale, with zeros between. What is written is compared with what the standard library writes.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include "Foundation/NSArray.h"
#include "Foundation/NSCalendarDate.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSTimeZone.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

using namespace pelvor;

namespace {

constexpr NSString* kWhole = u"%Y-%m-%d %H:%M:%S.%F %z"_ns;

// As far as the standard library's years and four digits reach.
bool isOrdinary(NSTimeInterval moment) { return std::fabs(moment) < 6.0e10; }

void checkFields(NSCalendarDate* date, NSTimeInterval moment) {
    const auto seconds = static_cast<std::time_t>(std::floor(moment + 1e-5) + NSTimeIntervalSince1970);
    std::tm fields;
    gmtime_r(&seconds, &fields);
    require(date->yearOfCommonEra() == fields.tm_year + 1900 && date->monthOfYear() == fields.tm_mon + 1 &&
                date->dayOfMonth() == fields.tm_mday && date->dayOfWeek() == fields.tm_wday &&
                date->dayOfYear() == fields.tm_yday + 1 && date->hourOfDay() == fields.tm_hour &&
                date->minuteOfHour() == fields.tm_min,
            "the fields are those of the standard library");
}

void checkRoundTrip(NSCalendarDate* date) {
    NSString* text = date->descriptionWithCalendarFormat(kWhole);
    NSCalendarDate* again = NSCalendarDate::dateWithString_calendarFormat(text, kWhole);
    require(again && std::fabs(again->timeIntervalSinceDate(date)) < 0.0011, "what is written can be read");
    require(again->description()->isEqual(text), "what is read is written again");
}

NSDictionary* localeOf(NSString* names) {
    NSArray* list = names->componentsSeparatedByString(u","_ns);
    return NSDictionary::of({{NSMonthNameArray, list},
                             {NSShortWeekDayNameArray, list},
                             {NSAMPMDesignation, list},
                             {NSTimeDateFormatString, names},
                             {NSDateFormatString, list->lastObject()}});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    NSTimeInterval moment = 0;
    if (size < sizeof moment) return 0;
    std::memcpy(&moment, data, sizeof moment);
    std::string_view rest(reinterpret_cast<const char*>(data) + sizeof moment, size - sizeof moment);
    NSString* parts[3];
    for (NSString*& part : parts) {
        const std::string_view first = rest.substr(0, rest.find('\0'));
        part = NSString::ofUTF8(first);
        rest.remove_prefix(std::min(rest.size(), first.size() + 1));
    }
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
    NSDictionary* locale = localeOf(parts[2]);
    NSCalendarDate* date = NSCalendarDate::dateWithTimeIntervalSinceReferenceDate(moment);
    require(date->descriptionWithCalendarFormat_locale(parts[0], locale), "a date has a text");
    if (isOrdinary(moment)) {
        checkFields(date, moment);
        if (date->yearOfCommonEra() > 0) checkRoundTrip(date);
    }
    NSCalendarDate* read = NSCalendarDate::dateWithString_calendarFormat_locale(parts[1], parts[0], locale);
    if (!read || !isOrdinary(read->timeIntervalSinceReferenceDate())) return 0;
    // %z reads seconds of a difference, and does not write them.
    const bool hasSeconds = read->timeZone()->secondsFromGMTForDate(read) % 60 != 0;
    if (read->yearOfCommonEra() > 0 && !hasSeconds) checkRoundTrip(read);
    return 0;
}
