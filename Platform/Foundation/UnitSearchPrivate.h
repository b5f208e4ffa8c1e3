// SPDX-License-Identifier: Apache-2.0
// Finding units in units, bit for bit; for Foundation's own sources.
#pragma once

#include <cstddef>
#include <string_view>

namespace pelvor {

inline constexpr std::size_t kNoUnit = std::u16string_view::npos;

/// Where the needle first stands in the text; kNoUnit if nowhere or if it is empty. Time grows with the
/// length of the text whatever the texts are.
std::size_t findUnits(std::u16string_view text, std::u16string_view needle);
/// Where the needle last stands in the text.
std::size_t findLastUnits(std::u16string_view text, std::u16string_view needle);
/// How many units at the front are the same in both.
std::size_t commonPrefix(std::u16string_view a, std::u16string_view b);

}  // namespace pelvor
