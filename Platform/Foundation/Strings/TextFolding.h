// SPDX-License-Identifier: Apache-2.0
// Case folding, and which units can be written in several ways.
#pragma once

#include <bitset>
#include <string>
#include <string_view>

namespace pelvor {

/// The active units: they can make two unlike texts equivalent, or make the order of texts differ from the
/// order of their units. Text without active units is equivalent only to itself, and may be cut anywhere
/// between pairs.
class ActiveUnits {
  public:
    /// Units that composed text does not have, or that may join with the unit before them.
    static const ActiveUnits& plain();
    /// Where case does not count: also units that fold to several code points, and the pairs that fold.
    static const ActiveUnits& folding();

    bool has(char16_t unit) const { return unit >= 0x80 && _units[unit]; }
    bool hasAny(std::u16string_view text) const;

  private:
    enum class Folding : bool { ignored, counted };

    ActiveUnits(std::u16string_view pattern, Folding folding);

    std::bitset<0x10000> _units;
};

/// The unit folded by itself, or the unit if it folds to several.
char16_t foldOtherUnit(char16_t unit);
inline char16_t foldUnit(char16_t unit) {
    if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit;
    return foldOtherUnit(unit);
}

/// Each code point folded by itself, without a change of length.
std::u16string simpleFold(std::u16string_view text);
/// Folded in full: "ß" as "ss".
std::u16string fullFold(std::u16string_view text);

}  // namespace pelvor
