// SPDX-License-Identifier: Apache-2.0
// Hexadecimal digits between bytes and units; for this library's own sources.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "Runtime/Export.h"

namespace pelvor {

/// Writes two lower-case digits a byte.
PELVOR_EXPORT void writeHex(std::span<const std::uint8_t> bytes, char16_t* units);

/// Reads an even number of digits, two for each byte; only the low eight bits of each unit count. Returns
/// false, with some bytes written, if a unit is no digit.
PELVOR_EXPORT bool readHex(std::u16string_view units, std::uint8_t* bytes);

/// The value of the digit that the unit's low eight bits are; 255 if they are no digit.
PELVOR_EXPORT std::uint8_t valueOfHexDigit(char16_t unit);

}  // namespace pelvor
