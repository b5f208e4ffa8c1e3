// SPDX-License-Identifier: Apache-2.0
// Finding text up to canonical equivalence and case.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

class ActiveUnits;

/// Finds one text, the needle, in others, as the options say: case-insensitive, literal, backwards, anchored.
/// The needle must outlive the finder. Where the options allow it, equal units are looked for first; text
/// that can be written in several ways is then searched by its decomposed characters.
class TextFinder {
  public:
    TextFinder(std::u16string_view needle, NSStringCompareOptions options);
    TextFinder(const TextFinder&) = delete;
    TextFinder& operator=(const TextFinder&) = delete;

    /// Where the needle stands in the text; {NSNotFound, 0} if it stands nowhere or is empty. See
    /// `rangeOfString_options_range` for what counts as a match.
    NSRange find(std::u16string_view text) const;

  private:
    using Units = std::u16string_view;

    bool has(NSStringCompareOptions option) const { return _options & option; }
    NSRange findPlain(Units text) const;
    std::size_t firstPlain(Units text) const;
    std::size_t firstFolded(Units text) const;
    std::size_t lastPlain(Units text) const;
    bool standsAt(Units text, std::size_t place) const;
    NSRange findByParts(Units text) const;
    NSRange findEquivalent(Units text) const;
    Units decidingPart(Units text, NSRange match) const;
    Units endOf(Units text, std::size_t size) const;

    NSStringCompareOptions _options;
    std::u16string _folded;
    Units _needle;                              // folded by units if case does not count
    const ActiveUnits* _active;                 // null for a literal search
    std::u32string _decomposed;                 // if the needle itself can be written in several ways
    std::array<char16_t, 4> _first{}, _last{};  // what folds to the needle's first, and last, unit
    bool _hasSpellings = false;
};

}  // namespace pelvor
