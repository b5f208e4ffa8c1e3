// SPDX-License-Identifier: Apache-2.0
// Numbers in the text of a character scanner.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "Scanning/OFCharacterScanner.h"
#include "Scanning/Private/ScannerMark.h"

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

#if defined(__x86_64__)
__m128i loadEight(const unichar* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }

// All bits of those of eight units that are no digits.
__m128i areOthers(__m128i units) {
    constexpr int kLeast = -0x8000;
    __m128i fromLeast = _mm_add_epi16(units, _mm_set1_epi16(static_cast<short>(kLeast - u'0')));
    return _mm_cmpgt_epi16(fromLeast, _mm_set1_epi16(kLeast + 9));
}

// How many digits are at the front of sixteen units, `max` at most. Where a number ends is hard to foresee:
// no branch depends on it.
unsigned leadingDigits(const unichar* units, unsigned max) {
    __m128i others = _mm_packs_epi16(areOthers(loadEight(units)), areOthers(loadEight(units + 8)));
    auto bits = static_cast<unsigned>(_mm_movemask_epi8(others));
    return static_cast<unsigned>(std::countr_zero(bits | 1u << std::min(max, 16u)));
}

// The value of the last `count` of sixteen units, which are digits.
std::uint32_t valueOfDigits(const unichar* units, unsigned count) {
    const __m128i first = _mm_set1_epi16(static_cast<short>(15 - count)), zero = _mm_set1_epi16(u'0');
    auto digitsAt = [&](int from, __m128i places) {
        return _mm_and_si128(_mm_sub_epi16(loadEight(units + from), zero), _mm_cmpgt_epi16(places, first));
    };
    __m128i low = digitsAt(0, _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
    __m128i high = digitsAt(8, _mm_setr_epi16(8, 9, 10, 11, 12, 13, 14, 15));
    // Pairs, then fours, then eights.
    const __m128i tens = _mm_set1_epi32(1 << 16 | 10), hundreds = _mm_set1_epi32(1 << 16 | 100),
                  myriads = _mm_set1_epi32(1 << 16 | 10000);
    __m128i fours =
        _mm_madd_epi16(_mm_packs_epi32(_mm_madd_epi16(low, tens), _mm_madd_epi16(high, tens)), hundreds);
    __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), myriads);
    auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return static_cast<std::uint32_t>(both) * 100000000u + static_cast<std::uint32_t>(both >> 32);
}
#endif

bool isSign(unichar unit) { return unit == u'+' || unit == u'-'; }

}  // namespace

std::uint32_t OFCharacterScanner::scanUnsignedIntegerMaximumDigits(NSUInteger max) {
    std::uint32_t value = 0;
#if defined(__x86_64__)
    if (bufferedCount() >= 16 && _scanLocation - _inputBuffer >= 16) {
        unsigned count = leadingDigits(_scanLocation, max);
        _scanLocation += count;
        value = valueOfDigits(_scanLocation - 16, count);
        if (count < 16) return value;
        max -= count;
    }
#endif
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
