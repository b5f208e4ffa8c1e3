// SPDX-License-Identifier: Apache-2.0
// Finding units in units, bit for bit; for Foundation's own sources.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace pelvor {

inline constexpr std::size_t kNoUnit = std::u16string_view::npos;

/// The first place in the text where the needle stands; kNoUnit if it stands nowhere or is empty. The time is
/// proportional to the length of the text, whatever the texts are.
std::size_t findUnits(std::u16string_view text, std::u16string_view needle);
/// The last place in the text where the needle stands.
std::size_t findLastUnits(std::u16string_view text, std::u16string_view needle);
/// The first place from `from` on where one of the units `first` stands, and one of the units `last` at the
/// distance behind it; kNoUnit if there is no such place.
std::size_t findCandidate(std::u16string_view text, std::size_t from, const std::array<char16_t, 4>& first,
                          std::size_t distance, const std::array<char16_t, 4>& last);
/// How many units at the front are equal in both texts.
std::size_t commonPrefix(std::u16string_view a, std::u16string_view b);

}  // namespace pelvor
