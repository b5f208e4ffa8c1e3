// SPDX-License-Identifier: Apache-2.0
#include "Private/UnitFinding.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Foundation/NSCharacterSet.h"
#include "Runtime/NSException.h"
#include "Scanning/Private/UnitSpans.h"
#include "Shared/Codepoints.h"

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace pelvor {
namespace {

// What compilers turn into the machine's vectors.
using Units8 = std::uint16_t __attribute__((vector_size(16)));
using Words2 = std::uint64_t __attribute__((vector_size(16)));

class EitherTest {
  public:
    EitherTest(unichar one, unichar other) : _one(eightOf(one)), _other(eightOf(other)) {}
    // All bits of those of eight units that are one of the two.
    Words2 operator()(const unichar* from) const {
        Units8 units;
        std::memcpy(&units, from, sizeof units);
        return reinterpret_cast<Words2>((units == _one) | (units == _other));
    }

  private:
    static Units8 eightOf(unichar unit) { return Units8{} + static_cast<std::uint16_t>(unit); }

    Units8 _one, _other;
};

constexpr bool isLittleEndian = std::endian::native == std::endian::little;

}  // namespace

const unichar* findEither(const unichar* place, const unichar* end, unichar one, unichar other) {
    const EitherTest test(one, other);
    for (; end - place >= 32; place += 32) {
        Words2 found = test(place) | test(place + 8) | test(place + 16) | test(place + 24);
        if (found[0] | found[1]) break;
    }
    for (; isLittleEndian && end - place >= 8; place += 8) {
        Words2 found = test(place);
        if (found[0]) return place + std::countr_zero(found[0]) / 16;
        if (found[1]) return place + 4 + std::countr_zero(found[1]) / 16;
    }
    while (place < end && *place != one && *place != other) ++place;
    return place;
}

std::uint16_t asciiLetters(const unichar* units) {
#if defined(__x86_64__)
    auto areLetters = [units](int from) {
        __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + from));
        __m128i fromA = _mm_sub_epi16(_mm_or_si128(eight, _mm_set1_epi16(0x20)), _mm_set1_epi16(u'a'));
        return _mm_cmpeq_epi16(_mm_subs_epu16(fromA, _mm_set1_epi16(u'z' - u'a')), _mm_setzero_si128());
    };
    return static_cast<std::uint16_t>(_mm_movemask_epi8(_mm_packs_epi16(areLetters(0), areLetters(8))));
#else
    unsigned bits = 0;
    for (int i = 0; i < 16; ++i) bits |= unsigned{(units[i] | 0x20u) - u'a' < 26} << i;
    return static_cast<std::uint16_t>(bits);
#endif
}

MemberFinder::MemberFinder(NSCharacterSet* set) : _set(set) {
    if (!set) throw NSException(NSInvalidArgumentException, "a set of characters is needed, none given");
    _bitmap = set->basicPlaneBitmap();
    constexpr unsigned kFirstHalf = 0xD800 / 8, kPastHalves = 0xE000 / 8;
    unsigned others = 0;
    for (unsigned i = kFirstHalf; i < kPastHalves; ++i) others |= _bitmap[i];
    for (std::uint8_t plane = 1; plane <= 16; ++plane) others |= set->hasMemberInPlane(plane);
    _hasPlainUnitsOnly = others == 0;
}

// The first unit that is a member, or a half of a pair that may be one.
std::size_t MemberFinder::firstStop(std::u16string_view text, std::size_t from) const {
    if (_hasPlainUnitsOnly) {
        // Where members are dense, the next one is near.
        std::size_t near = std::min(from + 8, text.size());
        while (from < near && !(_bitmap[text[from] >> 3] >> (text[from] & 7) & 1)) ++from;
        if (from < near) return from;
        auto* begin = const_cast<unichar*>(text.data());
        return static_cast<std::size_t>(findMember(begin + from, begin + text.size(), _bitmap) - begin);
    }
    auto stops = [this](unichar unit) { return isSurrogate(unit) || (_bitmap[unit >> 3] >> (unit & 7) & 1); };
    while (from < text.size() && !stops(text[from])) ++from;
    return from;
}

std::size_t MemberFinder::copyOthers(std::u16string_view text, unichar* to) const {
    std::size_t count = 0;
    for (unichar unit : text) {
        to[count] = unit;
        count += !(_bitmap[unit >> 3] >> (unit & 7) & 1);
    }
    return count;
}

UnitMatch MemberFinder::find(std::u16string_view text, std::size_t from) const {
    while (true) {
        from = firstStop(text, from);
        if (from == text.size()) return {from, 0};
        bool isPair = isHighSurrogate(text[from]) && from + 1 < text.size() && isLowSurrogate(text[from + 1]);
        std::size_t length = isPair ? 2 : 1;
        char32_t character = isPair ? codepointOfPair(text[from], text[from + 1]) : char32_t{text[from]};
        if (_set->longCharacterIsMember(character)) return {from, length};
        from += length;
    }
}

}  // namespace pelvor
