// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/UnitSearch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "Shared/SequenceSearch.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

bool standsAt(const char16_t* text, Units needle) {
    return std::memcmp(text, needle.data(), needle.size() * sizeof(char16_t)) == 0;
}

using Spellings = std::array<char16_t, 4>;

bool isOneOf(const Spellings& spellings, char16_t unit) {
    return std::find(spellings.begin(), spellings.end(), unit) != spellings.end();
}

// Tells which of eight units are one of four.
class SpellingTest {
  public:
    explicit SpellingTest(const Spellings& spellings) {
        for (std::size_t i = 0; i < spellings.size(); ++i) _units[i] = vectorOf(spellings[i]);
    }
    auto operator()(const char16_t* text) const {
        Units8 units = loadUnits(text);
        return (units == _units[0]) | (units == _units[1]) | (units == _units[2]) | (units == _units[3]);
    }

  private:
    Units8 _units[4];
};

}  // namespace

std::size_t findUnits(Units text, Units needle) { return findSequence<char16_t>(text, needle); }

std::size_t findCandidate(Units text, std::size_t from, const Spellings& first, std::size_t distance,
                          const Spellings& last) {
    std::size_t i = from;
    const SpellingTest isFirst(first), isLast(last);
    for (; i + distance + 16 <= text.size(); i += 16) {
        auto pairs = [&](const char16_t* eight) { return isFirst(eight) & isLast(eight + distance); };
        if (unsigned bits = bitsOf(pairs(text.data() + i), pairs(text.data() + i + 8)))
            return i + static_cast<std::size_t>(std::countr_zero(bits));
    }
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
