// SPDX-License-Identifier: Apache-2.0
// Tests of time zones.
#include "Foundation/NSTimeZone.h"

#include "Foundation/ClockScope.h"
#include "Platform/Foundation/BundleTestSupport.h"

namespace {

NSTimeZone* zoneNamed(const std::string& name) {
    return NSTimeZone::timeZoneWithName(NSString::ofUTF8(name));
}

const NSTimeInterval kWinter = 0, kSummer = 180 * 86400;

TEST(NSTimeZone, IsFoundByNameAndByAbbreviation) {
    expectAll(
        {"Europe/Berlin -> Europe/Berlin 3600 7200", "America/New_York -> America/New_York -18000 -14400",
         "Asia/Kolkata -> Asia/Kolkata 19800 19800", "UTC -> UTC 0 0", "GMT+0130 -> GMT+0130 5400 5400",
         "GMT-1:30 -> GMT-0130 -5400 -5400", "GMT+5 -> GMT+0500 18000 18000",
         "GMT-00:00:07 -> GMT-000007 -7 -7", "GMT+0000 -> GMT 0 0", "Europe/Nowhere -> ", "GMT+24 -> ",
         "GMT+0160 -> ", " -> "},
        [](const std::string& name) {
            NSTimeZone* zone = zoneNamed(name);
            return zone ? shown(zone, zone->differenceAt(kWinter), zone->differenceAt(kSummer)) : "";
        });
    expectAll({"CET -> Europe/Paris", "edt -> America/New_York", "Z -> UTC", "QQQ -> (null)"},
              [](const std::string& text) {
                  NSTimeZone* zone = NSTimeZone::timeZoneWithAbbreviation(NSString::ofUTF8(text));
                  return shown(zone ? zone->name() : nullptr);
              });
    EXPECT_FALSE(NSTimeZone::timeZoneWithName(nullptr) || NSTimeZone::timeZoneWithAbbreviation(nullptr));
    EXPECT_TRUE(NSTimeZone::knownTimeZoneNames()->containsObject(u"Europe/Berlin"_ns));
    EXPECT_TRUE(zoneNamed("UTC")->isEqual(zoneNamed("UTC")) &&
                !zoneNamed("UTC")->isEqual(zoneNamed("Asia/Tokyo")) && !zoneNamed("UTC")->isEqual(u"UTC"_ns));
    EXPECT_EQ(reasonOf([] { NSTimeZone::timeZoneForSecondsFromGMT(-86400); }),
              "timeZoneForSecondsFromGMT: the difference (-86400) is a day or more");
}

TEST(NSTimeZone, AbbreviatesItsNameForSummerAndWinter) {
    expectAll(
        {"Europe/Berlin -> CET 0 CEST 1", "America/New_York -> EST 0 EDT 1", "Europe/London -> GMT 0 BST 1",
         "Australia/Sydney -> AEDT 1 AEST 0", "GMT-0300 -> GMT-0300 0 GMT-0300 0"},
        [](const std::string& name) {
            NSTimeZone* zone = zoneNamed(name);
            NSDate* winter = NSDate::dateWithTimeIntervalSinceReferenceDate(kWinter);
            NSDate* summer = NSDate::dateWithTimeIntervalSinceReferenceDate(kSummer);
            return shown(zone->abbreviationForDate(winter), zone->isDaylightSavingTimeForDate(winter),
                         zone->abbreviationForDate(summer), zone->isDaylightSavingTimeForDate(summer));
        });
}

TEST(NSTimeZone, IsTheSystemsUntilTheProgramChooses) {
    {
        EnvironmentScope zone("TZ", "Asia/Tokyo");
        NSTimeZone::resetSystemTimeZone();
        EXPECT_EQ(shown(NSTimeZone::defaultTimeZone()), "Asia/Tokyo");
        NSTimeZone::setDefaultTimeZone(zoneNamed("Europe/Oslo"));
        EXPECT_EQ(shown(NSTimeZone::defaultTimeZone(), NSTimeZone::systemTimeZone()),
                  "Europe/Oslo Asia/Tokyo");
    }
    NSTimeZone::setDefaultTimeZone(nullptr);
    NSTimeZone::resetSystemTimeZone();
    ClockScope clock(kSummer);
    NSTimeZone* berlin = zoneNamed("Europe/Berlin");
    EXPECT_EQ(shown(berlin->secondsFromGMT(), berlin->abbreviation(), berlin->isDaylightSavingTime()),
              "7200 CEST 1");
}

TEST(NSTimeZone, MayBeAskedByManyThreads) {
    NSTimeZone* zone = zoneNamed("Europe/Berlin");
    onThreads(4, [zone](int) {
        for (int day = 0; day < 2000; ++day) {
            const NSTimeInterval moment = day * 86400.0;
            ASSERT_EQ(zone->differenceAtLocalTime(moment + zone->differenceAt(moment)),
                      zone->differenceAt(moment));
            ASSERT_TRUE(NSTimeZone::systemTimeZone() && zone->abbreviation()->length());
        }
    });
}

}  // namespace
