// SPDX-License-Identifier: Apache-2.0
// The languages that write one letter of Chinese origin in shapes of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Runtime/Export.h"

namespace pelvor {

enum class EastAsian : std::uint8_t { unknown, chinese, taiwanese, hongKong, japanese, korean };
inline constexpr std::size_t kEastAsianCount = 6;

/// The language of the tag, which is as in BCP 47; `unknown` for other languages and an empty tag.
PELVOR_EXPORT EastAsian eastAsianLanguage(std::string_view tag);

}  // namespace pelvor
