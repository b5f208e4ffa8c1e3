// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Dates/CalendarFormat.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "Foundation/Dates/LocaleNames.h"
#include "Foundation/Dates/OffsetText.h"
#include "Foundation/NSString.h"
#include "Foundation/NSTimeZone.h"
#include "Foundation/UnitBuffer.h"

namespace pelvor {
namespace {

// The formats of a locale may contain each other's conversions only downwards, so that no format contains
// itself: c may contain x and X, which contain neither.
int levelOf(char16_t conversion) { return conversion == u'c' ? 2 : 1; }
constexpr int kTopLevel = 3;

// Calls `literal` with each unit that stands for itself, and `convert` with each conversion, until one of
// them returns false. A "1" before the conversion's letter is told apart.
template <class Literal, class Convert>
bool walkFormat(std::u16string_view format, Literal literal, Convert convert) {
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != u'%' || i + 1 == format.size()) {
            if (!literal(format[i])) return false;
            continue;
        }
        const bool isShort = format[i + 1] == u'1' && i + 2 < format.size();
        i += isShort ? 2 : 1;
        if (!convert(format[i], isShort, format.substr(i + 1))) return false;
    }
    return true;
}

// MARK: Writing

class FormatWriter {
  public:
    FormatWriter(NSTimeInterval moment, NSTimeZone* zone, NSDictionary* locale, std::size_t formatLength)
        : _text(formatLength * 3),
          _fields(fieldsAt(moment, zone)),
          _moment(moment),
          _zone(zone),
          _locale(locale) {}

    void write(std::u16string_view format, int level) {
        walkFormat(
            format,
            [this](char16_t unit) {
                _text.append(unit);
                return true;
            },
            [&](char16_t conversion, bool isShort, std::u16string_view) {
                convert(conversion, isShort, level);
                return true;
            });
    }

    NSString* takeText() { return _text.takeString(); }

  private:
    void convert(char16_t conversion, bool isShort, int level) {
        const CalendarFields& at = _fields;
        auto number = [&](std::int64_t value, int width) { writeNumber(value, isShort ? 1 : width); };
        switch (conversion) {
            case u'%':
                return _text.append(u'%');
            case u'a':
                return writeName(kShortWeekDayNames, at.dayOfWeek());
            case u'A':
                return writeName(kWeekDayNames, at.dayOfWeek());
            case u'b':
                return writeName(kShortMonthNames, at.day.month - 1);
            case u'B':
                return writeName(kMonthNames, at.day.month - 1);
            case u'd':
                return number(at.day.day, 2);
            case u'e':
                return number(at.day.day, 1);
            case u'F':
                return number(at.milliseconds, 3);
            case u'H':
                return number(at.hour(), 2);
            case u'I':
                return number((at.hour() + 11) % 12 + 1, 2);
            case u'j':
                return number(at.dayOfYear(), 3);
            case u'm':
                return number(at.day.month, 2);
            case u'M':
                return number(at.minute(), 2);
            case u'p':
                return writeName(kDayHalves, at.hour() >= 12);
            case u'S':
                return number(at.second(), 2);
            case u'w':
                return number(at.dayOfWeek(), 1);
            case u'y':
                return number((at.day.year % 100 + 100) % 100, 2);
            case u'Y':
                return number(at.day.year, 4);
            case u'z':
                // Older differences may have seconds, which this form has no place for.
                return _text.append(offsetText(at.difference / 60 * 60));
            case u'Z':
                return append(
                    _zone->abbreviationForDate(NSDate::dateWithTimeIntervalSinceReferenceDate(_moment)));
            case u'c':
            case u'x':
            case u'X':
                if (levelOf(conversion) < level) return writeLocaleFormat(conversion);
                [[fallthrough]];
            default:
                _text.append(isShort ? std::u16string_view(u"%1") : std::u16string_view(u"%"));
                _text.append(conversion);
        }
    }

    void writeLocaleFormat(char16_t conversion) {
        StringUnits format(formatOfLocale(conversion, _locale));
        write(format.view(), levelOf(conversion));
    }

    void writeNumber(std::int64_t value, int width) {
        char16_t digits[24];
        char16_t* const end = std::end(digits);
        char16_t* first = end;
        for (std::int64_t rest = value < 0 ? -value : value; rest > 0 || end - first < width; rest /= 10)
            *--first = static_cast<char16_t>(u'0' + rest % 10);
        if (value < 0) *--first = u'-';
        _text.append({first, static_cast<std::size_t>(end - first)});
    }

    void writeName(const NameList& names, int index) {
        append(names.nameAt(static_cast<NSUInteger>(index), _locale));
    }

    void append(NSString* string) {
        StringUnits units(string);
        _text.append(units.view());
    }

    UnitBuffer _text;
    const CalendarFields _fields;
    const NSTimeInterval _moment;
    NSTimeZone* const _zone;
    NSDictionary* const _locale;
};

// MARK: Reading

bool isSpace(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool isInZoneName(char16_t unit) {
    return isDigit(unit) || (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') ||
           unit == u'_' || unit == u'/' || unit == u'+' || unit == u'-';
}

// What a text said; -1 where it said nothing.
struct ReadFields {
    std::optional<int> year;
    int month = -1, day = -1, dayOfYear = -1;
    int hour = -1, hourOfHalf = -1, half = -1, minute = -1, second = -1, millisecond = -1;
    std::optional<int> difference;
    Retained<NSTimeZone> zone;
};

class FormatReader {
  public:
    FormatReader(NSString* text, NSDictionary* locale) : _string(text), _units(text), _locale(locale) {}

    bool read(std::u16string_view format, int level) {
        return walkFormat(
            format, [this](char16_t unit) { return readLiteral(unit); },
            [&](char16_t conversion, bool isShort, std::u16string_view rest) {
                return convert(conversion, isShort, rest, level);
            });
    }

    bool isAtEnd() {
        skipSpace();
        return _place == _units.size();
    }

    ReadFields fields;

  private:
    std::u16string_view rest() const { return _units.view().substr(_place); }

    void skipSpace() {
        while (_place < _units.size() && isSpace(_units[static_cast<NSUInteger>(_place)])) ++_place;
    }

    bool readLiteral(char16_t unit) {
        if (isSpace(unit)) return skipSpace(), true;
        if (!rest().starts_with(unit)) return false;
        ++_place;
        return true;
    }

    bool convert(char16_t conversion, bool isShort, std::u16string_view following, int level) {
        int ignored = 0;
        switch (conversion) {
            case u'%':
                return readLiteral(u'%');
            case u'a':
            case u'A':
                return readName(kWeekDayNames, kShortWeekDayNames, ignored);
            case u'b':
            case u'B':
                if (!readName(kMonthNames, kShortMonthNames, fields.month)) return false;
                return ++fields.month > 0;
            case u'd':
            case u'e':
                return readNumber(fields.day, 2, 1, 31);
            case u'F':
                return readNumber(fields.millisecond, 3, 0, 999);
            case u'H':
                return readNumber(fields.hour, 2, 0, 23);
            case u'I':
                return readNumber(fields.hourOfHalf, 2, 1, 12);
            case u'j':
                return readNumber(fields.dayOfYear, 3, 1, 366);
            case u'm':
                return readNumber(fields.month, 2, 1, 12);
            case u'M':
                return readNumber(fields.minute, 2, 0, 59);
            case u'p':
                return readName(kDayHalves, kDayHalves, fields.half);
            case u'S':
                return readNumber(fields.second, 2, 0, 60);
            case u'w':
                return readNumber(ignored, 1, 0, 6);
            case u'y':
                return readShortYear();
            case u'Y':
                return readYear(following.starts_with(u'%') ? 4 : 9);
            case u'z':
                return readDifference();
            case u'Z':
                return readZone();
            case u'c':
            case u'x':
            case u'X':
                if (levelOf(conversion) < level) return readLocaleFormat(conversion);
                [[fallthrough]];
            default:
                return readLiteral(u'%') && (!isShort || readLiteral(u'1')) && readLiteral(conversion);
        }
    }

    bool readLocaleFormat(char16_t conversion) {
        StringUnits format(formatOfLocale(conversion, _locale));
        return read(format.view(), levelOf(conversion));
    }

    bool readNumber(int& number, std::size_t digits, int least, int most) {
        skipSpace();
        int value = 0;
        std::size_t read = 0;
        for (; read < digits && read < rest().size() && isDigit(rest()[read]); ++read)
            value = value * 10 + (rest()[read] - u'0');
        if (read == 0 || value < least || value > most) return false;
        _place += read;
        number = value;
        return true;
    }

    bool readYear(std::size_t digits) {
        skipSpace();
        const bool isNegative = rest().starts_with(u'-');
        _place += isNegative;
        int year = 0;
        if (!readNumber(year, digits, 0, 999'999'999)) return false;
        fields.year = isNegative ? -year : year;
        return true;
    }

    bool readShortYear() {
        int year = 0;
        if (!readNumber(year, 2, 0, 99)) return false;
        fields.year = year + (year < 69 ? 2000 : 1900);
        return true;
    }

    // The longest name of both lists that stands here, in either case of its letters.
    bool readName(const NameList& names, const NameList& shortNames, int& index) {
        skipSpace();
        NSUInteger longest = 0;
        for (const NameList* list : {&names, &shortNames})
            for (NSUInteger i = 0; i < list->count; ++i)
                if (NSUInteger length = lengthOfName(list->nameAt(i, _locale)); length > longest) {
                    longest = length;
                    index = static_cast<int>(i);
                }
        _place += longest;
        return longest > 0;
    }

    NSUInteger lengthOfName(NSString* name) {
        constexpr std::size_t kFoldingGrowth = 4;
        const std::size_t reach = std::min(rest().size(), name->length() * kFoldingGrowth);
        NSRange found = _string->rangeOfString_options_range(
            name, NSCaseInsensitiveSearch | NSAnchoredSearch,
            {static_cast<NSUInteger>(_place), static_cast<NSUInteger>(reach)});
        return found.location == NSNotFound ? 0 : found.length;
    }

    bool readDifference() {
        skipSpace();
        if (rest().starts_with(u'Z')) return fields.difference = 0, ++_place > 0;
        const std::size_t length = lengthOfOffset(rest());
        fields.difference = offsetOfText(rest().substr(0, length));
        _place += length;
        return fields.difference.has_value();
    }

    bool readZone() {
        skipSpace();
        std::size_t length = 0;
        while (length < rest().size() && isInZoneName(rest()[length])) ++length;
        if (rest().starts_with(u"GMT"))
            if (std::size_t difference = lengthOfOffset(rest().substr(3))) length = 3 + difference;
        NSString* name = NSString::of(rest().substr(0, length));
        _place += length;
        NSTimeZone* zone = NSTimeZone::timeZoneWithAbbreviation(name);
        fields.zone.set(zone ? zone : NSTimeZone::timeZoneWithName(name));
        return fields.zone.get();
    }

    NSString* const _string;
    const StringUnits _units;
    std::size_t _place = 0;
    NSDictionary* const _locale;
};

// Returns the day that was read. What is larger than all that was read is as it is today; what is smaller is
// the first. Nothing if there is no such day.
std::optional<std::int64_t> dayOf(const ReadFields& read, NSTimeZone* zone) {
    const bool hasMonth = read.month > 0, hasDay = read.day > 0, isCounted = read.dayOfYear > 0;
    CalendarFields now{};
    if (!read.year) now = fieldsAt(NSDate::currentTimeIntervalSinceReferenceDate(), zone);
    const std::int64_t year = read.year ? *read.year : now.day.year;
    if (isCounted && !hasMonth && !hasDay) {
        if (read.dayOfYear > (daysOfMonth(year, 2) == 29 ? 366 : 365)) return std::nullopt;
        return daysToDay({year, 1, read.dayOfYear});
    }
    const int month = hasMonth ? read.month : read.year ? 1 : now.day.month;
    const int day = hasDay ? read.day : hasMonth || read.year ? 1 : now.day.day;
    if (day > daysOfMonth(year, month)) return std::nullopt;
    return daysToDay({year, month, day});
}

int hourOf(const ReadFields& read) {
    if (read.hour >= 0) return read.hour;
    if (read.hourOfHalf < 0) return 0;
    return read.half < 0 ? read.hourOfHalf : read.hourOfHalf % 12 + 12 * read.half;
}

}  // namespace

NSString* formattedMoment(NSTimeInterval moment, NSTimeZone* zone, NSString* format, NSDictionary* locale) {
    if (!isInCalendar(moment)) return u"(a date out of the calendar)"_ns;
    StringUnits units(format);
    FormatWriter writer(moment, zone, locale, units.size());
    writer.write(units.view(), kTopLevel);
    return writer.takeText();
}

std::optional<ReadMoment> readMoment(NSString* text, NSString* format, NSDictionary* locale,
                                     NSTimeZone* zone) {
    StringUnits units(format);
    FormatReader reader(text, locale);
    if (!reader.read(units.view(), kTopLevel) || !reader.isAtEnd()) return std::nullopt;
    const ReadFields& read = reader.fields;
    auto named = read.zone;
    if (!named && read.difference)
        named.set(NSTimeZone::timeZoneForSecondsFromGMT(*read.difference));
    else if (!named)
        named.set(zone);
    const auto day = dayOf(read, named);
    if (!day) return std::nullopt;
    const int seconds = hourOf(read) * 3600 + std::max(read.minute, 0) * 60 + std::max(read.second, 0);
    const NSTimeInterval secondOfDay = seconds + std::max(read.millisecond, 0) / 1000.0;
    if (!read.difference) return ReadMoment{momentOf(*day, secondOfDay, named), named};
    const NSTimeInterval local = static_cast<NSTimeInterval>(*day * 86400) + secondOfDay;
    return ReadMoment{local - *read.difference, named};
}

}  // namespace pelvor
