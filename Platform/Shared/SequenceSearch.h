// SPDX-License-Identifier: Apache-2.0
// Finding bytes in bytes and units in units.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "Shared/Vectors.h"

namespace pelvor {

inline constexpr std::size_t kNoPlace = SIZE_MAX;

/// Counts the items that a search by candidates compares in vain. Once there are more of them than items that
/// the search has passed, a search with a table is quicker.
class SearchEffort {
  public:
    explicit SearchEffort(std::size_t patternSize) : _step(patternSize) {}
    bool exceeds(std::size_t passed) {
        _spent += _step;
        return _spent > 8 * passed + 4096;
    }

  private:
    std::size_t _step;
    std::size_t _spent = 0;
};

/// The first place at or after `from` where the pattern, which is not empty, stands; kNoPlace if it stands
/// nowhere. The algorithm of Knuth, Morris and Pratt, which looks at no item twice.
template <class Sequence>
std::size_t findWithTable(Sequence text, Sequence pattern, std::size_t from) {
    std::vector<std::uint32_t> border(pattern.size() + 1, 0);
    for (std::size_t i = 1, k = 0; i < pattern.size(); ++i) {
        while (k && pattern[i] != pattern[k]) k = border[k];
        if (pattern[i] == pattern[k]) ++k;
        border[i + 1] = static_cast<std::uint32_t>(k);
    }
    std::size_t matched = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
        while (matched && text[i] != pattern[matched]) matched = border[matched];
        if (text[i] == pattern[matched]) ++matched;
        if (matched == pattern.size()) return i + 1 - matched;
    }
    return kNoPlace;
}

/// At which of the sixteen places from `place` on `first` stands, and `last` so many places behind it: bit i
/// for place i.
inline unsigned pairsAt(const std::uint8_t* place, std::size_t distance, Bytes16 first, Bytes16 last) {
    return bitsOf((loadBytes(place) == first) & (loadBytes(place + distance) == last));
}
inline unsigned pairsAt(const char16_t* place, std::size_t distance, Units8 first, Units8 last) {
    auto pairs = [&](const char16_t* eight) {
        return (loadUnits(eight) == first) & (loadUnits(eight + distance) == last);
    };
    return bitsOf(pairs(place), pairs(place + 8));
}

/// The first place in the text where the pattern stands; kNoPlace if it stands nowhere or is empty. Searches
/// the first and the last item of the pattern together. The time is proportional to the length of the text,
/// whatever text and pattern are.
template <class Item>
std::size_t findSequence(std::span<const Item> text, std::span<const Item> pattern) {
    if (pattern.empty() || pattern.size() > text.size()) return kNoPlace;
    auto standsAt = [&](std::size_t place) {
        return std::memcmp(text.data() + place, pattern.data(), pattern.size_bytes()) == 0;
    };
    const std::size_t distance = pattern.size() - 1, starts = text.size() - distance;
    const auto first = vectorOf(pattern.front()), last = vectorOf(pattern.back());
    SearchEffort effort(pattern.size());
    std::size_t i = 0;
    for (; i + 32 <= starts; i += 32) {
        const Item* block = text.data() + i;
        unsigned pairs = pairsAt(block, distance, first, last) | pairsAt(block + 16, distance, first, last)
                                                                     << 16;
        for (; pairs; pairs &= pairs - 1) {
            std::size_t place = i + static_cast<std::size_t>(std::countr_zero(pairs));
            if (standsAt(place)) return place;
            if (effort.exceeds(place)) return findWithTable(text, pattern, place + 1);
        }
    }
    for (; i < starts; ++i)
        if (text[i] == pattern.front() && standsAt(i)) return i;
    return kNoPlace;
}

}  // namespace pelvor
