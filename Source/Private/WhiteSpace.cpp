// SPDX-License-Identifier: Apache-2.0
#include "Private/WhiteSpace.h"
#include "Foundation/NSCharacterSet.h"

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace pelvor {
namespace {

// Of up to sixteen units.
struct Bits {
    unsigned whiteSpace, lineEnds;
};

Bits bitsOf(const unichar* units, std::size_t count) {
    static const std::uint8_t* const members =
        NSCharacterSet::whitespaceAndNewlineCharacterSet()->basicPlaneBitmap();
    Bits bits{0, 0};
    for (std::size_t i = 0; i < count; ++i) {
        bits.whiteSpace |= static_cast<unsigned>(members[units[i] >> 3] >> (units[i] & 7) & 1) << i;
        bits.lineEnds |= static_cast<unsigned>(units[i] == u'\n' || units[i] == u'\f') << i;
    }
    return bits;
}

#if defined(__x86_64__)
__m128i loadEight(const unichar* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }

__m128i isEqual(__m128i units, unichar unit) {
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
}

__m128i isAtMost(__m128i units, unichar most) {
    return isEqual(_mm_subs_epu16(units, _mm_set1_epi16(static_cast<short>(most))), 0);
}

__m128i isControl(__m128i units) {
    return isAtMost(_mm_sub_epi16(units, _mm_set1_epi16(u'\t')), u'\r' - u'\t');
}

__m128i isBlank(__m128i units) {
    return _mm_or_si128(isEqual(units, u' '), _mm_or_si128(isEqual(units, 0x85), isEqual(units, 0xA0)));
}

__m128i isLineEnd(__m128i units) { return _mm_or_si128(isEqual(units, u'\n'), isEqual(units, u'\f')); }

unsigned bitsOf(__m128i first, __m128i second) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(first, second)));
}

Bits bitsOfSixteen(const unichar* units) {
    __m128i first = loadEight(units), second = loadEight(units + 8);
    // The rest of white space begins at U+1680.
    if (bitsOf(isAtMost(first, 0x167F), isAtMost(second, 0x167F)) != 0xFFFF) return bitsOf(units, 16);
    unsigned controls = bitsOf(isControl(first), isControl(second));
    unsigned blanks = bitsOf(isBlank(first), isBlank(second));
    return {controls | blanks, controls ? bitsOf(isLineEnd(first), isLineEnd(second)) : 0};
}
#else
Bits bitsOfSixteen(const unichar* units) { return bitsOf(units, 16); }
#endif

}  // namespace

std::size_t WhiteSpace::readParagraph(std::size_t start) {
    std::u16string_view rest = _text.substr(start);
    _words[0] = 0;
    for (std::size_t i = 0; i < rest.size(); i += 16) {
        const unichar* units = rest.data() + i;
        Bits bits = rest.size() - i >= 16 ? bitsOfSixteen(units) : bitsOf(units, rest.size() - i);
        _words[i / 64] |= std::uint64_t{bits.whiteSpace} << (i & 63);
        _words[i / 64 + 1] = 0;
        if (bits.lineEnds) return start + i + static_cast<std::size_t>(std::countr_zero(bits.lineEnds));
    }
    return _text.size();
}

}  // namespace pelvor
