// SPDX-License-Identifier: Apache-2.0
// Numbers read from the start of a string. The process's locale plays no part.
#include <charconv>
#include <cmath>
#include <limits>

#include "Foundation/NSString.h"

namespace pelvor {
namespace {

bool isDigit(unichar unit) { return unit >= u'0' && unit <= u'9'; }

bool isSpace(unichar unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0xA0; }

class NumberReader {
  public:
    explicit NumberReader(std::u16string_view text) : _text(text) {
        while (isSpace(peek())) ++_place;
    }

    unichar peek() const { return _place < _text.size() ? _text[_place] : u'\0'; }

    bool takeSign() {
        bool isNegative = peek() == u'-';
        if (isNegative || peek() == u'+') ++_place;
        return isNegative;
    }

    /// A decimal integer, or the nearest number of the type.
    template <class T>
    T integer() {
        bool isNegative = takeSign();
        T limit = isNegative ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max(), value = 0;
        for (; isDigit(peek()); ++_place) {
            T digit = static_cast<T>(isNegative ? u'0' - peek() : peek() - u'0');
            if (__builtin_mul_overflow(value, T{10}, &value) || __builtin_add_overflow(value, digit, &value))
                return limit;
        }
        return value;
    }

    template <class T>
    T floating() {
        bool isNegative = takeSign();
        std::string digits = takeDecimal();
        T value = 0;
        auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (result.ec == std::errc::result_out_of_range) value = outOfRange<T>(digits);
        return isNegative ? -value : value;
    }

  private:
    // Digits with a point and an exponent, as far as they go.
    std::string takeDecimal() {
        std::string digits;
        takeDigits(digits);
        if (peek() == u'.') {
            digits += '.';
            ++_place;
            takeDigits(digits);
        }
        if (peek() != u'e' && peek() != u'E') return digits;
        std::string exponent = "e";
        ++_place;
        if (takeSign()) exponent += '-';
        takeDigits(exponent);
        return isDigit(static_cast<unichar>(exponent.back())) ? digits + exponent : digits;
    }

    void takeDigits(std::string& digits) {
        for (; isDigit(peek()); ++_place) digits += static_cast<char>(peek());
    }

    // Infinity for a number that is too large, 0 for one that is too small: told by the place of its first
    // digit other than 0.
    template <class T>
    static T outOfRange(const std::string& digits) {
        std::size_t mark = std::min(digits.find('e'), digits.size());
        std::size_t point = std::min(digits.find('.'), mark);
        std::size_t first = digits.find_first_of("123456789");
        double exponent = static_cast<double>(point) - static_cast<double>(first);
        if (mark < digits.size()) {
            long long written = 0;
            auto result = std::from_chars(digits.data() + mark + 1, digits.data() + digits.size(), written);
            bool isTooLong = result.ec == std::errc::result_out_of_range;
            double limit = digits[mark + 1] == '-' ? -HUGE_VAL : HUGE_VAL;
            exponent += isTooLong ? limit : static_cast<double>(written);
        }
        return exponent > 0 ? std::numeric_limits<T>::infinity() : T{0};
    }

    std::u16string_view _text;
    std::size_t _place = 0;
};

}  // namespace

int NSString::intValue() {
    StringUnits units(this);
    return NumberReader(units).integer<int>();
}

NSInteger NSString::integerValue() { return intValue(); }

long long NSString::longLongValue() {
    StringUnits units(this);
    return NumberReader(units).integer<long long>();
}

float NSString::floatValue() {
    StringUnits units(this);
    return NumberReader(units).floating<float>();
}

double NSString::doubleValue() {
    StringUnits units(this);
    return NumberReader(units).floating<double>();
}

bool NSString::boolValue() {
    StringUnits units(this);
    NumberReader reader(units);
    unichar first = reader.peek();
    if (first == u'Y' || first == u'y' || first == u'T' || first == u't') return true;
    return reader.integer<int>() != 0;
}

}  // namespace pelvor
