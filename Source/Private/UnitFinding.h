// SPDX-License-Identifier: Apache-2.0
// Where one of two units, or a member of a set, comes next in a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "Foundation/NSRange.h"

namespace pelvor {

class NSCharacterSet;

/// The first place in [place, end) with one of the units; `end` without them.
const unichar* findEither(const unichar* place, const unichar* end, unichar one, unichar other);

/// Which of sixteen units are letters of ASCII: bit i for unit i.
std::uint16_t asciiLetters(const unichar* units);

/// A place in a text; at the text's end and empty for none.
struct UnitMatch {
    std::size_t location;
    std::size_t length;
};

/// Finds members of a set by code points: a pair is one character, never two halves.
class MemberFinder {
  public:
    /// Raises NSInvalidArgumentException for no set, which must not change meanwhile.
    explicit MemberFinder(NSCharacterSet* set);

    /// The first member at or after the place.
    UnitMatch find(std::u16string_view text, std::size_t from) const;

    /// Whether all members are single units, none of them half of a pair.
    bool hasPlainUnitsOnly() const { return _hasPlainUnitsOnly; }
    /// Copies the units that are no members, of a set with plain units only; answers how many there are. `to`
    /// has room for all.
    std::size_t copyOthers(std::u16string_view text, unichar* to) const;

  private:
    std::size_t firstStop(std::u16string_view text, std::size_t from) const;

    NSCharacterSet* _set;
    const std::uint8_t* _bitmap;
    bool _hasPlainUnitsOnly;
};

}  // namespace pelvor
