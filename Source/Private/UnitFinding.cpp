// SPDX-License-Identifier: Apache-2.0
#include "Private/UnitFinding.h"

#include <algorithm>
#include <bit>

#include "Foundation/NSCharacterSet.h"
#include "Shared/Codepoints.h"
#include "Shared/Vectors.h"
#include "Shared/WideInstructions.h"
#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

namespace pelvor {
namespace {

using Units = std::u16string_view;

// The first place whose unit the test finds: one for eight units that gives a mask, and one for a single
// unit.
template <class TestEight, class Test>
std::size_t findFirst(Units text, TestEight testEight, Test test) {
    std::size_t i = 0;
    for (; i + 16 <= text.size(); i += 16) {
        auto maskAt = [&](std::size_t place) { return testEight(loadUnits(text.data() + place)); };
        if (unsigned bits = bitsOf(maskAt(i), maskAt(i + 8)))
            return i + static_cast<std::size_t>(std::countr_zero(bits));
    }
    while (i < text.size() && !test(text[i])) ++i;
    return i;
}

bool isMember(const std::uint8_t* bitmap, unichar unit) { return bitmap[unit >> 3] >> (unit & 7) & 1; }

std::size_t findMemberSingly(Units text, std::size_t from, std::size_t end, const std::uint8_t* bitmap) {
    while (from < end && !isMember(bitmap, text[from])) ++from;
    return from;
}

#ifdef PELVOR_HAS_WIDE_FORMS

PELVOR_WIDE inline __m256i loadSixteen(const unichar* units) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units));
}

// Thirty-two units at a time, whose bytes look their bits up in the first sixteen bytes of the bitmap; blocks
// with units beyond ASCII go unit by unit.
PELVOR_WIDE std::size_t findMemberWide(Units text, const std::uint8_t* bitmap) {
    const __m256i table =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap)));
    const __m256i bits = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201u));
    const __m256i low4 = _mm256_set1_epi8(0x0F), low3 = _mm256_set1_epi8(0x07);
    const __m256i beyond = _mm256_set1_epi16(static_cast<short>(0xFF80));
    const unichar *const begin = text.data(), *const end = begin + text.size(), *place = begin;
    for (; end - place >= 32; place += 32) {
        const auto i = static_cast<std::size_t>(place - begin);
        __m256i first = loadSixteen(place), second = loadSixteen(place + 16);
        if (!_mm256_testz_si256(_mm256_or_si256(first, second), beyond)) [[unlikely]] {
            std::size_t found = findMemberSingly(text, i, i + 32, bitmap);
            if (found < i + 32) return found;
            continue;
        }
        __m256i units = _mm256_packus_epi16(first, second);
        __m256i bytes = _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi16(units, 3), low4));
        __m256i wanted = _mm256_shuffle_epi8(bits, _mm256_and_si256(units, low3));
        __m256i found = _mm256_and_si256(bytes, wanted);
        if (_mm256_testz_si256(found, found)) continue;
        // Packing has left the quarters as 0, 2, 1, 3.
        found = _mm256_permute4x64_epi64(_mm256_cmpeq_epi8(found, _mm256_setzero_si256()), 0xD8);
        return i +
               static_cast<std::size_t>(std::countr_one(static_cast<unsigned>(_mm256_movemask_epi8(found))));
    }
    return findMemberSingly(text, static_cast<std::size_t>(place - begin), text.size(), bitmap);
}

#endif

}  // namespace

std::size_t findUnit(Units text, unichar unit) {
    const Units8 wanted = vectorOf(unit);
    return findFirst(
        text, [=](Units8 eight) { return eight == wanted; }, [=](unichar other) { return other == unit; });
}

std::size_t findEither(Units text, unichar one, unichar other) {
    const Units8 ones = vectorOf(one), others = vectorOf(other);
    return findFirst(
        text, [=](Units8 eight) { return (eight == ones) | (eight == others); },
        [=](unichar unit) { return unit == one || unit == other; });
}

std::size_t findAbove(Units text, unichar limit) {
    const Units8 most = vectorOf(limit);
    return findFirst(
        text, [=](Units8 eight) { return eight > most; }, [=](unichar unit) { return unit > limit; });
}

std::size_t findMember(Units text, const std::uint8_t* bitmap) {
#ifdef PELVOR_HAS_WIDE_FORMS
    if (usesWideInstructions()) return findMemberWide(text, bitmap);
#endif
    return findMemberSingly(text, 0, text.size(), bitmap);
}

std::uint16_t asciiLetters(const unichar* units) {
    auto areLetters = [](Units8 eight) {
        return (eight | vectorOf(u' ')) - vectorOf(u'a') < vectorOf(u'\x1A');
    };
    return static_cast<std::uint16_t>(bitsOf(areLetters(loadUnits(units)), areLetters(loadUnits(units + 8))));
}

MemberFinder::MemberFinder(NSCharacterSet* set) : _set(set) {
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
        from = findMemberSingly(text, from, near, _bitmap);
        return from < near ? from : from + findMember(text.substr(from), _bitmap);
    }
    auto stops = [this](unichar unit) { return isSurrogate(unit) || isMember(_bitmap, unit); };
    while (from < text.size() && !stops(text[from])) ++from;
    return from;
}

std::size_t MemberFinder::copyOthers(std::u16string_view text, unichar* to) const {
    std::size_t count = 0;
    for (unichar unit : text) {
        to[count] = unit;
        count += !isMember(_bitmap, unit);
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
