// SPDX-License-Identifier: Apache-2.0
// Finding bytes in bytes; for this library's own sources.
#pragma once

#include <cstdint>
#include <span>

#include "Private/WideInstructions.h"

namespace pelvor {

inline constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);

/// Where the pattern, of one byte or more, first stands in the bytes; kNoPlace if nowhere. Time grows with
/// the number of bytes whatever they are.
PELVOR_EXPORT std::size_t findBytes(std::span<const std::uint8_t> bytes,
                                    std::span<const std::uint8_t> pattern,
                                    WideInstructions wide = wideInstructions());

}  // namespace pelvor
