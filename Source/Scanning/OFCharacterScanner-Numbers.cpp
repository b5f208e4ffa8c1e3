// SPDX-License-Identifier: Apache-2.0
// Numbers in the text of a character scanner.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "Scanning/OFCharacterScanner.h"
#include "Scanning/ScannerMarkPrivate.h"

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

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
    return std::ldexp(value * std::pow(5.0, power), power);
}

// How many of eight units are digits up to the first that is not, and their value; all at once, since where a
// number ends is hard to foresee.
unsigned leadingDigits(const unichar* units, std::uint32_t& value) {
#if defined(__x86_64__)
    __m128i digits =
        _mm_sub_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units)), _mm_set1_epi16(u'0'));
    __m128i above9 = _mm_subs_epu16(digits, _mm_set1_epi16(9));
    auto areDigits = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(above9, _mm_setzero_si128())));
    unsigned count = static_cast<unsigned>(std::countr_one(areDigits)) / 2;
    if (!count) return 0;
    // Zeros in front make them eight: pairs, then fours, then all.
    auto eight = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(digits, digits)));
    eight <<= 64 - 8 * count;
    eight = eight * 10 + (eight >> 8);
    std::uint64_t outer = (eight & 0x000000FF000000FFu) * 0x000F424000000064u;
    std::uint64_t inner = (eight >> 16 & 0x000000FF000000FFu) * 0x0000271000000001u;
    value = static_cast<std::uint32_t>((outer + inner) >> 32);
    return count;
#else
    unsigned count = 0;
    for (unsigned digit; count < 8 && (digit = units[count] - unsigned{u'0'}) < 10; ++count)
        value = value * 10 + digit;
    return count;
#endif
}

bool isSign(unichar unit) { return unit == u'+' || unit == u'-'; }

}  // namespace

std::uint32_t OFCharacterScanner::scanUnsignedIntegerMaximumDigits(NSUInteger max) {
    std::uint32_t value = 0;
    if (max >= 8 && bufferedCount() >= 8) {
        unsigned count = leadingDigits(_scanLocation, value);
        _scanLocation += count;
        max -= count;
        if (count < 8) return value;
    }
    while (max && hasCharacter()) {
        unichar* place = _scanLocation;
        unichar* const end = place + std::min<std::size_t>(max, bufferedCount());
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

// 0, with nothing consumed, if there is none.
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
    std::int64_t value = scanUnsignedIntegerMaximumDigits(std::min(room, exponentLength));
    return sign == u'-' ? -value : value;
}

}  // namespace pelvor
