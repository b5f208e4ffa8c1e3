// SPDX-License-Identifier: Apache-2.0
// NSTimeZone: by how much a region's clocks differ from universal time.
#pragma once

#include <memory>

#include "Foundation/NSDate.h"

namespace pelvor {

class NSArray;
class NSString;
struct TimeZoneRules;

/// A time zone: a region whose clocks show the same time, with all changes to and from summer time, or a
/// fixed difference from universal time (GMT).
///
///     NSTimeZone* zone = NSTimeZone::timeZoneWithName(u"Europe/Berlin"_ns);
///     NSInteger ahead = zone->secondsFromGMTForDate(NSDate::date());  // 3600, in summer 7200
///
/// Differences are seconds, above 0 east of Greenwich. Immutable. Results are borrowed. Any thread.
class PELVOR_EXPORT NSTimeZone final : public NSObject {
    PELVOR_CLASS(NSTimeZone, NSObject);

  public:
    // Zones

    /// Returns the zone that the environment variable TZ names, else the zone that the computer is set to;
    /// "GMT" if neither is known. The first call finds the zone out.
    static NSTimeZone* systemTimeZone();
    /// Has the next call of `systemTimeZone` find the zone out again. The zone that the program has chosen
    /// as its default stays.
    static void resetSystemTimeZone();
    /// Returns the zone that the program has chosen, else the system's.
    static NSTimeZone* defaultTimeZone();
    /// Chooses the program's zone; null stands for the system's.
    static void setDefaultTimeZone(NSTimeZone* zone);
    /// Returns the zone with a name of the time zone database, such as "Europe/Berlin", or with a fixed
    /// difference such as "GMT+0130". Returns null if there is no such zone.
    static NSTimeZone* timeZoneWithName(NSString* name);
    /// Returns the zone of a well-known abbreviation, such as "CET", "EDT" or "UTC", in either case of the
    /// letters. Where several regions use an abbreviation, the largest of them counts. Returns null for other
    /// abbreviations.
    static NSTimeZone* timeZoneWithAbbreviation(NSString* abbreviation);
    /// Returns a zone with a fixed difference. Raises NSInvalidArgumentException for a difference of a day
    /// and more.
    static NSTimeZone* timeZoneForSecondsFromGMT(NSInteger seconds);
    /// Returns the zone without a difference, "GMT", owned.
    static Retained<NSTimeZone> init();
    /// Returns the names of all zones with rules, in the order of their letters.
    static NSArray* knownTimeZoneNames();

    // What a zone says about itself. A null date stands for now.

    /// Returns "Europe/Berlin", or of a fixed difference "GMT+0130".
    NSString* name() { return _name; }
    NSInteger secondsFromGMT();
    NSInteger secondsFromGMTForDate(NSDate* date);
    /// Returns the abbreviation in English, such as "CET" or in summer "CEST"; where English has none, the
    /// difference, such as "GMT+5:45".
    NSString* abbreviation();
    NSString* abbreviationForDate(NSDate* date);
    bool isDaylightSavingTime();
    bool isDaylightSavingTimeForDate(NSDate* date);
    /// Returns whether both have the same name.
    bool isEqualToTimeZone(NSTimeZone* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// Returns the name.
    NSString* description() override;

    // C++ only

    /// Returns the difference at a moment, in seconds since the reference date.
    NSInteger differenceAt(NSTimeInterval moment);
    /// Returns the difference when the clocks of the zone show `local`, the seconds since they showed the
    /// reference date. A time that clocks show twice is the earlier moment; a time that they leave out
    /// counts on from the time before the change.
    NSInteger differenceAtLocalTime(NSTimeInterval local);

  protected:
    NSTimeZone();
    ~NSTimeZone();

  private:
    static Retained<NSTimeZone> create(NSString* name, std::unique_ptr<TimeZoneRules> rules);
    static Retained<NSTimeZone> createFixed(NSInteger seconds);

    Retained<NSString> _name;
    std::unique_ptr<TimeZoneRules> _rules;
};

}  // namespace pelvor
