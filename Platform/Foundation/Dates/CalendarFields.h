// SPDX-License-Identifier: Apache-2.0
// What a calendar and a clock show at a moment; for Foundation's own sources.
#pragma once

#include <cmath>
#include <cstdint>

#include "Foundation/NSDate.h"

namespace pelvor {

class NSTimeZone;

/// A day of the Gregorian calendar, which is reckoned back beyond its introduction. The year before year 1 is
/// year 0.
struct CalendarDay {
    std::int64_t year;
    int month;  ///< from 1
    int day;    ///< of the month, from 1
};

/// The days from the reference date to a day. The day of the month may lie outside its month.
std::int64_t daysToDay(CalendarDay day);
CalendarDay dayAfterDays(std::int64_t days);
/// The number of days of the month, whose number is from 1 to 12.
int daysOfMonth(std::int64_t year, int month);

/// Whether the calendar reaches the moment: 280 million years.
inline bool isInCalendar(NSTimeInterval moment) { return std::fabs(moment) < 9.0e15; }

/// What a zone's calendar and clock show.
struct CalendarFields {
    std::int64_t days;     ///< from the reference date
    std::int64_t seconds;  ///< of the day
    int milliseconds;
    int difference;  ///< from universal time, in seconds
    CalendarDay day;

    int hour() const { return static_cast<int>(seconds / 3600); }
    int minute() const { return static_cast<int>(seconds / 60 % 60); }
    int second() const { return static_cast<int>(seconds % 60); }
    /// From 0, Sunday.
    int dayOfWeek() const { return static_cast<int>(((days + 1) % 7 + 7) % 7); }
    /// From 1.
    int dayOfYear() const { return static_cast<int>(days - daysToDay({day.year, 1, 1})) + 1; }
};

/// The fields of a moment that the calendar reaches, cut to the millisecond.
CalendarFields fieldsAt(NSTimeInterval moment, NSTimeZone* zone);

/// The moment at which the zone's calendar shows the day, and its clock so many seconds after midnight.
NSTimeInterval momentOf(std::int64_t days, NSTimeInterval secondOfDay, NSTimeZone* zone);

/// The moment so many months and days later by the zone's calendar, at the same time of its clock. The last
/// day of a month stands for days that the month lacks.
NSTimeInterval movedMoment(NSTimeInterval moment, std::int64_t months, std::int64_t days, NSTimeZone* zone);

}  // namespace pelvor
