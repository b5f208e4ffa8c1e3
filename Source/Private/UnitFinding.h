// SPDX-License-Identifier: Apache-2.0
// Where a unit, or a member of a set, comes next in a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"
#include "Runtime/Retained.h"

namespace pelvor {

class NSCharacterSet;

// The place of the first such unit in the text; the text's size if the text has no such unit.

std::size_t findUnit(std::u16string_view text, unichar unit);
std::size_t findEither(std::u16string_view text, unichar one, unichar other);
std::size_t findAbove(std::u16string_view text, unichar limit);
/// A member of a bitmap, in which unit c is bit c & 7 of byte c >> 3.
PELVOR_EXPORT std::size_t findMember(std::u16string_view text, const std::uint8_t* bitmap);

/// Which of sixteen units are letters of ASCII: bit i for unit i.
std::uint16_t asciiLetters(const unichar* units);

/// A place in a text. If nothing was found, the place is empty, at the end of the text.
struct UnitMatch {
    std::size_t location;
    std::size_t length;
};

/// Finds members of a set by code points: a pair is one character, never two halves.
class MemberFinder {
  public:
    /// The set must not change meanwhile.
    explicit MemberFinder(NSCharacterSet* set);

    /// The first member at or after the place.
    UnitMatch find(std::u16string_view text, std::size_t from) const;

    /// Whether all members are single units, and no member is half of a pair.
    bool hasPlainUnitsOnly() const { return _hasPlainUnitsOnly; }
    /// Copies the units that are no members, and returns their number; only where the set has plain units
    /// only. `to` has room for the whole text.
    std::size_t copyOthers(std::u16string_view text, unichar* to) const;

  private:
    std::size_t firstStop(std::u16string_view text, std::size_t from) const;

    Unretained<NSCharacterSet> _set;
    const std::uint8_t* _bitmap;
    bool _hasPlainUnitsOnly;
};

}  // namespace pelvor
