// SPDX-License-Identifier: Apache-2.0
#include "Private/ByteSearch.h"

#include <bit>
#include <cstring>

#include "Shared/SequenceSearch.h"
#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

namespace pelvor {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool standsAt(Bytes bytes, std::size_t place, Bytes pattern) {
    return std::memcmp(bytes.data() + place, pattern.data(), pattern.size()) == 0;
}

std::size_t findPlain(Bytes bytes, Bytes pattern, std::size_t from, SearchEffort effort) {
    for (std::size_t i = from; i + pattern.size() <= bytes.size(); ++i) {
        std::size_t starts = bytes.size() - pattern.size() + 1 - i;
        auto* hit = static_cast<const std::uint8_t*>(std::memchr(bytes.data() + i, pattern[0], starts));
        if (!hit) return kNoPlace;
        i = static_cast<std::size_t>(hit - bytes.data());
        if (standsAt(bytes, i, pattern)) return i;
        if (effort.exceeds(i)) return findWithTable(bytes, pattern, i + 1);
    }
    return kNoPlace;
}

#ifdef PELVOR_HAS_WIDE_FORMS

// Compares where the pattern's first and last byte stand, 32 places at a time.
PELVOR_WIDE std::size_t findWide(Bytes bytes, Bytes pattern) {
    SearchEffort effort(pattern.size());
    const std::size_t distance = pattern.size() - 1;
    const __m256i first = _mm256_set1_epi8(static_cast<char>(pattern.front()));
    const __m256i last = _mm256_set1_epi8(static_cast<char>(pattern.back()));
    std::size_t i = 0;
    for (; i + distance + 32 <= bytes.size(); i += 32) {
        auto* place = reinterpret_cast<const __m256i*>(bytes.data() + i);
        auto* behind = reinterpret_cast<const __m256i*>(bytes.data() + i + distance);
        __m256i hits = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(place), first),
                                        _mm256_cmpeq_epi8(_mm256_loadu_si256(behind), last));
        for (auto mask = static_cast<unsigned>(_mm256_movemask_epi8(hits)); mask; mask &= mask - 1) {
            std::size_t start = i + static_cast<std::size_t>(std::countr_zero(mask));
            if (standsAt(bytes, start, pattern)) return start;
            if (effort.exceeds(start)) return findWithTable(bytes, pattern, start + 1);
        }
    }
    return findPlain(bytes, pattern, i, effort);
}

#else

std::size_t findWide(Bytes bytes, Bytes pattern) {
    return findPlain(bytes, pattern, 0, SearchEffort(pattern.size()));
}

#endif

}  // namespace

std::size_t findBytes(Bytes bytes, Bytes pattern, WideInstructions wide) {
    if (pattern.empty() || pattern.size() > bytes.size()) return kNoPlace;
    if (wide == WideInstructions::present && pattern.size() > 1) return findWide(bytes, pattern);
    return findPlain(bytes, pattern, 0, SearchEffort(pattern.size()));
}

}  // namespace pelvor
