// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "Foundation/NSNumber.h"

namespace pelvor {
namespace {

constexpr std::int64_t kSecondsADay = 86400;
constexpr std::int64_t kYearLimit = 999'999'999;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    std::size_t first = text.find_first_not_of(kSpace);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Takes a sign off the front. Returns whether it was a minus.
bool takeSign(std::string_view& text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    bool isNegative = text[0] == '-';
    text.remove_prefix(1);
    return isNegative;
}

template <class T>
bool parseWhole(std::string_view text, T& value, int base) {
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size();
}

// Days since 1970-01-01 in the calendar that dates are told in, back and forth: years begin in March, so that
// the leap day is the last of its year, and 400 years are 146,097 days.
constexpr std::int64_t daysFromDate(std::int64_t year, unsigned month, unsigned day) {
    year -= month <= 2;
    std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    auto yearOfEra = static_cast<unsigned>(year - era * 400);
    unsigned dayOfYear = (153 * (month + (month > 2 ? -3u : 9u)) + 2) / 5 + day - 1;
    unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

struct CalendarDate {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

CalendarDate dateFromDays(std::int64_t days) {
    days += 719468;
    std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2), month,
            dayOfYear - (153 * shiftedMonth + 2) / 5 + 1};
}

constexpr std::int64_t kReferenceDay = daysFromDate(2001, 1, 1);

unsigned daysInMonth(std::int64_t year, unsigned month) {
    constexpr unsigned char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return kDays[month - 1] + (month == 2 && isLeap);
}

// Reads "-MM-DDThh:mm:ssZ", in which an upper-case letter or mark stands for itself.
bool parseFields(std::string_view text, unsigned (&fields)[5]) {
    constexpr std::string_view kForm = "-00-00T00:00:00Z";
    if (text.size() != kForm.size()) return false;
    std::size_t field = 0;
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        if (kForm[i] != '0') {
            if (text[i] != kForm[i]) return false;
            continue;
        }
        if (!parseWhole(text.substr(i, 2), fields[field++], 10)) return false;
        ++i;
    }
    return true;
}

}  // namespace

PropertyListInteger propertyListInteger(NSNumber* number) {
    char type = number->objCType()[0];
    if (type != 'Q' && type != 'L') return {static_cast<std::uint64_t>(number->longLongValue()), false};
    std::uint64_t bits = number->unsignedLongLongValue();
    return {bits, bits >> 63 != 0};
}

std::optional<PropertyListInteger> parsePropertyListInteger(std::string_view text) {
    text = trimmed(text);
    bool isNegative = takeSign(text);
    bool isHex = text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
    if (isHex) text.remove_prefix(2);
    PropertyListInteger value;
    if (!parseWhole(text, value.bits, isHex ? 16 : 10)) return std::nullopt;
    constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
    if (isNegative) {
        if (value.bits > kSignBit) return std::nullopt;
        value.bits = 0 - value.bits;
    } else {
        value.isUnsigned = value.bits >= kSignBit;
    }
    return value;
}

std::optional<double> parsePropertyListReal(std::string_view text) {
    text = trimmed(text);
    bool isNegative = takeSign(text);
    if (text.empty() || text[0] == '-') return std::nullopt;
    double value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return isNegative ? -value : value;
}

std::optional<double> parsePropertyListDate(std::string_view text) {
    text = trimmed(text);
    bool isNegative = !text.empty() && text[0] == '-';
    if (isNegative) text.remove_prefix(1);
    std::size_t yearDigits = text.find('-');
    if (yearDigits == text.npos || yearDigits < 4 || yearDigits > 9) return std::nullopt;
    std::uint32_t years = 0;
    unsigned fields[5];  // month, day, hour, minute, second
    if (!parseWhole(text.substr(0, yearDigits), years, 10)) return std::nullopt;
    if (!parseFields(text.substr(yearDigits), fields)) return std::nullopt;
    auto [month, day, hour, minute, second] = fields;
    std::int64_t year = isNegative ? -std::int64_t{years} : std::int64_t{years};
    if (month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month)) return std::nullopt;
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    std::int64_t seconds = (daysFromDate(year, month, day) - kReferenceDay) * kSecondsADay;
    return static_cast<double>(seconds + hour * 3600 + minute * 60 + second);
}

void appendPropertyListInteger(GrowingBytes& bytes, PropertyListInteger value) {
    char* place = bytes.room(24);
    auto result = value.isUnsigned ? std::to_chars(place, place + 24, value.bits)
                                   : std::to_chars(place, place + 24, static_cast<std::int64_t>(value.bits));
    bytes.advance(static_cast<std::size_t>(result.ptr - place));
}

void appendPropertyListReal(GrowingBytes& bytes, double value) {
    if (std::isnan(value)) return bytes.append("nan");
    char* place = bytes.room(32);
    bytes.advance(static_cast<std::size_t>(std::to_chars(place, place + 32, value).ptr - place));
}

bool appendPropertyListDate(GrowingBytes& bytes, double secondsSinceReferenceDate) {
    constexpr double kFarthest = static_cast<double>(kYearLimit + 1) * 366 * kSecondsADay;
    if (!(std::fabs(secondsSinceReferenceDate) < kFarthest)) return false;
    auto seconds = static_cast<std::int64_t>(std::floor(secondsSinceReferenceDate));
    std::int64_t days = seconds / kSecondsADay - (seconds % kSecondsADay < 0);
    auto secondOfDay = static_cast<unsigned>(seconds - days * kSecondsADay);
    CalendarDate date = dateFromDays(days + kReferenceDay);
    if (date.year > kYearLimit || date.year < -kYearLimit) return false;
    char* place = bytes.room(40);
    bool isNegative = date.year < 0;
    int size = std::snprintf(place, 40, "%s%04lld-%02u-%02uT%02u:%02u:%02uZ", isNegative ? "-" : "",
                             static_cast<long long>(isNegative ? -date.year : date.year), date.month,
                             date.day, secondOfDay / 3600, secondOfDay / 60 % 60, secondOfDay % 60);
    bytes.advance(static_cast<std::size_t>(size));
    return true;
}

}  // namespace pelvor
