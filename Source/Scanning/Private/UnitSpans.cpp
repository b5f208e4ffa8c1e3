// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/UnitSpans.h"

#include <bit>
#include <cstring>

#include "Scanning/Private/WideInstructions.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace pelvor {
namespace {

// What compilers turn into the machine's vectors.
using Units8 = std::uint16_t __attribute__((vector_size(16)));
using Words2 = std::uint64_t __attribute__((vector_size(16)));

Units8 load(const unichar* from) {
    Units8 value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

Units8 eightOf(unichar unit) { return Units8{unit, unit, unit, unit, unit, unit, unit, unit}; }

template <class Mask>
bool isAnySet(Mask mask) {
    auto words = reinterpret_cast<Words2>(mask);
    return (words[0] | words[1]) != 0;
}

// The first place whose unit the test finds; `testBlock` tells by a mask which of eight it does.
template <class TestBlock, class Test>
unichar* findInBlocks(unichar* place, unichar* end, TestBlock testBlock, Test test) {
    for (; end - place >= 32; place += 32) {
        auto found = testBlock(load(place)) | testBlock(load(place + 8)) | testBlock(load(place + 16)) |
                     testBlock(load(place + 24));
        if (isAnySet(found)) break;
    }
    while (place < end && !test(*place)) ++place;
    return place;
}

bool isMember(const std::uint8_t* bitmap, unichar unit) { return bitmap[unit >> 3] >> (unit & 7) & 1; }

unichar* findMemberSingly(unichar* place, unichar* end, const std::uint8_t* bitmap) {
    while (place < end && !isMember(bitmap, *place)) ++place;
    return place;
}

#if defined(__x86_64__)
#define PELVOR_AVX2 __attribute__((target("avx2,bmi")))

PELVOR_AVX2 inline __m256i loadWide(const unichar* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

// Thirty-two units at a time, whose bytes look their bits up in the first sixteen bytes of the bitmap; blocks
// with units beyond ASCII go unit by unit.
PELVOR_AVX2 unichar* findMemberWide(unichar* place, unichar* end, const std::uint8_t* bitmap) {
    const __m256i table =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap)));
    const __m256i bits = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201u));
    const __m256i low4 = _mm256_set1_epi8(0x0F), low3 = _mm256_set1_epi8(0x07);
    const __m256i beyond = _mm256_set1_epi16(static_cast<short>(0xFF80));
    for (; end - place >= 32; place += 32) {
        __m256i first = loadWide(place), second = loadWide(place + 16);
        if (!_mm256_testz_si256(_mm256_or_si256(first, second), beyond)) {
            unichar* found = findMemberSingly(place, place + 32, bitmap);
            if (found < place + 32) return found;
            continue;
        }
        __m256i units = _mm256_packus_epi16(first, second);
        __m256i bytes = _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi16(units, 3), low4));
        __m256i wanted = _mm256_shuffle_epi8(bits, _mm256_and_si256(units, low3));
        __m256i found = _mm256_and_si256(bytes, wanted);
        if (_mm256_testz_si256(found, found)) continue;
        // Packing has left the quarters as 0, 2, 1, 3.
        found = _mm256_permute4x64_epi64(_mm256_cmpeq_epi8(found, _mm256_setzero_si256()), 0xD8);
        return place + std::countr_zero(~static_cast<unsigned>(_mm256_movemask_epi8(found)));
    }
    return findMemberSingly(place, end, bitmap);
}

PELVOR_AVX2 unichar* findPairWide(unichar* place, unichar* end, unichar first, unichar second,
                                  std::size_t distance) {
    const __m256i firsts = _mm256_set1_epi16(static_cast<short>(first));
    const __m256i seconds = _mm256_set1_epi16(static_cast<short>(second));
    for (; end - place >= 32; place += 32) {
        __m256i low = _mm256_and_si256(_mm256_cmpeq_epi16(loadWide(place), firsts),
                                       _mm256_cmpeq_epi16(loadWide(place + distance), seconds));
        __m256i high = _mm256_and_si256(_mm256_cmpeq_epi16(loadWide(place + 16), firsts),
                                        _mm256_cmpeq_epi16(loadWide(place + 16 + distance), seconds));
        __m256i either = _mm256_or_si256(low, high);
        if (_mm256_testz_si256(either, either)) continue;
        if (auto found = static_cast<unsigned>(_mm256_movemask_epi8(low)))
            return place + std::countr_zero(found) / 2;
        return place + 16 + std::countr_zero(static_cast<unsigned>(_mm256_movemask_epi8(high))) / 2;
    }
    return place;
}
#else
unichar* findMemberWide(unichar* place, unichar* end, const std::uint8_t* bitmap) {
    return findMemberSingly(place, end, bitmap);
}

unichar* findPairWide(unichar* place, unichar*, unichar, unichar, std::size_t) { return place; }
#endif

bool isWide() { return instructionsInUse() != Instructions::plain; }

}  // namespace

unichar* findUnit(unichar* begin, unichar* end, unichar unit) {
    Units8 wanted = eightOf(unit);
    return findInBlocks(
        begin, end, [wanted](Units8 block) { return block == wanted; },
        [unit](unichar other) { return other == unit; });
}

unichar* findAbove(unichar* begin, unichar* end, unichar limit) {
    Units8 most = eightOf(limit);
    return findInBlocks(
        begin, end, [most](Units8 block) { return block > most; },
        [limit](unichar other) { return other > limit; });
}

unichar* findMember(unichar* begin, unichar* end, const std::uint8_t* bitmap) {
    return isWide() ? findMemberWide(begin, end, bitmap) : findMemberSingly(begin, end, bitmap);
}

unichar* findPair(unichar* begin, unichar* end, unichar first, unichar second, std::size_t distance) {
    unichar* place = begin;
    if (isWide()) {
        place = findPairWide(begin, end, first, second, distance);
        if (end - place >= 32) return place;
    }
    for (; end - place >= 8; place += 8)
        if (isAnySet((load(place) == eightOf(first)) & (load(place + distance) == eightOf(second)))) break;
    while (place < end && (*place != first || place[distance] != second)) ++place;
    return place;
}

}  // namespace pelvor
