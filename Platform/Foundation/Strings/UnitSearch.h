// SPDX-License-Identifier: Apache-2.0
// Finding units in units, bit for bit; for Foundation's own sources.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace pelvor {

inline constexpr std::size_t kNoUnit = std::u16string_view::npos;

/// Where the needle first stands in the text; kNoUnit if nowhere or if it is empty. Time grows with the
/// length of the text whatever the texts are.
std::size_t findUnits(std::u16string_view text, std::u16string_view needle);
/// Where the needle last stands in the text.
std::size_t findLastUnits(std::u16string_view text, std::u16string_view needle);
/// The first place from `from` on with one of the units `first` at it and one of `last` at the distance after
/// it; kNoUnit if there is no such unit.
std::size_t findCandidate(std::u16string_view text, std::size_t from, const std::array<char16_t, 4>& first,
                          std::size_t distance, const std::array<char16_t, 4>& last);
/// How many units at the front are equal in both texts.
std::size_t commonPrefix(std::u16string_view a, std::u16string_view b);

}  // namespace pelvor
