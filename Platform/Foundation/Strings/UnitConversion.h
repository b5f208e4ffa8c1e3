// SPDX-License-Identifier: Apache-2.0
// UTF-8 to UTF-16 and back; for Foundation's own sources.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pelvor {

/// How many bytes, or units, at the front are below 0x80.
std::size_t asciiPrefix(std::string_view bytes);
std::size_t asciiPrefix(std::u16string_view units);

/// Writes each byte as a unit, and each unit's low half as a byte.
void widen(std::string_view bytes, char16_t* units);
void narrow(std::u16string_view units, char* bytes);

/// How many units UTF-8 has; no fewer than it has where it is ill-formed, too.
std::size_t unitCountOfUTF8(std::string_view bytes);
/// How many units were written, and whether that was all; if not, ill-formed bytes follow.
struct DecodedUTF8 {
    std::size_t unitCount;
    bool isValid;
};
/// Writes the units: no more than `unitCountOfUTF8` says, and no more than there are bytes.
DecodedUTF8 decodeUTF8(std::string_view bytes, char16_t* units);

/// None for bytes that are not UTF-8.
std::optional<std::u16string> unitsFromUTF8(std::string_view bytes);
/// Every ill-formed part becomes U+FFFD.
std::u16string unitsFromUTF8Mending(std::string_view bytes);
/// None if there is a lone half of a pair.
std::optional<std::string> utf8FromUnits(std::u16string_view units);
/// Lone halves become U+FFFD.
std::string utf8FromUnitsMending(std::u16string_view units);

}  // namespace pelvor
