// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSDate.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>

#include "Foundation/ClockScope.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/Values/ConcreteDate.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPlainDate, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSDate, foundationLibrary) {
    methods.creator<"date", &NSDate::date>();
    methods.creator<"dateWithTimeIntervalSinceNow:", &NSDate::dateWithTimeIntervalSinceNow>();
    methods.creator<"dateWithTimeIntervalSinceReferenceDate:",
                    &NSDate::dateWithTimeIntervalSinceReferenceDate>();
    methods.creator<"dateWithTimeIntervalSince1970:", &NSDate::dateWithTimeIntervalSince1970>();
    methods.classLevel<"distantPast", &NSDate::distantPast>();
    methods.classLevel<"distantFuture", &NSDate::distantFuture>();
    methods.creator<"init", &NSDate::init>();
    methods.creatorAs<"new", &NSDate::init>();
    methods.creator<"initWithTimeIntervalSinceReferenceDate:",
                    &NSDate::initWithTimeIntervalSinceReferenceDate>();
    methods.creator<"initWithTimeIntervalSinceNow:", &NSDate::initWithTimeIntervalSinceNow>();
    methods.creator<"initWithTimeInterval:sinceDate:", &NSDate::initWithTimeInterval_sinceDate>();
    methods.classLevelAs<"timeIntervalSinceReferenceDate", &NSDate::currentTimeIntervalSinceReferenceDate>();
    methods.instance<"timeIntervalSinceReferenceDate", &NSDate::timeIntervalSinceReferenceDate>();
    methods.instance<"timeIntervalSince1970", &NSDate::timeIntervalSince1970>();
    methods.instance<"timeIntervalSinceNow", &NSDate::timeIntervalSinceNow>();
    methods.instance<"timeIntervalSinceDate:", &NSDate::timeIntervalSinceDate>();
    methods.instance<"addTimeInterval:", &NSDate::addTimeInterval>();
    methods.instance<"earlierDate:", &NSDate::earlierDate>();
    methods.instance<"laterDate:", &NSDate::laterDate>();
    methods.instance<"compare:", &NSDate::compare>();
    methods.instance<"isEqualToDate:", &NSDate::isEqualToDate>();
}

// MARK: Creation

NSTimeInterval NSDate::currentTimeIntervalSinceReferenceDate() {
    if (const ClockScope* clock = ClockScope::current()) [[unlikely]]
        return clock->now();
    std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return sinceEpoch.count() - NSTimeIntervalSince1970;
}

NSDate* NSDate::date() { return init().autorelease(); }

NSDate* NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    return initWithTimeIntervalSinceNow(seconds).autorelease();
}

NSDate* NSDate::dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    return initWithTimeIntervalSinceReferenceDate(seconds).autorelease();
}

NSDate* NSDate::dateWithTimeIntervalSince1970(NSTimeInterval seconds) {
    return dateWithTimeIntervalSinceReferenceDate(seconds - NSTimeIntervalSince1970);
}

NSDate* NSDate::distantPast() {  // 0001-01-01
    return dateWithTimeIntervalSinceReferenceDate(-63113904000.0);
}

NSDate* NSDate::distantFuture() {  // 4001-01-01
    return dateWithTimeIntervalSinceReferenceDate(63113904000.0);
}

Retained<NSDate> NSDate::init() { return initWithTimeIntervalSinceNow(0); }

Retained<NSDate> NSDate::initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    return NSPlainDate::create(seconds);
}

Retained<NSDate> NSDate::initWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    return NSPlainDate::create(currentTimeIntervalSinceReferenceDate() + seconds);
}

Retained<NSDate> NSDate::initWithTimeInterval_sinceDate(NSTimeInterval seconds, NSDate* date) {
    requireArgument(date, "initWithTimeInterval:sinceDate:", "the date");
    return NSPlainDate::create(date->timeIntervalSinceReferenceDate() + seconds);
}

// MARK: Intervals and order

NSTimeInterval NSDate::timeIntervalSince1970() {
    return timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
}

NSTimeInterval NSDate::timeIntervalSinceNow() {
    return timeIntervalSinceReferenceDate() - currentTimeIntervalSinceReferenceDate();
}

NSTimeInterval NSDate::timeIntervalSinceDate(NSDate* other) {
    requireArgument(other, "timeIntervalSinceDate:", "the date");
    return timeIntervalSinceReferenceDate() - other->timeIntervalSinceReferenceDate();
}

NSDate* NSDate::addTimeInterval(NSTimeInterval seconds) {
    return dateWithTimeIntervalSinceReferenceDate(timeIntervalSinceReferenceDate() + seconds);
}

NSDate* NSDate::earlierDate(NSDate* other) {
    return other && compare(other) == NSOrderedDescending ? other : this;
}

NSDate* NSDate::laterDate(NSDate* other) {
    return other && compare(other) == NSOrderedAscending ? other : this;
}

NSComparisonResult NSDate::compare(NSDate* other) {
    requireArgument(other, "compare:", "the date");
    NSTimeInterval mine = timeIntervalSinceReferenceDate();
    NSTimeInterval theirs = other->timeIntervalSinceReferenceDate();
    return mine < theirs ? NSOrderedAscending : mine > theirs ? NSOrderedDescending : NSOrderedSame;
}

bool NSDate::isEqualToDate(NSDate* other) {
    return this == other ||
           (other && timeIntervalSinceReferenceDate() == other->timeIntervalSinceReferenceDate());
}

bool NSDate::isEqual(id other) { return isEqualToDate(cast<NSDate>(other)); }

std::uintptr_t NSDate::hash() { return std::hash<double>()(timeIntervalSinceReferenceDate()); }

Retained<NSDate> NSDate::copy() { return cast<NSDate>(copyWithZone(nullptr)); }

Retained<Object> NSDate::copyWithZone(void*) { return Retained<Object>::retaining(this); }

// MARK: Text

NSString* NSDate::description() {
    using namespace std::chrono;
    constexpr double kReach = 9.0e11;  // about 28,500 years: the calendar below reaches further
    double whole = std::floor(timeIntervalSinceReferenceDate());
    if (!(std::fabs(whole) < kReach)) return u"(a date out of the calendar)"_ns;
    sys_seconds moment{seconds(static_cast<std::int64_t>(whole + NSTimeIntervalSince1970))};
    auto day = floor<days>(moment);
    year_month_day date(day);
    hh_mm_ss time(moment - day);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d +0000", int{date.year()},
                  unsigned{date.month()}, unsigned{date.day()}, static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return NSString::ofUTF8(text);
}

}  // namespace pelvor
