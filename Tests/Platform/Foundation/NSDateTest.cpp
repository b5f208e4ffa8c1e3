// SPDX-License-Identifier: Apache-2.0
// Tests of dates.
#include "Foundation/NSDate.h"

#include "Prelude.h"

namespace {

NSDate* at(NSTimeInterval seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

TEST(NSDate, DescribesTheMomentInUTC) {
    const std::pair<NSDate*, const char*> rows[] = {
        {at(0), "2001-01-01 00:00:00 +0000"},
        {at(-0.5), "2000-12-31 23:59:59 +0000"},
        {at(1.9), "2001-01-01 00:00:01 +0000"},
        {NSDate::dateWithTimeIntervalSince1970(951868799), "2000-02-29 23:59:59 +0000"},
        {NSDate::dateWithTimeIntervalSince1970(-1), "1969-12-31 23:59:59 +0000"},
        {NSDate::distantPast(), "0001-01-01 00:00:00 +0000"},
        {NSDate::distantFuture(), "4001-01-01 00:00:00 +0000"},
        {at(1e300), "(a date out of the calendar)"},
        {at(NAN), "(a date out of the calendar)"},
    };
    for (auto [date, text] : rows) EXPECT_EQ(shown(date), text);
}

TEST(NSDate, ComparesAndCounts) {
    NSDate *early = at(10), *late = at(20.5);
    EXPECT_EQ(shown(early->compare(late), late->compare(early), early->compare(at(10))), "-1 1 0");
    EXPECT_TRUE(late->earlierDate(early) == early && early->laterDate(late) == late &&
                early->earlierDate(at(10)) == early);
    EXPECT_EQ(shown(late->timeIntervalSinceDate(early), early->timeIntervalSince1970() - 978307200),
              "10.5 10");
    NSDate* same = early->addTimeInterval(10.5);
    EXPECT_TRUE(same->isEqual(late) && same->hash() == late->hash());
    EXPECT_FALSE(early->isEqual(late) || early->isEqual(u"10"_ns));
}

TEST(NSDate, NowLiesBetweenTwoReadings) {
    NSDate* before = NSDate::date();
    NSDate* soon = NSDate::dateWithTimeIntervalSinceNow(100);
    NSDate* after = NSDate::date();
    EXPECT_GE(soon->timeIntervalSinceDate(before), 100);
    EXPECT_LE(soon->timeIntervalSinceDate(after), 100);
    EXPECT_LE(before->timeIntervalSinceNow(), 0);
    EXPECT_GT(before->compare(NSDate::dateWithTimeIntervalSince1970(1700000000)), 0);
}

}  // namespace
