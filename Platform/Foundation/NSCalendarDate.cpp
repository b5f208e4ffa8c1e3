// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSCalendarDate.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "Foundation/Dates/CalendarFormat.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSTimeZone.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCalendarDate, foundationLibrary) {
    methods.creator<"calendarDate", &NSCalendarDate::calendarDate>();
    methods.creatorAs<"date", &NSCalendarDate::calendarDate>();
    methods.creator<"dateWithTimeIntervalSinceReferenceDate:",
                    &NSCalendarDate::dateWithTimeIntervalSinceReferenceDate>();
    methods.creator<"dateWithString:calendarFormat:", &NSCalendarDate::dateWithString_calendarFormat>();
    methods.creator<"dateWithString:calendarFormat:locale:",
                    &NSCalendarDate::dateWithString_calendarFormat_locale>();
    methods.creator<"dateWithYear:month:day:hour:minute:second:timeZone:",
                    &NSCalendarDate::dateWithYear_month_day_hour_minute_second_timeZone>();
    methods.creator<"init", &NSCalendarDate::init>();
    methods.creatorAs<"new", &NSCalendarDate::init>();
    methods.creator<"initWithTimeIntervalSinceReferenceDate:",
                    &NSCalendarDate::initWithTimeIntervalSinceReferenceDate>();
    methods.creator<"initWithString:", &NSCalendarDate::initWithString>();
    methods.creator<"initWithString:calendarFormat:", &NSCalendarDate::initWithString_calendarFormat>();
    methods.creator<"initWithString:calendarFormat:locale:",
                    &NSCalendarDate::initWithString_calendarFormat_locale>();
    methods.creator<"initWithYear:month:day:hour:minute:second:timeZone:",
                    &NSCalendarDate::initWithYear_month_day_hour_minute_second_timeZone>();
    methods.instance<"yearOfCommonEra", &NSCalendarDate::yearOfCommonEra>();
    methods.instance<"monthOfYear", &NSCalendarDate::monthOfYear>();
    methods.instance<"dayOfMonth", &NSCalendarDate::dayOfMonth>();
    methods.instance<"dayOfWeek", &NSCalendarDate::dayOfWeek>();
    methods.instance<"dayOfYear", &NSCalendarDate::dayOfYear>();
    methods.instance<"dayOfCommonEra", &NSCalendarDate::dayOfCommonEra>();
    methods.instance<"hourOfDay", &NSCalendarDate::hourOfDay>();
    methods.instance<"minuteOfHour", &NSCalendarDate::minuteOfHour>();
    methods.instance<"secondOfMinute", &NSCalendarDate::secondOfMinute>();
    methods.instance<"dateByAddingYears:months:days:hours:minutes:seconds:",
                     &NSCalendarDate::dateByAddingYears_months_days_hours_minutes_seconds>();
    methods.instance<"years:months:days:hours:minutes:seconds:sinceDate:",
                     &NSCalendarDate::years_months_days_hours_minutes_seconds_sinceDate>();
    methods.instance<"timeZone", &NSCalendarDate::timeZone>();
    methods.instance<"setTimeZone:", &NSCalendarDate::setTimeZone>();
    methods.instance<"calendarFormat", &NSCalendarDate::calendarFormat>();
    methods.instance<"setCalendarFormat:", &NSCalendarDate::setCalendarFormat>();
    methods.instance<"descriptionWithLocale:", &NSCalendarDate::descriptionWithLocale>();
    methods.instance<"descriptionWithCalendarFormat:", &NSCalendarDate::descriptionWithCalendarFormat>();
    methods.instance<"descriptionWithCalendarFormat:locale:",
                     &NSCalendarDate::descriptionWithCalendarFormat_locale>();
}

namespace {

constexpr NSString* kNormalFormat = u"%Y-%m-%d %H:%M:%S %z"_ns;

// Reads for the operation, whose name messages have.
std::optional<ReadMoment> read(NSString* text, NSString* format, NSDictionary* locale,
                               const char* operation) {
    requireArgument(text, operation, "the text");
    requireArgument(format, operation, "the format");
    return readMoment(text, format, locale, NSTimeZone::defaultTimeZone());
}

void requireBelow(NSUInteger value, NSUInteger bound, const char* name, const char* operation) {
    if (value >= bound)
        raiseBadArgument(operation, "the " + std::string(name) + " (" + std::to_string(value) +
                                        ") is not below " + std::to_string(bound));
}

void requireDay(NSInteger year, NSUInteger month, NSUInteger day, const char* operation) {
    if (month < 1 || month > 12)
        raiseBadArgument(operation, "the month (" + std::to_string(month) + ") is not from 1 to 12");
    const auto last = static_cast<NSUInteger>(daysOfMonth(year, static_cast<int>(month)));
    if (day < 1 || day > last)
        raiseBadArgument(operation, "the day (" + std::to_string(day) + ") is not from 1 to " +
                                        std::to_string(last) + ", the last day of the month");
}

NSInteger clamped(std::int64_t value) {
    using Limits = std::numeric_limits<NSInteger>;
    return static_cast<NSInteger>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

// Takes as many units as possible out of the rest, unless nobody asks for the unit.
void take(std::int64_t& rest, std::int64_t unit, NSInteger* count) {
    if (!count) return;
    *count = clamped(rest / unit);
    rest -= std::int64_t{*count} * unit;
}

// A time on the way from one moment to another, in units of a zone's calendar.
class CalendarDistance {
  public:
    CalendarDistance(NSTimeInterval from, NSTimeInterval to, NSTimeZone* zone)
        : _from(from), _to(to), _zone(zone), _sign(from <= to ? 1 : -1) {}

    // The most months and then days that do not lead beyond the end.
    void countMonths() {
        const CalendarDay first = dayAt(_from), last = dayAt(_to);
        months = last.year * 12 + last.month - (first.year * 12 + first.month);
        while (months != 0 && isBeyond()) months -= _sign;
    }
    void countDays() {
        days = daysToDay(dayAt(_to)) - daysToDay(dayAt(reached()));
        while (days != 0 && isBeyond()) days -= _sign;
    }
    std::int64_t remainingSeconds() const { return static_cast<std::int64_t>(_to - reached()); }

    std::int64_t months = 0;
    std::int64_t days = 0;

  private:
    CalendarDay dayAt(NSTimeInterval moment) const { return fieldsAt(moment, _zone).day; }
    NSTimeInterval reached() const { return movedMoment(_from, months, days, _zone); }
    bool isBeyond() const { return _sign * (reached() - _to) > 0; }

    const NSTimeInterval _from;
    const NSTimeInterval _to;
    NSTimeZone* const _zone;
    const int _sign;
};

}  // namespace

// MARK: Creation

NSCalendarDate::NSCalendarDate() = default;

NSCalendarDate::~NSCalendarDate() = default;

Retained<NSCalendarDate> NSCalendarDate::create(NSTimeInterval seconds, NSTimeZone* zone, NSString* format,
                                                Class* cls) {
    auto date = make<NSCalendarDate>(cls);
    date->_seconds = seconds;
    date->setTimeZone(zone);
    date->setCalendarFormat(format);
    return date;
}

NSCalendarDate* NSCalendarDate::calendarDate(Class* cls) { return init(cls).autorelease(); }

NSCalendarDate* NSCalendarDate::dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds, Class* cls) {
    return initWithTimeIntervalSinceReferenceDate(seconds, cls).autorelease();
}

NSCalendarDate* NSCalendarDate::dateWithString_calendarFormat(NSString* text, NSString* format, Class* cls) {
    auto moment = read(text, format, nullptr, "dateWithString:calendarFormat:");
    return moment ? create(moment->moment, moment->zone, format, cls).autorelease() : nullptr;
}

NSCalendarDate* NSCalendarDate::dateWithString_calendarFormat_locale(NSString* text, NSString* format,
                                                                     NSDictionary* locale, Class* cls) {
    auto moment = read(text, format, locale, "dateWithString:calendarFormat:locale:");
    return moment ? create(moment->moment, moment->zone, format, cls).autorelease() : nullptr;
}

NSCalendarDate* NSCalendarDate::dateWithYear_month_day_hour_minute_second_timeZone(
    NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour, NSUInteger minute, NSUInteger second,
    NSTimeZone* zone, Class* cls) {
    return initWithYear_month_day_hour_minute_second_timeZone(year, month, day, hour, minute, second, zone,
                                                              cls)
        .autorelease();
}

Retained<NSCalendarDate> NSCalendarDate::init(Class* cls) {
    return initWithTimeIntervalSinceReferenceDate(currentTimeIntervalSinceReferenceDate(), cls);
}

Retained<NSCalendarDate> NSCalendarDate::initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds,
                                                                                Class* cls) {
    return create(seconds, nullptr, nullptr, cls);
}

Retained<NSCalendarDate> NSCalendarDate::initWithString(NSString* text, Class* cls) {
    auto moment = read(text, kNormalFormat, nullptr, "initWithString:");
    return moment ? create(moment->moment, moment->zone, nullptr, cls) : nullptr;
}

Retained<NSCalendarDate> NSCalendarDate::initWithString_calendarFormat(NSString* text, NSString* format,
                                                                       Class* cls) {
    auto moment = read(text, format, nullptr, "initWithString:calendarFormat:");
    return moment ? create(moment->moment, moment->zone, format, cls) : nullptr;
}

Retained<NSCalendarDate> NSCalendarDate::initWithString_calendarFormat_locale(NSString* text,
                                                                              NSString* format,
                                                                              NSDictionary* locale,
                                                                              Class* cls) {
    auto moment = read(text, format, locale, "initWithString:calendarFormat:locale:");
    return moment ? create(moment->moment, moment->zone, format, cls) : nullptr;
}

Retained<NSCalendarDate> NSCalendarDate::initWithYear_month_day_hour_minute_second_timeZone(
    NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour, NSUInteger minute, NSUInteger second,
    NSTimeZone* zone, Class* cls) {
    constexpr const char* kOperation = "initWithYear:month:day:hour:minute:second:timeZone:";
    requireDay(year, month, day, kOperation);
    requireBelow(hour, 24, "hour", kOperation);
    requireBelow(minute, 60, "minute", kOperation);
    requireBelow(second, 60, "second", kOperation);
    if (!zone) zone = NSTimeZone::defaultTimeZone();
    const std::int64_t days = daysToDay({year, static_cast<int>(month), static_cast<int>(day)});
    return create(momentOf(days, hour * 3600 + minute * 60 + second, zone), zone, nullptr, cls);
}

// MARK: Fields

template <class Field>
NSInteger NSCalendarDate::field(Field field) {
    return isInCalendar(_seconds) ? static_cast<NSInteger>(field(fieldsAt(_seconds, _timeZone))) : 0;
}

NSInteger NSCalendarDate::yearOfCommonEra() {
    return field([](const CalendarFields& at) { return at.day.year; });
}

NSInteger NSCalendarDate::monthOfYear() {
    return field([](const CalendarFields& at) { return at.day.month; });
}

NSInteger NSCalendarDate::dayOfMonth() {
    return field([](const CalendarFields& at) { return at.day.day; });
}

NSInteger NSCalendarDate::dayOfWeek() {
    return field([](const CalendarFields& at) { return at.dayOfWeek(); });
}

NSInteger NSCalendarDate::dayOfYear() {
    return field([](const CalendarFields& at) { return at.dayOfYear(); });
}

NSInteger NSCalendarDate::dayOfCommonEra() {
    return field([](const CalendarFields& at) { return clamped(at.days - daysToDay({1, 1, 1}) + 1); });
}

NSInteger NSCalendarDate::hourOfDay() {
    return field([](const CalendarFields& at) { return at.hour(); });
}

NSInteger NSCalendarDate::minuteOfHour() {
    return field([](const CalendarFields& at) { return at.minute(); });
}

NSInteger NSCalendarDate::secondOfMinute() {
    return field([](const CalendarFields& at) { return at.second(); });
}

// MARK: Reckoning

NSCalendarDate* NSCalendarDate::dateByAddingYears_months_days_hours_minutes_seconds(
    NSInteger years, NSInteger months, NSInteger days, NSInteger hours, NSInteger minutes,
    NSInteger seconds) {
    NSTimeInterval moment = _seconds;
    if (isInCalendar(moment))
        moment = movedMoment(moment, std::int64_t{years} * 12 + months, days, _timeZone);
    moment += static_cast<double>(std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60 + seconds);
    return create(moment, _timeZone, _calendarFormat, class_()).autorelease();
}

void NSCalendarDate::years_months_days_hours_minutes_seconds_sinceDate(NSInteger* years, NSInteger* months,
                                                                       NSInteger* days, NSInteger* hours,
                                                                       NSInteger* minutes, NSInteger* seconds,
                                                                       NSDate* date) {
    requireArgument(date, "years:months:days:hours:minutes:seconds:sinceDate:", "the date");
    for (NSInteger* count : {years, months, days, hours, minutes, seconds})
        if (count) *count = 0;
    const NSTimeInterval from = date->timeIntervalSinceReferenceDate();
    if (!isInCalendar(_seconds) || !isInCalendar(from)) return;
    CalendarDistance distance(from, _seconds, _timeZone);
    if (years || months) distance.countMonths();
    if (years && !months) distance.months -= distance.months % 12;
    std::int64_t wholeMonths = distance.months;
    take(wholeMonths, 12, years);
    take(wholeMonths, 1, months);
    if (days) {
        distance.countDays();
        *days = clamped(distance.days);
    }
    std::int64_t rest = distance.remainingSeconds();
    take(rest, 3600, hours);
    take(rest, 60, minutes);
    take(rest, 1, seconds);
}

// MARK: Time zone and text

void NSCalendarDate::setTimeZone(NSTimeZone* zone) {
    _timeZone.set(zone ? zone : NSTimeZone::defaultTimeZone());
}

void NSCalendarDate::setCalendarFormat(NSString* format) {
    _calendarFormat = (format ? format : kNormalFormat)->copy();
}

NSString* NSCalendarDate::description() { return descriptionWithLocale(nullptr); }

NSString* NSCalendarDate::descriptionWithLocale(NSDictionary* locale) {
    return formattedMoment(_seconds, _timeZone, _calendarFormat, locale);
}

NSString* NSCalendarDate::descriptionWithCalendarFormat(NSString* format) {
    requireArgument(format, "descriptionWithCalendarFormat:", "the format");
    return formattedMoment(_seconds, _timeZone, format, nullptr);
}

NSString* NSCalendarDate::descriptionWithCalendarFormat_locale(NSString* format, NSDictionary* locale) {
    requireArgument(format, "descriptionWithCalendarFormat:locale:", "the format");
    return formattedMoment(_seconds, _timeZone, format, locale);
}

Retained<Object> NSCalendarDate::copyWithZone(void*) {
    return create(_seconds, _timeZone, _calendarFormat, class_());
}

Retained<NSCalendarDate> NSCalendarDate::copy() { return cast<NSCalendarDate>(copyWithZone(nullptr)); }

}  // namespace pelvor
