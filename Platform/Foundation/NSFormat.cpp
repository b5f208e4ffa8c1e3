// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSFormat.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

using Arguments = std::span<const FormatArgument>;
using Kind = FormatArgument::Kind;

// A hostile format cannot ask for more padding or digits than this.
constexpr int kLargestField = 65535;

struct Directive {
    bool left = false, plus = false, space = false, zero = false, alternate = false;
    int width = 0;
    int precision = -1;  // -1: not given
    int halves = 0;      // 1 for "h", 2 for "hh"
    char16_t conversion = 0;
    const FormatArgument* argument = nullptr;
};

// A text in ASCII, and its sign or base prefix; padding zeros stand between the two.
struct Number {
    std::string prefix;
    std::string digits;
    bool finite = true;
};

void appendASCII(std::u16string& text, std::string_view ascii) { text.append(ascii.begin(), ascii.end()); }

void appendUTF8(std::u16string& text, std::string_view bytes) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; }))
        return appendASCII(text, bytes);
    StringUnits units(NSString::ofUTF8(bytes));
    text += units.view();
}

void appendPadded(std::u16string& text, const Directive& directive, std::u16string_view field) {
    std::size_t width = static_cast<std::size_t>(directive.width);
    std::size_t padding = field.size() < width ? width - field.size() : 0;
    if (!directive.left) text.append(padding, u' ');
    text += field;
    if (directive.left) text.append(padding, u' ');
}

void appendNumber(std::u16string& text, const Directive& directive, const Number& number) {
    std::size_t size = number.prefix.size() + number.digits.size();
    std::size_t width = static_cast<std::size_t>(directive.width);
    std::size_t padding = size < width ? width - size : 0;
    bool zeros = directive.zero && !directive.left && number.finite;
    if (!directive.left && !zeros) text.append(padding, u' ');
    appendASCII(text, number.prefix);
    if (zeros) text.append(padding, u'0');
    appendASCII(text, number.digits);
    if (directive.left) text.append(padding, u' ');
}

std::string shortest(double value) {
    if (std::isnan(value)) return "nan";
    char buffer[40];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string digitsOf(std::uint64_t value, int base) {
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr};
}

std::string addressText(const void* pointer) {
    return "0x" + digitsOf(reinterpret_cast<std::uintptr_t>(pointer), 16);
}

// The argument as plain text, whatever its type.
void appendText(std::u16string& text, const FormatArgument& argument) {
    switch (argument.kind()) {
        case Kind::signedInteger:
            return appendASCII(text, std::to_string(static_cast<std::int64_t>(argument.integer())));
        case Kind::unsignedInteger:
            return appendASCII(text, std::to_string(argument.integer()));
        case Kind::floating:
            return appendASCII(text, shortest(argument.floating()));
        case Kind::text:
            return argument.pointer() ? appendUTF8(text, argument.text()) : appendASCII(text, "(null)");
        case Kind::text16:
            if (!argument.pointer()) return appendASCII(text, "(null)");
            text += argument.text16();
            return;
        case Kind::pointer:
            return appendASCII(text, addressText(argument.pointer()));
        case Kind::object:
            NSString* description = argument.object() ? argument.object()->description() : nullptr;
            if (!description) return appendASCII(text, "(null)");
            StringUnits units(description);
            text += units.view();
    }
}

bool isNumber(const FormatArgument& argument) { return argument.kind() <= Kind::floating; }

std::int64_t truncated(double value) {
    constexpr double kLimit = 9223372036854775808.0;
    if (std::isnan(value)) return 0;
    if (value >= kLimit) return std::numeric_limits<std::int64_t>::max();
    return value < -kLimit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(value);
}

// The integer that an argument stands for; no value for text and objects.
std::optional<std::int64_t> integerOf(const FormatArgument& argument) {
    switch (argument.kind()) {
        case Kind::signedInteger:
        case Kind::unsignedInteger:
            return static_cast<std::int64_t>(argument.integer());
        case Kind::floating:
            return truncated(argument.floating());
        case Kind::pointer:
            return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(argument.pointer()));
        default:
            if (argument.pointer()) return std::nullopt;
            return 0;
    }
}

// The bits of an integer of its own size, at least of an int, or of the halves that the format names.
std::int64_t signedValue(const Directive& directive, std::int64_t value) {
    if (directive.halves == 2) return static_cast<signed char>(value);
    if (directive.halves == 1) return static_cast<short>(value);
    bool isUnsigned = directive.argument->kind() == Kind::unsignedInteger;
    return isUnsigned && directive.argument->size() == 4 ? static_cast<std::int32_t>(value) : value;
}

std::uint64_t unsignedValue(const Directive& directive, std::int64_t value) {
    if (directive.halves == 2) return static_cast<unsigned char>(value);
    if (directive.halves == 1) return static_cast<unsigned short>(value);
    bool isNarrow = directive.argument->kind() <= Kind::unsignedInteger && directive.argument->size() <= 4;
    return isNarrow ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
}

std::string signPrefix(const Directive& directive, bool negative) {
    if (negative) return "-";
    return directive.plus ? "+" : directive.space ? " " : "";
}

void raiseCase(std::string& text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c -= 'a' - 'A';
}

Number signedNumber(const Directive& directive, std::int64_t value) {
    auto magnitude = static_cast<std::uint64_t>(value);
    return {signPrefix(directive, value < 0), digitsOf(value < 0 ? 0 - magnitude : magnitude, 10)};
}

Number unsignedNumber(const Directive& directive, std::uint64_t value) {
    switch (directive.conversion) {
        case u'o':
            return {"", digitsOf(value, 8)};
        case u'x':
            return {directive.alternate && value ? "0x" : "", digitsOf(value, 16)};
        case u'X': {
            Number number{directive.alternate && value ? "0X" : "", digitsOf(value, 16)};
            raiseCase(number.digits);
            return number;
        }
        default:
            return {"", digitsOf(value, 10)};
    }
}

void appendInteger(std::u16string& text, Directive directive, std::int64_t value) {
    bool isSigned = directive.conversion == u'd' || directive.conversion == u'i';
    Number number = isSigned ? signedNumber(directive, signedValue(directive, value))
                             : unsignedNumber(directive, unsignedValue(directive, value));
    if (directive.precision >= 0) {
        directive.zero = false;
        std::size_t least = static_cast<std::size_t>(directive.precision);
        if (least == 0 && number.digits == "0") number.digits.clear();
        if (number.digits.size() < least) number.digits.insert(0, least - number.digits.size(), '0');
    }
    // The octal mark is one more digit, where the first is not 0 already.
    if (directive.conversion == u'o' && directive.alternate && !number.digits.starts_with('0'))
        number.digits.insert(0, 1, '0');
    appendNumber(text, directive, number);
}

std::string converted(double value, std::chars_format format, int precision) {
    char digits[128];
    auto written = std::to_chars(digits, digits + sizeof digits, value, format, precision);
    if (written.ec == std::errc()) return {digits, written.ptr};
    std::string buffer(static_cast<std::size_t>(precision) + 340, '\0');
    auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
    buffer.resize(static_cast<std::size_t>(end.ptr - buffer.data()));
    return buffer;
}

std::string hexadecimal(double value, int precision) {
    if (precision >= 0) return converted(value, std::chars_format::hex, precision);
    char buffer[40];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::hex).ptr};
}

// "%#g": the digits that "%g" drops stay.
std::string generalWithZeros(double value, int precision) {
    std::string scientific = converted(value, std::chars_format::scientific, precision - 1);
    int exponent = std::stoi(scientific.substr(scientific.find('e') + 1));
    if (exponent < -4 || exponent >= precision) return scientific;
    return converted(value, std::chars_format::fixed, precision - 1 - exponent);
}

// The decimal point that "#" demands also where no digit follows.
void requirePoint(std::string& digits, char exponentMark) {
    if (digits.find('.') != std::string::npos) return;
    std::size_t mark = digits.find(exponentMark);
    digits.insert(mark == std::string::npos ? digits.size() : mark, ".");
}

std::string magnitudeText(const Directive& directive, char16_t conversion, double magnitude) {
    int precision = directive.precision < 0 ? 6 : directive.precision;
    switch (conversion) {
        case u'f':
            return converted(magnitude, std::chars_format::fixed, precision);
        case u'e':
            return converted(magnitude, std::chars_format::scientific, precision);
        case u'a':
            return hexadecimal(magnitude, directive.precision);
        default:
            precision = std::max(precision, 1);
            return directive.alternate ? generalWithZeros(magnitude, precision)
                                       : converted(magnitude, std::chars_format::general, precision);
    }
}

void appendFloating(std::u16string& text, const Directive& directive, double value) {
    bool isUpper = directive.conversion < u'a';
    char16_t conversion = isUpper ? directive.conversion + (u'a' - u'A') : directive.conversion;
    Number number{signPrefix(directive, std::signbit(value)), "", std::isfinite(value)};
    if (number.finite) {
        number.digits = magnitudeText(directive, conversion, std::fabs(value));
        if (directive.alternate) requirePoint(number.digits, conversion == u'a' ? 'p' : 'e');
        if (conversion == u'a') number.prefix += "0x";
    } else {
        number.digits = std::isnan(value) ? "nan" : "inf";
    }
    if (isUpper) {
        raiseCase(number.prefix);
        raiseCase(number.digits);
    }
    appendNumber(text, directive, number);
}

void appendCharacter(std::u16string& text, const Directive& directive, std::int64_t value) {
    char16_t units[2];
    std::size_t count = 1;
    if (directive.conversion == u'c') {
        units[0] = static_cast<unsigned char>(value);
    } else if (value >= 0x10000 && value <= 0x10FFFF) {
        writeCodepoint(static_cast<std::uint32_t>(value), units);
        count = 2;
    } else {
        units[0] = static_cast<char16_t>(value);
    }
    appendPadded(text, directive, {units, count});
}

// Text cut to the precision, without half a pair at its end.
void appendTextField(std::u16string& text, const Directive& directive) {
    std::u16string field;
    appendText(field, *directive.argument);
    std::size_t limit = static_cast<std::size_t>(directive.precision);
    if (directive.precision >= 0 && field.size() > limit) {
        if (limit && isHighSurrogate(field[limit - 1])) --limit;
        field.resize(limit);
    }
    appendPadded(text, directive, field);
}

void appendPointer(std::u16string& text, const Directive& directive) {
    std::uint64_t address = isNumber(*directive.argument)
                                ? static_cast<std::uint64_t>(*integerOf(*directive.argument))
                                : reinterpret_cast<std::uintptr_t>(directive.argument->pointer());
    appendNumber(text, directive, {"0x", digitsOf(address, 16)});
}

bool convertsToText(char16_t conversion) {
    return conversion == u'@' || conversion == u's' || conversion == u'S';
}

bool convertsToFloating(char16_t conversion) {
    return std::u16string_view(u"fFeEgGaA").find(conversion) != std::u16string_view::npos;
}

// An argument that is no number shows itself where a number is wanted.
void appendArgument(std::u16string& text, const Directive& directive) {
    const FormatArgument& argument = *directive.argument;
    if (convertsToText(directive.conversion)) return appendTextField(text, directive);
    if (directive.conversion == u'p') return appendPointer(text, directive);
    auto integer = integerOf(argument);
    if (!integer) return appendTextField(text, directive);
    if (directive.conversion == u'c' || directive.conversion == u'C')
        return appendCharacter(text, directive, *integer);
    if (!convertsToFloating(directive.conversion)) return appendInteger(text, directive, *integer);
    if (argument.kind() == Kind::floating) return appendFloating(text, directive, argument.floating());
    bool isUnsigned = argument.kind() == Kind::unsignedInteger;
    appendFloating(text, directive,
                   isUnsigned ? static_cast<double>(argument.integer()) : static_cast<double>(*integer));
}

class FormatReader {
  public:
    FormatReader(std::u16string& text, std::u16string_view format, Arguments arguments)
        : _text(text), _format(format), _arguments(arguments) {}

    void run() {
        _text.reserve(_text.size() + _format.size() + _arguments.size() * 16);
        while (true) {
            std::size_t percent = std::min(_format.find(u'%', _place), _format.size());
            _text += _format.substr(_place, percent - _place);
            if (percent == _format.size()) return;
            _place = percent + 1;
            readDirective(percent);
        }
    }

  private:
    char16_t peek() const { return _place < _format.size() ? _format[_place] : u'\0'; }
    bool take(char16_t unit) {
        if (peek() != unit || _place == _format.size()) return false;
        ++_place;
        return true;
    }

    void readDirective(std::size_t start) {
        Directive directive;
        std::optional<std::size_t> place = readPlace();
        readFlags(directive);
        readWidth(directive);
        readPrecision(directive);
        readLength(directive);
        directive.conversion = peek();
        if (take(u'%')) return _text.push_back(u'%');
        if (!isConversion(directive.conversion)) {
            _text += _format.substr(start, _place - start);
            return;
        }
        ++_place;
        directive.argument = argumentAt(place);
        if (directive.argument)
            appendArgument(_text, directive);
        else
            appendASCII(_text, "(missing)");
    }

    static bool isConversion(char16_t unit) {
        return unit && std::u16string_view(u"@diuxXocCsSpfFeEgGaA").find(unit) != std::u16string_view::npos;
    }

    int readNumber() {
        int number = 0;
        for (; peek() >= u'0' && peek() <= u'9'; ++_place)
            number = std::min(number * 10 + (peek() - u'0'), kLargestField);
        return number;
    }

    // "2$": the place of an argument, counted from 1. Digits without "$" are left to be read as a width.
    std::optional<std::size_t> readPlace() {
        std::size_t start = _place;
        int number = readNumber();
        if (_place > start && take(u'$')) return static_cast<std::size_t>(number);
        _place = start;
        return std::nullopt;
    }

    const FormatArgument* argumentAt(std::optional<std::size_t> place) {
        std::size_t index = place ? *place - 1 : _next++;
        return index < _arguments.size() ? &_arguments[index] : nullptr;
    }

    void readFlags(Directive& directive) {
        while (true) {
            if (take(u'-'))
                directive.left = true;
            else if (take(u'+'))
                directive.plus = true;
            else if (take(u' '))
                directive.space = true;
            else if (take(u'0'))
                directive.zero = true;
            else if (take(u'#'))
                directive.alternate = true;
            else if (!take(u'\''))
                return;
        }
    }

    // A number that "*" takes from the arguments; 0 where that is missing or no number.
    int readStar() {
        const FormatArgument* argument = argumentAt(readPlace());
        std::int64_t value = argument ? integerOf(*argument).value_or(0) : 0;
        return static_cast<int>(std::clamp<std::int64_t>(value, -kLargestField, kLargestField));
    }

    void readWidth(Directive& directive) {
        directive.width = take(u'*') ? readStar() : readNumber();
        if (directive.width >= 0) return;
        directive.left = true;
        directive.width = -directive.width;
    }

    void readPrecision(Directive& directive) {
        if (!take(u'.')) return;
        directive.precision = std::max(take(u'*') ? readStar() : readNumber(), -1);
    }

    void readLength(Directive& directive) {
        while (std::u16string_view(u"hlqztjL").find(peek()) != std::u16string_view::npos && peek()) {
            if (peek() == u'h') ++directive.halves;
            ++_place;
        }
    }

    std::u16string& _text;
    std::u16string_view _format;
    Arguments _arguments;
    std::size_t _place = 0;
    std::size_t _next = 0;
};

}  // namespace

void appendFormat(std::u16string& text, std::u16string_view format, Arguments arguments) {
    FormatReader(text, format, arguments).run();
}

NSString* formatString(NSString* format, Arguments arguments, const char* operation) {
    requireArgument(format, operation, "the format");
    StringUnits units(format);
    std::u16string text;
    appendFormat(text, units, arguments);
    return NSString::of(text);
}

void detail::raiseFormatted(const char* name, NSString* format, Arguments arguments) {
    throw NSException(name, formatString(format, arguments)->toUTF8());
}

}  // namespace pelvor
