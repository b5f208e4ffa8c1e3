// SPDX-License-Identifier: Apache-2.0
// Tests of calendar dates: formats written and read, fields, and reckoning.
#include "Foundation/NSCalendarDate.h"

#include <time.h>

#include <iomanip>

#include "Foundation/ClockScope.h"
#include "Foundation/NSDate-CalendarDate.h"
#include "Foundation/NSTimeZone.h"
#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

using Date = NSCalendarDate;

NSString* text(const std::string& utf8) { return NSString::ofUTF8(utf8); }

// In Berlin, at noon of the 3rd of March 2026, for programs that ask for now.
struct CalendarDate : ::testing::Test {
    CalendarDate() { NSTimeZone::setDefaultTimeZone(zone); }
    ~CalendarDate() { NSTimeZone::setDefaultTimeZone(nullptr); }

    NSTimeZone* zone = NSTimeZone::timeZoneWithName(u"Europe/Berlin"_ns);
    ClockScope clock{794228400};
};

Date* dateOf(const std::string& utf8) { return Date::initWithString(text(utf8)).autorelease(); }

Date* berlin(const std::string& utf8) {
    return Date::dateWithString_calendarFormat(text(utf8), u"%Y-%m-%d %H:%M:%S"_ns);
}

NSDictionary* german() {
    return cast<NSDictionary>(listOf(R"({
        NSMonthNameArray = (Januar, Februar, "Ma\U0308rz", April, Mai, Juni);
        NSShortMonthNameArray = (Jan, Feb, "M\U00e4r");
        NSWeekDayNameArray = (Sonntag, Montag, Dienstag);
        NSAMPMDesignation = (vorm, nachm);
        NSTimeDateFormatString = "%A, %x %X %c";
        NSDateFormatString = "%e. %B %Y %x";
        NSTimeFormatString = ();
    })"));
}

TEST_F(CalendarDate, WritesEveryConversion) {
    Date* date = berlin("2026-03-03 09:05:07");
    date = Date::dateWithTimeIntervalSinceReferenceDate(date->timeIntervalSinceReferenceDate() + 0.042);
    expectAll({"%Y %y %m %d %e %j -> 2026 26 03 03 3 062", "%B %b %A %a %w -> March Mar Tuesday Tue 2",
               "%H %I %p %M %S %F -> 09 09 AM 05 07 042", "%z %Z -> +0100 CET",
               "%c | %x | %X -> Tue Mar 03 09:05:07 2026 | 03/03/26 | 09:05:07",
               "%1d.%1m. %1H:%1M %1j %1F %1y -> 3.3. 9:5 62 42 26", "100%% %Q %1Q % -> 100% %Q %1Q %",
               "%1 -> %1", " -> "},
              [&](const std::string& format) { return date->descriptionWithCalendarFormat(text(format)); });
    expectAll({"%A %a %B %p -> Dienstag Tue März vorm", "%c -> Dienstag, 3. März 2026 %x 09:05:07 %c",
               "%X -> 09:05:07"},
              [&](const std::string& format) {
                  return date->descriptionWithCalendarFormat_locale(text(format), german())
                      ->precomposedStringWithCanonicalMapping();
              });
    EXPECT_EQ(shown(date), "2026-03-03 09:05:07 +0100");
    date->setCalendarFormat(u"%B"_ns);
    date->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(-37800));
    EXPECT_EQ(shown(date, date->copy(), date->descriptionWithLocale(german())->length(),
                    date->descriptionWithCalendarFormat(u"%d %H %z"_ns)),
              "March March 5 02 21 -1030");
    EXPECT_EQ(shown(descriptionWithCalendarFormat_timeZone_locale(date, u"%H %Z"_ns, zone, nullptr),
                    dateWithCalendarFormat_timeZone(date, nullptr, nullptr)),
              "09 CET 2026-03-03 09:05:07 +0100");
}

TEST_F(CalendarDate, CutsToTheMillisecondAndTellsNoTimeBeyondTheCalendar) {
    zone = NSTimeZone::timeZoneWithName(u"UTC"_ns);
    NSTimeZone::setDefaultTimeZone(zone);
    const std::pair<NSTimeInterval, const char*> rows[] = {
        {0.001, "2001-01-01 00:00:00.001"},
        {794228400.123, "2026-03-03 11:00:00.123"},
        {-0.0005, "2000-12-31 23:59:59.999"},
        {59.9999999, "2001-01-01 00:01:00.000"},
        {-63113904000.0, "0001-01-01 00:00:00.000"},
        {-63113904001.0, "0000-12-31 23:59:59.000"},
        {-63200000000.0 - 400.0 * 146097 * 86400, "-160002-04-10 12:26:40.000"},
        {1e300, "(a date out of the calendar)"},
        {-HUGE_VAL, "(a date out of the calendar)"},
        {NAN, "(a date out of the calendar)"},
    };
    for (auto [seconds, written] : rows)
        EXPECT_EQ(shown(Date::dateWithTimeIntervalSinceReferenceDate(seconds)->descriptionWithCalendarFormat(
                      u"%Y-%m-%d %H:%M:%S.%F"_ns)),
                  written);
    Date* beyond = Date::dateWithTimeIntervalSinceReferenceDate(NAN);
    EXPECT_EQ(shown(beyond->yearOfCommonEra(), beyond->dayOfWeek(), beyond->dayOfCommonEra()), "0 0 0");
    EXPECT_EQ(shown(beyond->dateByAddingYears_months_days_hours_minutes_seconds(1, 1, 1, 1, 1, 1)),
              "(a date out of the calendar)");
}

TEST_F(CalendarDate, AgreesWithTheCLibraryInAllZones) {
    std::mt19937 random(12);
    for (const char* name : {"Europe/Berlin", "America/New_York", "Asia/Kolkata", "Australia/Lord_Howe"}) {
        EnvironmentScope environment("TZ", name);
        tzset();
        NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(text(name)));
        for (int i = 0; i < 500; ++i) {
            const time_t moment = std::uniform_int_distribution<time_t>(31536000, 2145916800)(random);
            tm fields;
            localtime_r(&moment, &fields);
            Date* date = Date::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(moment) -
                                                                      NSTimeIntervalSince1970);
            ASSERT_EQ(shown(date->descriptionWithCalendarFormat(
                          u"%a %A %b %B %d %H %I %j %m %M %p %S %w %x %X %y %Y %z"_ns)),
                      shown(std::put_time(&fields, "%a %A %b %B %d %H %I %j %m %M %p %S %w %x %X %y %Y %z")));
            ASSERT_EQ(
                shown(date->yearOfCommonEra(), date->monthOfYear(), date->dayOfMonth(), date->dayOfWeek(),
                      date->dayOfYear(), date->hourOfDay(), date->minuteOfHour(), date->secondOfMinute()),
                shown(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_wday,
                      fields.tm_yday + 1, fields.tm_hour, fields.tm_min, fields.tm_sec));
            ASSERT_TRUE(date->isEqual(dateOf(shown(date))));
        }
    }
    tzset();
}

// The format and the text, with a bar between.
Date* read(const std::string& row) {
    const std::size_t bar = row.find('|');
    return Date::dateWithString_calendarFormat(text(row.substr(bar + 1)), text(row.substr(0, bar)));
}

TEST_F(CalendarDate, ReadsWhatItsFormatSays) {
    expectAll({"%Y-%m-%d %H:%M:%S %z|2026-03-03 09:05:07 -0300 -> 2026-03-03 09:05:07 -0300",
               "%Y%m%dT%H%M%S|20260303T090507 -> 2026-03-03 09:05:07 +0100",
               "%d. %B %Y|  8. march 2026  -> 2026-03-08 00:00:00 +0100",
               "%A, %e %b %y|fri, 08 MARCH 69 -> 1969-03-08 00:00:00 +0100",
               "%d/%m/%y|8/3/68 -> 2068-03-08 00:00:00 +0100",
               "%Y|12026 -> 12026-01-01 00:00:00 +0100",
               "%Y-%m|-44-03 -> -0044-03-01 00:00:00 +0053",
               "%I:%M %p|12:30 am -> 2026-03-03 00:30:00 +0100",
               "%I:%M %p|12:30 PM -> 2026-03-03 12:30:00 +0100",
               "%I|7 -> 2026-03-03 07:00:00 +0100",
               "%d|31 -> 2026-03-31 00:00:00 +0200",
               "%m|12 -> 2026-12-01 00:00:00 +0100",
               "%j %Y|366 2024 -> 2024-12-31 00:00:00 +0100",
               "%H %Z|10 EST -> 2026-03-03 10:00:00 -0500",
               "%H %Z|10 America/Los_Angeles -> 2026-03-03 10:00:00 -0800",
               "%H %Z|10 GMT+5:45 -> 2026-03-03 10:00:00 +0545",
               "%H %z %Z|10 +0300 UTC -> 2026-03-03 07:00:00 +0000",
               "%H%z|10Z -> 2026-03-03 10:00:00 +0000",
               "%c|Tue Mar  3 09:05:07 2026 -> 2026-03-03 09:05:07 +0100",
               "%% %Q|% %Q -> 2026-03-03 00:00:00 +0100",
               "%w %H|6 1 -> 2026-03-03 01:00:00 +0100",
               "%Y-%m-%d %H:%M|2026-03-29 02:30 -> 2026-03-29 03:30:00 +0200",
               "%Y-%m-%d %H:%M|2026-10-25 02:30 -> 2026-10-25 02:30:00 +0200",
               "%S|60 -> 2026-03-03 00:01:00 +0100"},
              [](const std::string& row) {
                  Date* date = read(row);
                  return date ? shown(date->descriptionWithCalendarFormat(u"%Y-%m-%d %H:%M:%S %z"_ns)) : "";
              });
    Date* spring = Date::dateWithString_calendarFormat_locale(u"3. m\u00E4r 2026 nachm 1"_ns,
                                                              u"%e. %B %Y %p %I"_ns, german());
    ASSERT_TRUE(spring);
    EXPECT_EQ(shown(spring->hourOfDay(), spring->monthOfYear(), spring->calendarFormat()),
              "13 3 %e. %B %Y %p %I");
    EXPECT_EQ(Date::dateWithString_calendarFormat(u"7.25"_ns, u"%S.%F"_ns)->timeIntervalSinceReferenceDate(),
              berlin("2026-03-03 00:00:00")->timeIntervalSinceReferenceDate() + 7.025);
}

TEST_F(CalendarDate, RefusesOtherTextsAndTimesThatDoNotExist) {
    std::istringstream rows(
        "%Y-%m-%d|2026-02-29,%Y-%m-%d|2026-13-01,%Y-%m-%d|2026-00-01,%d|0,%d|32,%H|24,%M|60,%I|0,"
        "%j %Y|366 2026,%Y|,%Y|x,%Y|2026 x,%H:%M|10,%H:%M|10;30,%b|Foo,%p|x,%z|+,%z|+2400,%z|0100,"
        "%Z|Nowhere,%Z|,%w|7,%%|x,%Q|Q");
    for (std::string row; std::getline(rows, row, ',');) EXPECT_FALSE(read(row)) << row;
}

TEST_F(CalendarDate, IsMadeOfItsParts) {
    auto made = [&](NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour, NSUInteger minute,
                    NSUInteger second) {
        return Date::dateWithYear_month_day_hour_minute_second_timeZone(year, month, day, hour, minute,
                                                                        second, zone);
    };
    EXPECT_EQ(shown(made(2024, 2, 29, 23, 59, 59)), "2024-02-29 23:59:59 +0100");
    EXPECT_EQ(made(1, 1, 1, 0, 0, 0)->dayOfCommonEra(), 1);
    EXPECT_EQ(made(2026, 3, 3, 0, 0, 0)->dayOfCommonEra(), 739678);
    EXPECT_THAT(RAISED(made(2026, 2, 29, 0, 0, 0)),
                HasSubstr("the day (29) is not from 1 to 28, the last day of the month"));
    EXPECT_THAT(RAISED(made(2026, 13, 1, 0, 0, 0)), HasSubstr("the month (13) is not from 1 to 12"));
    EXPECT_THAT(RAISED(made(2026, 1, 1, 24, 0, 0)), HasSubstr("the hour (24) is not below 24"));
    Date* now = Date::calendarDate();
    EXPECT_EQ(shown(now, send<Object*>(Date::classObject(), "date"_sel)->isEqual(now)),
              "2026-03-03 12:00:00 +0100 1");
}

TEST_F(CalendarDate, MovesOnTheCalendarAtTheSameTimeOfTheClock) {
    expectAll({"2026-01-31 10:00:00|0 1 0 0 0 0 -> 2026-02-28 10:00:00 +0100",
               "2024-02-29 10:00:00|1 0 0 0 0 0 -> 2025-02-28 10:00:00 +0100",
               "2026-03-28 02:30:00|0 0 1 0 0 0 -> 2026-03-29 03:30:00 +0200",
               "2026-03-28 12:00:00|0 0 1 0 0 0 -> 2026-03-29 12:00:00 +0200",
               "2026-03-28 12:00:00|0 0 0 24 0 0 -> 2026-03-29 13:00:00 +0200",
               "2026-03-03 12:00:00|-1 -14 -3 -1 -1 -1 -> 2023-12-31 10:58:59 +0100",
               "2026-03-03 12:00:00|-2026 -3 0 0 0 0 -> -0001-12-03 12:00:00 +0053"},
              [](const std::string& row) {
                  std::istringstream numbers(row.substr(20));
                  NSInteger n[6];
                  for (NSInteger& number : n) numbers >> number;
                  return berlin(row.substr(0, 19))
                      ->dateByAddingYears_months_days_hours_minutes_seconds(n[0], n[1], n[2], n[3], n[4],
                                                                            n[5])
                      ->descriptionWithCalendarFormat(u"%Y-%m-%d %H:%M:%S %z"_ns);
              });
}

// The distance between two dates, in the units that are asked for, in whole months and so on.
std::string distance(Date* to, NSDate* from, const char* units = "ymdHMS") {
    NSInteger counts[6];
    NSInteger* pointers[6];
    for (int i = 0; i < 6; ++i) pointers[i] = std::strchr(units, "ymdHMS"[i]) ? &counts[i] : nullptr;
    to->years_months_days_hours_minutes_seconds_sinceDate(pointers[0], pointers[1], pointers[2], pointers[3],
                                                          pointers[4], pointers[5], from);
    std::string result;
    for (NSInteger* pointer : pointers) result += pointer ? shown(*pointer) + " " : "- ";
    return result;
}

TEST_F(CalendarDate, CountsTheTimeSinceAnotherDate) {
    Date *from = berlin("2024-02-29 10:00:00"), *to = berlin("2026-03-03 09:05:07");
    const std::pair<const char*, const char*> rows[] = {
        {"ymdHMS", "2 0 2 23 5 7 "}, {"mdHMS", "- 24 2 23 5 7 "}, {"yd", "2 - 2 - - - "},
        {"dHMS", "- - 732 23 5 7 "}, {"HM", "- - - 17591 5 - "},  {"S", "- - - - - 63327907 "},
        {"y", "2 - - - - - "},
    };
    for (auto [units, counts] : rows) EXPECT_EQ(distance(to, from, units), counts) << units;
    EXPECT_EQ(distance(from, to), "-2 0 -2 -23 -5 -7 ");
    EXPECT_EQ(distance(to, to), "0 0 0 0 0 0 ");
    EXPECT_EQ(distance(Date::dateWithTimeIntervalSinceReferenceDate(1e15), to, "S"), "- - - - - 2147483647 ");
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        auto moment = [&] {
            return Date::dateWithTimeIntervalSinceReferenceDate(
                std::uniform_int_distribution<int>(-2'000'000'000, 2'000'000'000)(random));
        };
        Date *first = moment(), *last = moment();
        std::istringstream counts(distance(last, first));
        NSInteger n[6];
        for (NSInteger& number : n) counts >> number;
        ASSERT_EQ(shown(first->dateByAddingYears_months_days_hours_minutes_seconds(n[0], n[1], n[2], n[3],
                                                                                   n[4], n[5])),
                  shown(last))
            << shown(first);
    }
}

}  // namespace
