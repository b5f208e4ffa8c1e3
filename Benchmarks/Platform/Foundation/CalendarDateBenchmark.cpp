// SPDX-License-Identifier: Apache-2.0
// Writing and reading dates, with ICU's date format and the C library beside.
#include <benchmark/benchmark.h>
#include <unicode/ucal.h>
#include <unicode/udat.h>

#include <cstdlib>
#include <ctime>

#include "Foundation/NSCalendarDate.h"
#include "Foundation/NSTimeZone.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr double kFirst = 1.7e9;  // seconds since 1970
constexpr double kStep = 86461;   // another time of another day

// The seconds of a year, one after the other.
class Moments {
  public:
    double next() { return kFirst + kStep * (_index = (_index + 1) % 365); }

  private:
    int _index = 0;
};

struct ICUFormat {
    explicit ICUFormat(const char16_t* pattern) {
        UErrorCode status = U_ZERO_ERROR;
        format = udat_open(UDAT_PATTERN, UDAT_PATTERN, "en", u"Europe/Berlin", -1, pattern, -1, &status);
    }
    ~ICUFormat() { udat_close(format); }
    UDateFormat* format;
};

void chooseZone() {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(u"Europe/Berlin"_ns));
}

struct Pattern {
    NSString* ours;
    const char16_t* icu;
    const char* c;
};
const Pattern kPatterns[] = {
    {u"%Y-%m-%d %H:%M:%S %z"_ns, u"yyyy-MM-dd HH:mm:ss xx", "%Y-%m-%d %H:%M:%S %z"},
    {u"%A, %d %B %Y, %I:%M %p"_ns, u"EEEE, dd MMMM yyyy, hh:mm a", "%A, %d %B %Y, %I:%M %p"},
};

void write(benchmark::State& state) {
    chooseZone();
    Moments moments;
    for (auto _ : state) {
        AutoreleasePool pool;
        auto date =
            NSCalendarDate::initWithTimeIntervalSinceReferenceDate(moments.next() - NSTimeIntervalSince1970);
        benchmark::DoNotOptimize(date->descriptionWithCalendarFormat(kPatterns[state.range(0)].ours));
    }
}
BENCHMARK(write)->ArgName("pattern")->DenseRange(0, 1);

void icuWrite(benchmark::State& state) {
    ICUFormat format(kPatterns[state.range(0)].icu);
    Moments moments;
    char16_t text[100];
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        benchmark::DoNotOptimize(
            udat_format(format.format, moments.next() * 1000, text, 100, nullptr, &status));
    }
}
BENCHMARK(icuWrite)->ArgName("pattern")->DenseRange(0, 1);

void cWrite(benchmark::State& state) {
    chooseZone();
    Moments moments;
    char text[100];
    for (auto _ : state) {
        const auto moment = static_cast<std::time_t>(moments.next());
        std::tm fields;
        localtime_r(&moment, &fields);
        if (state.range(0) == 0)
            benchmark::DoNotOptimize(std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %z", &fields));
        else
            benchmark::DoNotOptimize(std::strftime(text, sizeof text, "%A, %d %B %Y, %I:%M %p", &fields));
    }
}
BENCHMARK(cWrite)->ArgName("pattern")->DenseRange(0, 1);

NSString* const kTexts[] = {u"2026-03-03 09:05:07 +0100"_ns, u"Tuesday, 03 March 2026, 09:05 AM"_ns};

void read(benchmark::State& state) {
    chooseZone();
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(NSCalendarDate::initWithString_calendarFormat(
            kTexts[state.range(0)], kPatterns[state.range(0)].ours));
    }
}
BENCHMARK(read)->ArgName("pattern")->DenseRange(0, 1);

void icuRead(benchmark::State& state) {
    ICUFormat format(kPatterns[state.range(0)].icu);
    StringUnits text(kTexts[state.range(0)]);
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        benchmark::DoNotOptimize(
            udat_parse(format.format, text.data(), static_cast<int32_t>(text.size()), nullptr, &status));
    }
}
BENCHMARK(icuRead)->ArgName("pattern")->DenseRange(0, 1);

void addMonth(benchmark::State& state) {
    chooseZone();
    Moments moments;
    for (auto _ : state) {
        AutoreleasePool pool;
        auto date =
            NSCalendarDate::initWithTimeIntervalSinceReferenceDate(moments.next() - NSTimeIntervalSince1970);
        benchmark::DoNotOptimize(date->dateByAddingYears_months_days_hours_minutes_seconds(0, 1, 0, 0, 0, 0));
    }
}
BENCHMARK(addMonth);

void icuAddMonth(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    UCalendar* calendar = ucal_open(u"Europe/Berlin", -1, "en", UCAL_GREGORIAN, &status);
    Moments moments;
    for (auto _ : state) {
        ucal_setMillis(calendar, moments.next() * 1000, &status);
        ucal_add(calendar, UCAL_MONTH, 1, &status);
        benchmark::DoNotOptimize(ucal_getMillis(calendar, &status));
    }
    ucal_close(calendar);
}
BENCHMARK(icuAddMonth);

}  // namespace
}  // namespace pelvor

BENCHMARK_MAIN();
