// SPDX-License-Identifier: Apache-2.0
// Numbers in the text of a character scanner.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "Scanning/OFCharacterScanner.h"
#include "Scanning/Private/ScannerMark.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

int digitOf(unichar unit) { return unit >= u'0' && unit <= u'9' ? unit - u'0' : -1; }

int hexadecimalDigitOf(unichar unit) {
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return digitOf(unit);
}

// Times 5 to the power, rounded, then times 2 to the power; the usual powers are kept.
double scaled(double value, std::int64_t exponent) {
    constexpr int kKept = 32;
    struct Powers {
        double five, two;
    };
    static const auto powers = [] {
        std::array<Powers, 2 * kKept + 1> all;
        for (int i = -kKept; i <= kKept; ++i)
            all[static_cast<std::size_t>(i + kKept)] = {std::pow(5.0, i), std::ldexp(1.0, i)};
        return all;
    }();
    if (exponent >= -kKept && exponent <= kKept) {
        const Powers& kept = powers[static_cast<std::size_t>(exponent + kKept)];
        return value * kept.five * kept.two;
    }
    auto power = static_cast<int>(std::clamp<std::int64_t>(exponent, -100000, 100000));
    double five = std::pow(5.0, power);
    return five == 0 ? std::copysign(0, value) : std::ldexp(value * five, power);
}

// How many digits are at the front of sixteen units, `max` at most. Where a number ends is hard to foresee:
// no branch depends on it.
unsigned leadingDigits(const unichar* units, NSUInteger max) {
    auto areOthers = [](Units8 eight) { return eight - vectorOf(u'0') > vectorOf(u'\x9'); };
    unsigned others = bitsOf(areOthers(loadUnits(units)), areOthers(loadUnits(units + 8)));
    return static_cast<unsigned>(std::countr_zero(others | 1u << std::min(max, NSUInteger{16})));
}

// The value of eight digits, each a byte, the first one lowest: pairs, then fours, then eight.
std::uint64_t valueOfEight(std::uint64_t digits) {
    digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
    digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
    return (digits * 10000 + (digits >> 32)) & 0xFFFFFFFF;
}

// The value of the first `count` of sixteen units, which are digits.
std::uint32_t valueOfDigits(const unichar* units, unsigned count) {
    Bytes16 digits = lowBytes(loadUnits(units), loadUnits(units + 8)) - '0';
    __extension__ unsigned __int128 all;
    std::memcpy(&all, &digits, sizeof all);
    // Zeros in front, in two steps: no shift is by the whole width.
    all = all << 4 * (16 - count) << 4 * (16 - count);
    auto first = static_cast<std::uint64_t>(all), second = static_cast<std::uint64_t>(all >> 64);
    return static_cast<std::uint32_t>(valueOfEight(first) * 100000000 + valueOfEight(second));
}

bool isSign(unichar unit) { return unit == u'+' || unit == u'-'; }

}  // namespace

std::uint32_t OFCharacterScanner::scanUnsignedIntegerMaximumDigits(NSUInteger max) {
    std::uint32_t value = 0;
    if (buffered().size() >= 16) {
        unsigned count = leadingDigits(_scanLocation, max);
        value = valueOfDigits(_scanLocation, count);
        _scanLocation += count;
        if (count < 16) return value;
        max -= count;
    }
    while (max && hasCharacter()) {
        unichar* place = _scanLocation;
        unichar* const end = place + std::min<std::size_t>(max, buffered().size());
        for (unsigned digit; place < end && (digit = *place - unsigned{u'0'}) < 10; ++place)
            value = value * 10 + digit;
        max -= static_cast<NSUInteger>(place - _scanLocation);
        _scanLocation = place;
        if (place < end) break;
    }
    return value;
}

std::int32_t OFCharacterScanner::scanIntegerMaximumDigits(NSUInteger max) {
    unichar sign = peekCharacter();
    if (isSign(sign)) ++_scanLocation;
    std::uint32_t value = scanUnsignedIntegerMaximumDigits(max);
    return static_cast<std::int32_t>(sign == u'-' ? 0 - value : value);
}

std::uint32_t OFCharacterScanner::scanHexadecimalNumberMaximumDigits(NSUInteger max) {
    std::uint32_t value = 0;
    for (; max > 0; --max) {
        int digit = hexadecimalDigitOf(peekCharacter());
        if (digit < 0) break;
        value = value * 16 + static_cast<std::uint32_t>(digit);
        ++_scanLocation;
    }
    return value;
}

bool OFCharacterScanner::scanDouble_maximumLength_exponentLength(double* value, NSUInteger maximumLength,
                                                                 NSUInteger exponentLength) {
    requireArgument(value, "scanDouble:maximumLength:exponentLength:", "the value");
    Mark mark(*this);
    NSUInteger room = maximumLength, digits = 0, fraction = 0;
    unichar sign = room ? peekCharacter() : u'\0';
    if (isSign(sign)) {
        ++_scanLocation;
        --room;
    }
    double mantissa = 0;
    bool hasPoint = false;
    for (; room > 0; --room, ++_scanLocation) {
        unichar unit = peekCharacter();
        if (unit == u'.' && !hasPoint) {
            hasPoint = true;
            continue;
        }
        int digit = digitOf(unit);
        if (digit < 0) break;
        mantissa = mantissa * 10 + digit;
        ++digits;
        fraction += hasPoint;
    }
    if (!digits) return mark.finish(false, false);
    mark.keep();
    std::int64_t exponent = scanExponent(room, exponentLength) - std::int64_t{fraction};
    if (sign == u'-') mantissa = -mantissa;
    if (exponent && mantissa != 0) mantissa = scaled(mantissa, exponent);
    *value = mantissa;
    return true;
}

// Without an exponent it returns 0 and consumes nothing.
std::int64_t OFCharacterScanner::scanExponent(NSUInteger room, NSUInteger exponentLength) {
    if (room < 2 || !exponentLength || (peekCharacter() | 0x20) != u'e') return 0;
    Mark mark(*this);
    ++_scanLocation;
    --room;
    unichar sign = peekCharacter();
    if (isSign(sign)) {
        ++_scanLocation;
        --room;
    }
    if (!room || digitOf(peekCharacter()) < 0) {
        mark.goBack();
        return 0;
    }
    mark.keep();
    constexpr std::int64_t kLargest = std::int64_t{1} << 40;  // no number has as many digits behind its point
    std::int64_t value = 0;
    NSUInteger left = std::min(room, exponentLength);
    for (int digit; left && (digit = digitOf(peekCharacter())) >= 0; --left, ++_scanLocation)
        value = std::min(value * 10 + digit, kLargest);
    return sign == u'-' ? -value : value;
}

}  // namespace pelvor
