// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Text.h"

namespace pelvor {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Decoded {
    char32_t character;
    std::size_t length;  ///< in bytes
};

/// The character at the front of bytes, of which there is one at least.
Decoded decoded(std::string_view bytes) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned char first = byte(0);
    if (first < 0x80) return {first, 1};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC0 || first > 0xF7 || bytes.size() < length) return {kReplacement, 1};
    char32_t character = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {kReplacement, 1};
        character = character << 6 | (byte(i) & 0x3FU);
    }
    const bool isHalf = character >= 0xD800 && character < 0xE000;
    if (character < kLeast[length] || character > 0x10FFFF || isHalf) return {kReplacement, 1};
    return {character, length};
}

}  // namespace

std::u16string utf16(char32_t character) {
    const bool isHalf = character >= 0xD800 && character < 0xE000;
    if (isHalf || character > 0x10FFFF) character = kReplacement;
    if (character < 0x10000) return {static_cast<char16_t>(character)};
    character -= 0x10000;
    return {static_cast<char16_t>(0xD800 + (character >> 10)),
            static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
}

std::u16string utf16(std::string_view utf8) {
    std::u16string text;
    while (!utf8.empty()) {
        const Decoded next = decoded(utf8);
        text += utf16(next.character);
        utf8.remove_prefix(next.length);
    }
    return text;
}

}  // namespace pelvor
