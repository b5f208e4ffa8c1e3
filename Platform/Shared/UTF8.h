// SPDX-License-Identifier: Apache-2.0
// UTF-8 to UTF-16 and back.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Runtime/Export.h"

namespace pelvor {

/// How many bytes, or units, at the front are below 0x80.
PELVOR_EXPORT std::size_t asciiPrefix(std::string_view bytes);
PELVOR_EXPORT std::size_t asciiPrefix(std::u16string_view units);

/// Writes each byte as a unit, and each unit's low half as a byte.
PELVOR_EXPORT void widen(std::string_view bytes, char16_t* units);
PELVOR_EXPORT void narrow(std::u16string_view units, char* bytes);

// MARK: From UTF-8

/// How many units the text has in UTF-16. For ill-formed UTF-8 this is an upper bound.
PELVOR_EXPORT std::size_t unitCountOfUTF8(std::string_view bytes);
/// How many units were written, and whether this was the whole text; if not, ill-formed bytes follow.
struct DecodedUTF8 {
    std::size_t unitCount;
    bool isValid;
};
/// Writes the units, for which there has to be as much room as `unitCountOfUTF8` says, or as there are bytes.
/// All of the room may be written to.
PELVOR_EXPORT DecodedUTF8 decodeUTF8(std::string_view bytes, std::span<char16_t> units);

/// No value for bytes that are not UTF-8.
PELVOR_EXPORT std::optional<std::u16string> unitsFromUTF8(std::string_view bytes);
/// Every ill-formed part becomes U+FFFD.
PELVOR_EXPORT std::u16string unitsFromUTF8Mending(std::string_view bytes);

// MARK: To UTF-8

/// What becomes of half a pair that stands alone.
enum class LoneHalf : bool { refused, replaced };

/// How many bytes of room `writeUTF8` needs for `unitCount` units.
constexpr std::size_t roomForUTF8(std::size_t unitCount) { return 3 * unitCount; }
/// Writes the text and returns the place behind it. A lone half is replaced by U+FFFD; if lone halves are
/// refused, the result is null.
PELVOR_EXPORT char* writeUTF8(std::u16string_view units, char* bytes, LoneHalf loneHalf);
/// Writes a single character, which may be a lone half.
inline char* writeUTF8(char32_t c, char* bytes) {
    auto put = [&bytes](unsigned mark, char32_t bits) { *bytes++ = static_cast<char>(mark | bits); };
    if (c < 0x80) {
        put(0, c);
        return bytes;
    }
    if (c < 0x800) {
        put(0xC0, c >> 6);
    } else {
        if (c < 0x10000) {
            put(0xE0, c >> 12);
        } else {
            put(0xF0, c >> 18);
            put(0x80, c >> 12 & 0x3F);
        }
        put(0x80, c >> 6 & 0x3F);
    }
    put(0x80, c & 0x3F);
    return bytes;
}

/// No value if there is a lone half of a pair.
PELVOR_EXPORT std::optional<std::string> utf8FromUnits(std::u16string_view units);
/// Lone halves become U+FFFD.
PELVOR_EXPORT std::string utf8FromUnitsMending(std::u16string_view units);

}  // namespace pelvor
