// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSTimeZone.h"

#include <unicode/basictz.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string>

#include "Foundation/Dates/OffsetText.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTimeZone, foundationLibrary) {
    methods.classLevel<"systemTimeZone", &NSTimeZone::systemTimeZone>();
    methods.classLevel<"resetSystemTimeZone", &NSTimeZone::resetSystemTimeZone>();
    methods.classLevel<"defaultTimeZone", &NSTimeZone::defaultTimeZone>();
    methods.classLevel<"setDefaultTimeZone:", &NSTimeZone::setDefaultTimeZone>();
    methods.classLevel<"timeZoneWithName:", &NSTimeZone::timeZoneWithName>();
    methods.classLevel<"timeZoneWithAbbreviation:", &NSTimeZone::timeZoneWithAbbreviation>();
    methods.classLevel<"timeZoneForSecondsFromGMT:", &NSTimeZone::timeZoneForSecondsFromGMT>();
    methods.creator<"init", &NSTimeZone::init>();
    methods.creatorAs<"new", &NSTimeZone::init>();
    methods.classLevel<"knownTimeZoneNames", &NSTimeZone::knownTimeZoneNames>();
    methods.instance<"name", &NSTimeZone::name>();
    methods.instance<"secondsFromGMT", &NSTimeZone::secondsFromGMT>();
    methods.instance<"secondsFromGMTForDate:", &NSTimeZone::secondsFromGMTForDate>();
    methods.instance<"abbreviation", &NSTimeZone::abbreviation>();
    methods.instance<"abbreviationForDate:", &NSTimeZone::abbreviationForDate>();
    methods.instance<"isDaylightSavingTime", &NSTimeZone::isDaylightSavingTime>();
    methods.instance<"isDaylightSavingTimeForDate:", &NSTimeZone::isDaylightSavingTimeForDate>();
    methods.instance<"isEqualToTimeZone:", &NSTimeZone::isEqualToTimeZone>();
}

// A zone of ICU, which any thread may ask, and its two abbreviations once somebody asked for one.
struct TimeZoneRules {
    std::unique_ptr<icu::TimeZone> zone;
    std::once_flag abbreviationsAreKnown;
    std::array<Retained<NSString>, 2> abbreviations;  // of standard time and of summer time
};

namespace {

// Beyond this many seconds around the reference date, only the standard difference counts: about 28,500
// years, as far as ICU's rules can be trusted.
constexpr NSTimeInterval kReachOfRules = 9.0e11;

struct ChosenZones {
    std::mutex mutex;
    Retained<NSTimeZone> system;
    Retained<NSTimeZone> chosen;
};

ChosenZones& chosenZones() {
    static auto* const zones = new ChosenZones;  // dates may be described until the very end
    return *zones;
}

// Abbreviations in capital letters, and the zones that they stand for.
struct Abbreviation {
    std::u16string_view text;
    NSString* zone;
};
constexpr Abbreviation kAbbreviations[] = {
    {u"UTC", u"UTC"_ns},
    {u"GMT", u"GMT"_ns},
    {u"Z", u"UTC"_ns},
    {u"WET", u"Europe/Lisbon"_ns},
    {u"WEST", u"Europe/Lisbon"_ns},
    {u"BST", u"Europe/London"_ns},
    {u"CET", u"Europe/Paris"_ns},
    {u"CEST", u"Europe/Paris"_ns},
    {u"MEZ", u"Europe/Berlin"_ns},
    {u"MESZ", u"Europe/Berlin"_ns},
    {u"EET", u"Europe/Athens"_ns},
    {u"EEST", u"Europe/Athens"_ns},
    {u"MSK", u"Europe/Moscow"_ns},
    {u"SAST", u"Africa/Johannesburg"_ns},
    {u"IST", u"Asia/Kolkata"_ns},
    {u"HKT", u"Asia/Hong_Kong"_ns},
    {u"SGT", u"Asia/Singapore"_ns},
    {u"JST", u"Asia/Tokyo"_ns},
    {u"KST", u"Asia/Seoul"_ns},
    {u"AEST", u"Australia/Sydney"_ns},
    {u"AEDT", u"Australia/Sydney"_ns},
    {u"NZST", u"Pacific/Auckland"_ns},
    {u"NZDT", u"Pacific/Auckland"_ns},
    {u"BRT", u"America/Sao_Paulo"_ns},
    {u"AST", u"America/Halifax"_ns},
    {u"ADT", u"America/Halifax"_ns},
    {u"EST", u"America/New_York"_ns},
    {u"EDT", u"America/New_York"_ns},
    {u"CST", u"America/Chicago"_ns},
    {u"CDT", u"America/Chicago"_ns},
    {u"MST", u"America/Denver"_ns},
    {u"MDT", u"America/Denver"_ns},
    {u"PST", u"America/Los_Angeles"_ns},
    {u"PDT", u"America/Los_Angeles"_ns},
    {u"AKST", u"America/Anchorage"_ns},
    {u"AKDT", u"America/Anchorage"_ns},
    {u"HST", u"Pacific/Honolulu"_ns},
};

icu::UnicodeString unitsOf(NSString* string) {
    StringUnits units(string);
    return {units.data(), static_cast<int32_t>(units.size())};
}

NSString* stringOf(const icu::UnicodeString& units) {
    return NSString::of({units.getBuffer(), static_cast<std::size_t>(units.length())});
}

std::unique_ptr<icu::TimeZone> knownZone(std::unique_ptr<icu::TimeZone> zone) {
    if (zone && *zone == icu::TimeZone::getUnknown()) zone = nullptr;
    return zone;
}

// English has abbreviations for the zones of the countries that speak it, and each country knows others.
NSString* abbreviationOf(const icu::TimeZone& zone, bool isSummer) {
    icu::UnicodeString text;
    for (const char* country : {"US", "GB", "AU", "IN", "ZA"}) {
        zone.getDisplayName(isSummer, icu::TimeZone::SHORT, icu::Locale("en", country), text);
        if (!text.startsWith(u"GMT", 3) || text.length() == 3) return stringOf(text);
    }
    return stringOf(text);
}

UDate icuMoment(NSTimeInterval moment) { return (moment + NSTimeIntervalSince1970) * 1000; }

}  // namespace

// MARK: Zones

NSTimeZone::NSTimeZone() = default;

NSTimeZone::~NSTimeZone() = default;

Retained<NSTimeZone> NSTimeZone::create(NSString* name, std::unique_ptr<TimeZoneRules> rules) {
    auto zone = make<NSTimeZone>();
    zone->_name = name->copy();
    zone->_rules = std::move(rules);
    return zone;
}

Retained<NSTimeZone> NSTimeZone::createFixed(NSInteger seconds) {
    auto rules = std::make_unique<TimeZoneRules>();
    NSString* name = NSString::of(seconds == 0 ? u"GMT" : u"GMT" + offsetText(seconds));
    rules->zone = std::make_unique<icu::SimpleTimeZone>(seconds * 1000, unitsOf(name));
    std::call_once(rules->abbreviationsAreKnown, [&] {
        rules->abbreviations = {name->copy(), name->copy()};
    });
    return create(name, std::move(rules));
}

Retained<NSTimeZone> NSTimeZone::init() { return createFixed(0); }

NSTimeZone* NSTimeZone::timeZoneForSecondsFromGMT(NSInteger seconds) {
    if (std::abs(static_cast<std::int64_t>(seconds)) >= 86400)
        raiseBadArgument("timeZoneForSecondsFromGMT:",
                         "the difference (" + std::to_string(seconds) + ") is a day or more");
    return createFixed(seconds).autorelease();
}

NSTimeZone* NSTimeZone::timeZoneWithName(NSString* name) {
    if (!name) return nullptr;
    StringUnits units(name);
    if (units.view().starts_with(u"GMT") && units.size() > 3)
        if (auto seconds = offsetOfText(units.view().substr(3))) return createFixed(*seconds).autorelease();
    auto rules = std::make_unique<TimeZoneRules>();
    rules->zone = knownZone(std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(unitsOf(name))));
    return rules->zone ? create(name, std::move(rules)).autorelease() : nullptr;
}

NSTimeZone* NSTimeZone::timeZoneWithAbbreviation(NSString* abbreviation) {
    if (!abbreviation) return nullptr;
    StringUnits capitals(abbreviation->uppercaseString());
    for (const auto& [text, zone] : kAbbreviations)
        if (text == capitals.view()) return timeZoneWithName(zone);
    return nullptr;
}

NSTimeZone* NSTimeZone::systemTimeZone() {
    ChosenZones& zones = chosenZones();
    std::lock_guard lock(zones.mutex);
    if (!zones.system) {
        auto rules = std::make_unique<TimeZoneRules>();
        rules->zone = knownZone(std::unique_ptr<icu::TimeZone>(icu::TimeZone::detectHostTimeZone()));
        icu::UnicodeString name;
        if (rules->zone) rules->zone->getID(name);
        zones.system = name.isEmpty() ? createFixed(0) : create(stringOf(name), std::move(rules));
    }
    return Retained<NSTimeZone>(zones.system).autorelease();
}

void NSTimeZone::resetSystemTimeZone() {
    ChosenZones& zones = chosenZones();
    std::lock_guard lock(zones.mutex);
    zones.system = nullptr;
}

NSTimeZone* NSTimeZone::defaultTimeZone() {
    {
        ChosenZones& zones = chosenZones();
        std::lock_guard lock(zones.mutex);
        if (zones.chosen) return Retained<NSTimeZone>(zones.chosen).autorelease();
    }
    return systemTimeZone();
}

void NSTimeZone::setDefaultTimeZone(NSTimeZone* zone) {
    ChosenZones& zones = chosenZones();
    std::lock_guard lock(zones.mutex);
    zones.chosen.set(zone);
}

NSArray* NSTimeZone::knownTimeZoneNames() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::StringEnumeration> names(
        icu::TimeZone::createTimeZoneIDEnumeration(UCAL_ZONE_TYPE_ANY, nullptr, nullptr, status));
    auto* known = NSMutableArray::array();
    while (const icu::UnicodeString* name = names && U_SUCCESS(status) ? names->snext(status) : nullptr)
        if (*name != u"Etc/Unknown") known->addObject(stringOf(*name));
    return known->sortedArrayUsingSelector("compare:"_sel);
}

// MARK: Differences

NSInteger NSTimeZone::differenceAt(NSTimeInterval moment) {
    int32_t standard = 0, summer = 0;
    UErrorCode status = U_ZERO_ERROR;
    if (!(std::fabs(moment) < kReachOfRules)) return _rules->zone->getRawOffset() / 1000;
    _rules->zone->getOffset(icuMoment(moment), false, standard, summer, status);
    return (standard + summer) / 1000;
}

NSInteger NSTimeZone::differenceAtLocalTime(NSTimeInterval local) {
    int32_t standard = 0, summer = 0;
    UErrorCode status = U_ZERO_ERROR;
    auto* rules = dynamic_cast<icu::BasicTimeZone*>(_rules->zone.get());
    if (!rules || !(std::fabs(local) < kReachOfRules)) return _rules->zone->getRawOffset() / 1000;
    rules->getOffsetFromLocal(icuMoment(local), UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, standard, summer,
                              status);
    return (standard + summer) / 1000;
}

NSInteger NSTimeZone::secondsFromGMT() { return secondsFromGMTForDate(nullptr); }

NSInteger NSTimeZone::secondsFromGMTForDate(NSDate* date) {
    return differenceAt(date ? date->timeIntervalSinceReferenceDate()
                             : NSDate::currentTimeIntervalSinceReferenceDate());
}

bool NSTimeZone::isDaylightSavingTime() { return isDaylightSavingTimeForDate(nullptr); }

bool NSTimeZone::isDaylightSavingTimeForDate(NSDate* date) {
    int32_t standard = 0, summer = 0;
    UErrorCode status = U_ZERO_ERROR;
    const NSTimeInterval moment =
        date ? date->timeIntervalSinceReferenceDate() : NSDate::currentTimeIntervalSinceReferenceDate();
    if (!(std::fabs(moment) < kReachOfRules)) return false;
    _rules->zone->getOffset(icuMoment(moment), false, standard, summer, status);
    return summer != 0;
}

NSString* NSTimeZone::abbreviation() { return abbreviationForDate(nullptr); }

NSString* NSTimeZone::abbreviationForDate(NSDate* date) {
    std::call_once(_rules->abbreviationsAreKnown, [this] {
        for (bool isSummer : {false, true})
            _rules->abbreviations[isSummer].set(abbreviationOf(*_rules->zone, isSummer));
    });
    return _rules->abbreviations[isDaylightSavingTimeForDate(date)];
}

// MARK: Equality and text

bool NSTimeZone::isEqualToTimeZone(NSTimeZone* other) {
    return this == other || (other && _name->isEqualToString(other->_name));
}

bool NSTimeZone::isEqual(id other) { return isEqualToTimeZone(cast<NSTimeZone>(other)); }

std::uintptr_t NSTimeZone::hash() { return _name->hash(); }

NSString* NSTimeZone::description() { return _name; }

}  // namespace pelvor
