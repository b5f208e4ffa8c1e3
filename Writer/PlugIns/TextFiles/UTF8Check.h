// SPDX-License-Identifier: Apache-2.0
// Tells whether bytes are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pelvor {

inline std::uint8_t byteAt(std::string_view bytes, std::size_t place) {
    return static_cast<std::uint8_t>(bytes[place]);
}
inline bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }
/// How many bytes a character has that begins with this byte; 1 for a byte with which no character begins.
inline std::size_t lengthAfterLead(std::uint8_t lead) {
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
}

/// Whether the bytes are UTF-8, from the first character to the last: no overlong forms, no halves of pairs,
/// nothing above U+10FFFF, nothing cut off.
bool isUTF8(std::string_view bytes);

/// Checks one character at a time, as `isUTF8` does where the processor lacks the instructions for more.
bool isUTF8Plainly(std::string_view bytes);

}  // namespace pelvor
