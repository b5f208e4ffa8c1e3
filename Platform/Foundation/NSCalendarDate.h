// SPDX-License-Identifier: Apache-2.0
// NSCalendarDate: a moment in a time zone, with its calendar and its clock.
#pragma once

#include "Foundation/NSDate.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class NSTimeZone;

// The keys of a locale dictionary, and of the user's settings from which one is made. The first four are
// calendar formats, the others arrays of names in their order, weeks beginning with Sunday.
inline constexpr NSString* NSTimeDateFormatString = u"NSTimeDateFormatString"_ns;
inline constexpr NSString* NSDateFormatString = u"NSDateFormatString"_ns;
inline constexpr NSString* NSShortDateFormatString = u"NSShortDateFormatString"_ns;
inline constexpr NSString* NSTimeFormatString = u"NSTimeFormatString"_ns;
inline constexpr NSString* NSAMPMDesignation = u"NSAMPMDesignation"_ns;  ///< for morning and afternoon
inline constexpr NSString* NSMonthNameArray = u"NSMonthNameArray"_ns;
inline constexpr NSString* NSShortMonthNameArray = u"NSShortMonthNameArray"_ns;
inline constexpr NSString* NSWeekDayNameArray = u"NSWeekDayNameArray"_ns;
inline constexpr NSString* NSShortWeekDayNameArray = u"NSShortWeekDayNameArray"_ns;

/// A moment with a time zone and a calendar format:
///
///     NSCalendarDate* start = NSCalendarDate::dateWithString_calendarFormat(
///         u"2026-03-28 10:15"_ns, u"%Y-%m-%d %H:%M"_ns);       // in the program's time zone
///     NSCalendarDate* next = start->dateByAddingYears_months_days_hours_minutes_seconds(0, 1, 0, 0, 0, 0);
///     NSString* text = next->descriptionWithCalendarFormat(u"%e %B %Y, %H:%M"_ns);  // 28 April 2026, 10:15
///
/// The calendar is the Gregorian one, which is reckoned back to all years; the year before year 1 is 0. It
/// reaches 280 million years; of a date beyond it all fields are 0. A format contains conversions:
///
///     %Y %y        the year, with four digits at least, and with two: 2026, 26
///     %m %B %b     the month: 03, March, Mar
///     %d %e        the day of the month: 08, 8
///     %j           the day of the year, from 001
///     %A %a %w     the day of the week: Sunday, Sun, and 0
///     %H %I %p     the hour, from 00; from 01 to 12, with AM or PM
///     %M %S %F     the minute, the second, and the thousandths of a second with three digits
///     %z %Z        the difference from universal time, +0100, and the zone's abbreviation, CET
///     %c %x %X     the locale's format of date and time, of dates and of times
///     %%           a percent sign
///
/// A 1 before the letter leaves leading zeros out: "%1d.%1m." is "8.3.". Other letters stand for themselves.
/// Names and formats come from the locale, a dictionary with the keys above, and are English without it;
/// entries of other classes are passed over. The locale's NSTimeDateFormatString may contain %x and %X.
///
/// When a text is read, blanks in the format stand for any number of blanks, and numbers may have blanks in
/// front and lack leading zeros; long and short names are both understood, in either case of their letters.
/// %Y reads more than four digits unless a conversion follows at once; %y reads 69 to 99 as years before
/// 2000; %Z reads names of zones, too. Days of the week are read and passed over. Of what the text leaves
/// out, units larger than all that it names are those of today (the year of "3 May"), the other ones have
/// their first value (its hour is 0).
///
/// Dates are equal when their moments are. Creators whose names begin with "init" return owned dates, the
/// others borrowed ones. A date is for one thread at a time, since its zone and its format can be changed.
class PELVOR_EXPORT NSCalendarDate : public NSDate, NSDate::HiddenCreators {
    PELVOR_CLASS(NSCalendarDate, NSDate);
    PELVOR_CREATORS(calendarDate, dateWithTimeIntervalSinceReferenceDate, dateWithString_calendarFormat,
                    dateWithString_calendarFormat_locale, dateWithYear_month_day_hour_minute_second_timeZone,
                    init, initWithTimeIntervalSinceReferenceDate, initWithString,
                    initWithString_calendarFormat, initWithString_calendarFormat_locale,
                    initWithYear_month_day_hour_minute_second_timeZone);

  public:
    // Creation. A null zone stands for the program's time zone.

    /// Now, in the program's time zone.
    static NSCalendarDate* calendarDate(Class* cls = classObject());
    static NSCalendarDate* dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds,
                                                                  Class* cls = classObject());
    /// These read a text, by the format "%Y-%m-%d %H:%M:%S %z" if none is given, in the program's time zone
    /// if the text names none. They return null if the text has another form or names a time that does not
    /// exist. The format becomes the date's.
    static NSCalendarDate* dateWithString_calendarFormat(NSString* text, NSString* format,
                                                         Class* cls = classObject());
    static NSCalendarDate* dateWithString_calendarFormat_locale(NSString* text, NSString* format,
                                                                NSDictionary* locale,
                                                                Class* cls = classObject());
    /// The moment at which the zone's calendar and clock show these. Of a time that the clock shows twice,
    /// the first; a time that it leaves out counts on from the time before. Raises NSInvalidArgumentException
    /// for a day that the calendar lacks, an hour not from 0 to 23, and a minute or second not from 0 to 59.
    static NSCalendarDate* dateWithYear_month_day_hour_minute_second_timeZone(
        NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour, NSUInteger minute,
        NSUInteger second, NSTimeZone* zone, Class* cls = classObject());

    static Retained<NSCalendarDate> init(Class* cls = classObject());
    static Retained<NSCalendarDate> initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds,
                                                                           Class* cls = classObject());
    static Retained<NSCalendarDate> initWithString(NSString* text, Class* cls = classObject());
    static Retained<NSCalendarDate> initWithString_calendarFormat(NSString* text, NSString* format,
                                                                  Class* cls = classObject());
    static Retained<NSCalendarDate> initWithString_calendarFormat_locale(NSString* text, NSString* format,
                                                                         NSDictionary* locale,
                                                                         Class* cls = classObject());
    static Retained<NSCalendarDate> initWithYear_month_day_hour_minute_second_timeZone(
        NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour, NSUInteger minute,
        NSUInteger second, NSTimeZone* zone, Class* cls = classObject());

    NSTimeInterval timeIntervalSinceReferenceDate() override { return _seconds; }

    // What the calendar and the clock show

    NSInteger yearOfCommonEra();
    /// From 1 to 12.
    NSInteger monthOfYear();
    NSInteger dayOfMonth();
    /// From 0, Sunday, to 6.
    NSInteger dayOfWeek();
    /// From 1.
    NSInteger dayOfYear();
    /// The days since the beginning of year 1, whose first day is 1.
    NSInteger dayOfCommonEra();
    NSInteger hourOfDay();
    NSInteger minuteOfHour();
    NSInteger secondOfMinute();

    // Reckoning

    /// A date with the receiver's zone and format. Years, months and days are moved on the calendar at the
    /// same time of the clock: a month after the 31st of January comes the last of February. Then hours,
    /// minutes and seconds pass. Each number may be below 0.
    NSCalendarDate* dateByAddingYears_months_days_hours_minutes_seconds(NSInteger years, NSInteger months,
                                                                        NSInteger days, NSInteger hours,
                                                                        NSInteger minutes, NSInteger seconds);
    /// The time from the other date to the receiver, in whole units of the receiver's calendar, each as large
    /// as possible; all are below 0 if the other date is later. A unit whose pointer is null is counted in
    /// the smaller ones. Adding the result to the other date gives the receiver to the second. A number that
    /// NSInteger cannot hold becomes the nearest that it can. Raises NSInvalidArgumentException if the other
    /// date is null.
    void years_months_days_hours_minutes_seconds_sinceDate(NSInteger* years, NSInteger* months,
                                                           NSInteger* days, NSInteger* hours,
                                                           NSInteger* minutes, NSInteger* seconds,
                                                           NSDate* date);

    // Time zone and text

    NSTimeZone* timeZone() { return _timeZone; }
    /// Null stands for the program's time zone.
    void setTimeZone(NSTimeZone* zone);
    /// The format that `description` uses: "%Y-%m-%d %H:%M:%S %z" until another is set.
    NSString* calendarFormat() { return _calendarFormat; }
    /// Copies the format; null stands for the format of a new date.
    void setCalendarFormat(NSString* format);

    NSString* description() override;
    NSString* descriptionWithLocale(NSDictionary* locale);
    /// These raise NSInvalidArgumentException if the format is null; the locale may be null.
    NSString* descriptionWithCalendarFormat(NSString* format);
    NSString* descriptionWithCalendarFormat_locale(NSString* format, NSDictionary* locale);

    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSCalendarDate> copy();

  protected:
    NSCalendarDate();
    ~NSCalendarDate();

  private:
    static Retained<NSCalendarDate> create(NSTimeInterval seconds, NSTimeZone* zone, NSString* format,
                                           Class* cls);
    template <class Field>
    NSInteger field(Field field);

    NSTimeInterval _seconds = 0;
    Retained<NSTimeZone> _timeZone;
    Retained<NSString> _calendarFormat;
};

}  // namespace pelvor
