// SPDX-License-Identifier: Apache-2.0
// Code points and the units of UTF-16 that they are written as: one, or two halves of a pair.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelvor {

/// What stands in a text for something that is not text.
inline constexpr char16_t kReplacementCharacter = 0xFFFD;

constexpr bool isSupplementary(std::uint32_t codepoint) { return codepoint > 0xFFFF; }

constexpr bool isHighSurrogate(std::uint32_t unit) { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(std::uint32_t unit) { return (unit & 0xFFFFFC00) == 0xDC00; }
/// Whether a unit, or a code point, is half a pair of either kind.
constexpr bool isSurrogate(std::uint32_t unit) { return (unit & 0xFFFFF800) == 0xD800; }

/// The halves of a code point above 0xFFFF; one above 0x10FFFF loses its upper bits.
constexpr char16_t highHalfOf(std::uint32_t codepoint) {
    return static_cast<char16_t>(((codepoint - 0x10000) & 0xFFC00) >> 10 | 0xD800);
}
constexpr char16_t lowHalfOf(std::uint32_t codepoint) {
    return static_cast<char16_t>((codepoint & 0x3FF) | 0xDC00);
}

constexpr std::uint32_t codepointOfPair(char16_t high, char16_t low) {
    return ((high & 0x3FFu) << 10 | (low & 0x3FFu)) + 0x10000;
}

/// Writes the code point's one or two units and returns the place after them.
constexpr char16_t* writeCodepoint(std::uint32_t codepoint, char16_t* units) {
    if (!isSupplementary(codepoint)) {
        *units++ = static_cast<char16_t>(codepoint);
        return units;
    }
    *units++ = highHalfOf(codepoint);
    *units++ = lowHalfOf(codepoint);
    return units;
}

/// Appends the code point's one or two units.
inline void appendCodepoint(std::u16string& units, std::uint32_t codepoint) {
    if (isSupplementary(codepoint)) units += highHalfOf(codepoint);
    units += isSupplementary(codepoint) ? lowHalfOf(codepoint) : static_cast<char16_t>(codepoint);
}

constexpr std::size_t unitCount(char32_t codepoint) { return isSupplementary(codepoint) ? 2 : 1; }

/// Whether the index lies between the halves of a pair; false at both ends of the text.
constexpr bool splitsPair(std::u16string_view text, std::size_t index) {
    return index > 0 && index < text.size() && isLowSurrogate(text[index]) &&
           isHighSurrogate(text[index - 1]);
}

/// The code point that begins at the index; a lone half is itself.
constexpr char32_t codePointAt(std::u16string_view text, std::size_t index) {
    return splitsPair(text, index + 1) ? codepointOfPair(text[index], text[index + 1]) : text[index];
}

}  // namespace pelvor
