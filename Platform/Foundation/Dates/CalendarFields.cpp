// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Dates/CalendarFields.h"

#include <algorithm>

#include "Foundation/NSTimeZone.h"

namespace pelvor {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
// Years are reckoned in eras of 400 years, which all have as many days, and from March, so that the day that
// leap years have more is the last one.
constexpr std::int64_t kDaysOfEra = 146097;
constexpr std::int64_t kDaysToReference = 730791;  // from the 1st of March of year 0 to 2001-01-01

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0);
}

}  // namespace

std::int64_t daysToDay(CalendarDay day) {
    const std::int64_t year = day.year - (day.month <= 2);
    const std::int64_t era = floorDivide(year, 400);
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (day.month + (day.month > 2 ? -3 : 9)) + 2) / 5 + day.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * kDaysOfEra + dayOfEra - kDaysToReference;
}

CalendarDay dayAfterDays(std::int64_t days) {
    days += kDaysToReference;
    const std::int64_t era = floorDivide(days, kDaysOfEra);
    const std::int64_t dayOfEra = days - era * kDaysOfEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / (kDaysOfEra - 1)) / 365;
    const int dayOfYear = static_cast<int>(dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100));
    const int monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int month = monthFromMarch + (monthFromMarch < 10 ? 3 : -9);
    return {era * 400 + yearOfEra + (month <= 2), month, dayOfYear - (153 * monthFromMarch + 2) / 5 + 1};
}

int daysOfMonth(std::int64_t year, int month) {
    if (month != 2) return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
}

CalendarFields fieldsAt(NSTimeInterval moment, NSTimeZone* zone) {
    CalendarFields fields;
    fields.difference = zone->differenceAt(moment);
    // Seconds with a fraction are not exact: a hundredth of a millisecond makes up for it.
    const double milliseconds = std::floor((moment - std::floor(moment)) * 1000 + 1e-2);
    const bool isNextSecond = milliseconds >= 1000;
    fields.milliseconds = isNextSecond ? 0 : static_cast<int>(milliseconds);
    const std::int64_t seconds =
        static_cast<std::int64_t>(std::floor(moment)) + isNextSecond + fields.difference;
    fields.days = floorDivide(seconds, kSecondsOfDay);
    fields.seconds = seconds - fields.days * kSecondsOfDay;
    fields.day = dayAfterDays(fields.days);
    return fields;
}

NSTimeInterval momentOf(std::int64_t days, NSTimeInterval secondOfDay, NSTimeZone* zone) {
    const NSTimeInterval local = static_cast<NSTimeInterval>(days * kSecondsOfDay) + secondOfDay;
    return local - zone->differenceAtLocalTime(local);
}

NSTimeInterval movedMoment(NSTimeInterval moment, std::int64_t months, std::int64_t days, NSTimeZone* zone) {
    if (months == 0 && days == 0) return moment;
    const NSTimeInterval local = moment + zone->differenceAt(moment);
    const auto today = static_cast<std::int64_t>(std::floor(local / kSecondsOfDay));
    CalendarDay day = dayAfterDays(today);
    const std::int64_t month = day.year * 12 + (day.month - 1) + months;
    day.year = floorDivide(month, 12);
    day.month = static_cast<int>(month - day.year * 12) + 1;
    day.day = std::min(day.day, daysOfMonth(day.year, day.month));
    return momentOf(daysToDay(day) + days, local - static_cast<double>(today * kSecondsOfDay), zone);
}

}  // namespace pelvor
