// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/UnitSearch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "Shared/SequenceSearch.h"
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace pelvor {
namespace {

using Units = std::u16string_view;

bool standsAt(const char16_t* text, Units needle) {
    return std::memcmp(text, needle.data(), needle.size() * sizeof(char16_t)) == 0;
}

std::size_t findScalar(Units text, Units needle, std::size_t from, SearchEffort& effort) {
    for (std::size_t i = from; i + needle.size() <= text.size(); ++i) {
        if (text[i] != needle[0]) continue;
        if (standsAt(text.data() + i, needle)) return i;
        if (effort.exceeds(i)) return findWithTable(text, needle, i + 1);
    }
    return kNoUnit;
}

#ifdef __SSE2__

__m128i load(const char16_t* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }

// Which of the 16 units from `units` on are `first` where those at `distance` are `last`: one bit each.
unsigned candidates(const char16_t* units, std::size_t distance, __m128i first, __m128i last) {
    __m128i low =
        _mm_and_si128(_mm_cmpeq_epi16(load(units), first), _mm_cmpeq_epi16(load(units + distance), last));
    __m128i high = _mm_and_si128(_mm_cmpeq_epi16(load(units + 8), first),
                                 _mm_cmpeq_epi16(load(units + 8 + distance), last));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

std::size_t find(Units text, Units needle) {
    SearchEffort effort(needle.size());
    std::size_t distance = needle.size() - 1, i = 0;
    const __m128i first = _mm_set1_epi16(static_cast<short>(needle.front()));
    const __m128i last = _mm_set1_epi16(static_cast<short>(needle.back()));
    for (; i + distance + 16 <= text.size(); i += 16) {
        unsigned mask = candidates(text.data() + i, distance, first, last);
        for (; mask; mask &= mask - 1) {
            std::size_t place = i + static_cast<std::size_t>(std::countr_zero(mask));
            if (standsAt(text.data() + place, needle)) return place;
            if (effort.exceeds(place)) return findWithTable(text, needle, place + 1);
        }
    }
    return findScalar(text, needle, i, effort);
}

#else

std::size_t find(Units text, Units needle) {
    SearchEffort effort(needle.size());
    return findScalar(text, needle, 0, effort);
}

#endif

}  // namespace

std::size_t findUnits(Units text, Units needle) {
    if (needle.empty() || needle.size() > text.size()) return kNoUnit;
    return find(text, needle);
}

namespace {

using Spellings = std::array<char16_t, 4>;

bool isOneOf(const Spellings& spellings, char16_t unit) {
    return std::find(spellings.begin(), spellings.end(), unit) != spellings.end();
}

#ifdef __SSE2__

// Which of the eight units are one of four.
class SpellingMask {
  public:
    explicit SpellingMask(const Spellings& spellings) {
        for (std::size_t i = 0; i < spellings.size(); ++i)
            _units[i] = _mm_set1_epi16(static_cast<short>(spellings[i]));
    }
    __m128i operator()(const char16_t* text) const {
        __m128i units = load(text);
        return _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi16(units, _units[0]), _mm_cmpeq_epi16(units, _units[1])),
            _mm_or_si128(_mm_cmpeq_epi16(units, _units[2]), _mm_cmpeq_epi16(units, _units[3])));
    }

  private:
    __m128i _units[4];
};

#endif

}  // namespace

std::size_t findCandidate(Units text, std::size_t from, const Spellings& first, std::size_t distance,
                          const Spellings& last) {
    std::size_t i = from;
#ifdef __SSE2__
    const SpellingMask isFirst(first), isLast(last);
    for (; i + distance + 8 <= text.size(); i += 8) {
        __m128i both = _mm_and_si128(isFirst(text.data() + i), isLast(text.data() + i + distance));
        if (auto mask = static_cast<unsigned>(_mm_movemask_epi8(both)))
            return i + static_cast<std::size_t>(std::countr_zero(mask)) / 2;
    }
#endif
    for (; i + distance < text.size(); ++i)
        if (isOneOf(first, text[i]) && isOneOf(last, text[i + distance])) return i;
    return kNoUnit;
}

std::size_t findLastUnits(Units text, Units needle) {
    if (needle.empty() || needle.size() > text.size()) return kNoUnit;
    SearchEffort effort(needle.size());
    for (std::size_t i = text.size() - needle.size() + 1; i-- > 0;) {
        if (text[i] != needle[0]) continue;
        if (standsAt(text.data() + i, needle)) return i;
        if (!effort.exceeds(text.size() - i)) continue;
        std::u16string backText(
            text.rbegin() + static_cast<std::ptrdiff_t>(text.size() - i - needle.size() + 1), text.rend());
        std::u16string backNeedle(needle.rbegin(), needle.rend());
        std::size_t place = findWithTable(backText, backNeedle, 0);
        return place == kNoUnit ? kNoUnit : backText.size() - place - needle.size();
    }
    return kNoUnit;
}

std::size_t commonPrefix(Units a, Units b) {
    std::size_t size = std::min(a.size(), b.size()), i = 0;
    for (; i + 4 <= size; i += 4) {
        std::uint64_t x, y;
        std::memcpy(&x, a.data() + i, sizeof x);
        std::memcpy(&y, b.data() + i, sizeof y);
        if (x != y) break;
    }
    while (i < size && a[i] == b[i]) ++i;
    return i;
}

}  // namespace pelvor
