// SPDX-License-Identifier: Apache-2.0
// Numbers read from text, in the same way in every locale.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "Foundation/NSRange.h"

namespace pelvor {

/// Reads numbers at a place in a text, and moves the place behind them. Where there is no number, the place
/// may have moved nevertheless.
class NumberReader {
  public:
    explicit NumberReader(std::u16string_view text, std::size_t place = 0) : _text(text), _place(place) {}

    std::size_t place() const { return _place; }
    unichar peek() const { return _place < _text.size() ? _text[_place] : u'\0'; }

    /// A decimal integer with its sign; the nearest number of the type if the integer is too large.
    template <std::signed_integral T>
    std::optional<T> integer() {
        bool isNegative = takeSign();
        if (!isDigit(peek())) return std::nullopt;
        T limit = isNegative ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max(), value = 0;
        for (; isDigit(peek()); ++_place) {
            T digit = static_cast<T>(isNegative ? u'0' - peek() : peek() - u'0');
            if (__builtin_mul_overflow(value, T{10}, &value) ||
                __builtin_add_overflow(value, digit, &value)) {
                takeDigits();
                return limit;
            }
        }
        return value;
    }

    /// Hexadecimal digits, with or without "0x" before them; the greatest number of the type if they are too
    /// many.
    template <std::unsigned_integral T>
    std::optional<T> hexadecimal() {
        bool hasPrefix = peek() == u'0' && _place + 2 < _text.size() && (_text[_place + 1] | 0x20) == u'x' &&
                         hexDigit(_text[_place + 2]) < 16;
        if (hasPrefix) _place += 2;
        if (hexDigit(peek()) == 16) return std::nullopt;
        T value = 0;
        bool isTooLarge = false;
        for (; hexDigit(peek()) < 16; ++_place) {
            isTooLarge |= value > std::numeric_limits<T>::max() / 16;
            value = static_cast<T>(value * 16 + hexDigit(peek()));
        }
        return isTooLarge ? std::numeric_limits<T>::max() : value;
    }

    /// Digits with sign, point and exponent; infinity for a number that is too large.
    template <std::floating_point T>
    std::optional<T> floating() {
        bool isNegative = takeSign();
        std::string digits = takeDecimal();
        if (digits.empty()) return std::nullopt;
        T value = 0;
        auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (result.ec == std::errc::result_out_of_range) value = outOfRange<T>(digits);
        return isNegative ? -value : value;
    }

  private:
    static bool isDigit(unichar unit) { return unit >= u'0' && unit <= u'9'; }
    static unsigned hexDigit(unichar unit) {
        if (isDigit(unit)) return unit - u'0';
        unichar lower = unit | 0x20;
        return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10u : 16u;
    }

    bool takeSign() {
        bool isNegative = peek() == u'-';
        if (isNegative || peek() == u'+') ++_place;
        return isNegative;
    }
    std::string takeDigits() {
        std::string digits;
        for (; isDigit(peek()); ++_place) digits += static_cast<char>(peek());
        return digits;
    }
    // Digits with a point and an exponent, as far as they go; empty without a digit before the exponent.
    std::string takeDecimal() {
        std::string digits = takeDigits();
        if (peek() == u'.') {
            ++_place;
            digits += '.' + takeDigits();
        }
        if (digits.empty() || digits == ".") return {};
        if (peek() != u'e' && peek() != u'E') return digits;
        std::size_t mark = _place++;
        std::string sign = takeSign() ? "e-" : "e", exponent = takeDigits();
        if (!exponent.empty()) return digits + sign + exponent;
        _place = mark;
        return digits;
    }

    // Infinity for a number that is too large, 0 for a number that is too small. The place of the first digit
    // other than 0 tells which.
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
    std::size_t _place;
};

}  // namespace pelvor
