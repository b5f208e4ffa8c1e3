// SPDX-License-Identifier: Apache-2.0
#include "Scanning/UnitSpansPrivate.h"

#include <cstring>

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
// Thirty-two units at a time, whose bytes look their bits up in the first sixteen bytes of the bitmap; blocks
// with units beyond ASCII go unit by unit.
__attribute__((target("avx2"))) unichar* findMemberWide(unichar* place, unichar* end,
                                                        const std::uint8_t* bitmap) {
    const __m256i table =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap)));
    const __m256i bits = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201u));
    const __m256i low4 = _mm256_set1_epi8(0x0F), low3 = _mm256_set1_epi8(0x07);
    const __m256i beyond = _mm256_set1_epi16(static_cast<short>(0xFF80));
    for (; end - place >= 32; place += 32) {
        __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
        __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place + 16));
        if (!_mm256_testz_si256(_mm256_or_si256(first, second), beyond)) {
            unichar* found = findMemberSingly(place, place + 32, bitmap);
            if (found < place + 32) return found;
            continue;
        }
        __m256i units = _mm256_packus_epi16(first, second);
        __m256i bytes = _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi16(units, 3), low4));
        __m256i wanted = _mm256_shuffle_epi8(bits, _mm256_and_si256(units, low3));
        if (!_mm256_testz_si256(bytes, wanted)) break;
    }
    return findMemberSingly(place, end, bitmap);
}

bool hasWideInstructions() { return __builtin_cpu_supports("avx2"); }
#else
unichar* findMemberWide(unichar* place, unichar* end, const std::uint8_t* bitmap) {
    return findMemberSingly(place, end, bitmap);
}

bool hasWideInstructions() { return false; }
#endif

// Not known before the first call.
enum class Width : char { unknown, single, wide };
Width width = Width::unknown;

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
    // Tokens are short: most end here.
    for (int i = 0; i < 16; ++i, ++begin)
        if (begin == end || isMember(bitmap, *begin)) return begin;
    if (width == Width::unknown) useWideInstructions(true);
    return width == Width::wide ? findMemberWide(begin, end, bitmap) : findMemberSingly(begin, end, bitmap);
}

bool useWideInstructions(bool wanted) {
    width = wanted && hasWideInstructions() ? Width::wide : Width::single;
    return width == Width::wide;
}

}  // namespace pelvor
