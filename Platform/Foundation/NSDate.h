// SPDX-License-Identifier: Apache-2.0
// NSDate: a moment.
#pragma once

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

/// Seconds.
using NSTimeInterval = double;

/// From 1970-01-01 to the reference date 2001-01-01, both 00:00 UTC, without leap seconds.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

/// An immutable moment, kept as the seconds since the reference date, 2001-01-01 00:00 UTC.
///
///     NSDate* start = NSDate::date();
///     NSTimeInterval seconds = -start->timeIntervalSinceNow();                     // how long ago that was
///     bool isLate = NSDate::date()->compare(deadline) == NSOrderedDescending;
///
/// Dates are equal when their seconds are exactly equal. Creators whose names begin with "init" return owned
/// dates, the others borrowed ones. The class is abstract: a subclass implements
/// `timeIntervalSinceReferenceDate`. Any thread.
class PELVOR_EXPORT NSDate : public NSObject {
    PELVOR_CLASS(NSDate, NSObject);
    PELVOR_CREATORS(date, dateWithTimeIntervalSinceNow, dateWithTimeIntervalSinceReferenceDate,
                    dateWithTimeIntervalSince1970, init, initWithTimeIntervalSinceReferenceDate,
                    initWithTimeIntervalSinceNow, initWithTimeInterval_sinceDate);

  public:
    /// Now.
    static NSDate* date();
    static NSDate* dateWithTimeIntervalSinceNow(NSTimeInterval seconds);
    static NSDate* dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds);
    static NSDate* dateWithTimeIntervalSince1970(NSTimeInterval seconds);
    /// The beginning of the year 1 and of the year 4001: dates that in practice come before and after all
    /// others.
    static NSDate* distantPast();
    static NSDate* distantFuture();
    static Retained<NSDate> init();
    static Retained<NSDate> initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds);
    static Retained<NSDate> initWithTimeIntervalSinceNow(NSTimeInterval seconds);
    static Retained<NSDate> initWithTimeInterval_sinceDate(NSTimeInterval seconds, NSDate* date);
    /// Now, in seconds since the reference date.
    static NSTimeInterval currentTimeIntervalSinceReferenceDate();

    virtual NSTimeInterval timeIntervalSinceReferenceDate() = 0;
    NSTimeInterval timeIntervalSince1970();
    /// The seconds from now to the receiver: a number below 0 for a date in the past.
    NSTimeInterval timeIntervalSinceNow();
    /// The seconds from the other date to the receiver: a number below 0 if the other date is later. This and
    /// `compare` raise NSInvalidArgumentException if the other date is null.
    NSTimeInterval timeIntervalSinceDate(NSDate* other);

    NSDate* addTimeInterval(NSTimeInterval seconds);
    // The earlier or the later one of the two dates. The receiver, if the dates are equal or the other date
    // is null.

    NSDate* earlierDate(NSDate* other);
    NSDate* laterDate(NSDate* other);
    NSComparisonResult compare(NSDate* other);
    bool isEqualToDate(NSDate* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The moment in UTC to the second, "2001-01-01 00:00:00 +0000".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSDate> copy();

  protected:
    constexpr NSDate() noexcept = default;
    constexpr NSDate(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSDate() = default;
};

}  // namespace pelvor
