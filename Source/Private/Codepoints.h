// SPDX-License-Identifier: Apache-2.0
// Code points and the units that they are written as; for this library's own sources.
#pragma once

#include <cstdint>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

constexpr bool isSupplementary(std::uint32_t codepoint) { return codepoint > 0xFFFF; }

constexpr bool isHighSurrogate(unichar unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(unichar unit) { return (unit & 0xFC00) == 0xDC00; }

/// The halves of a code point above 0xFFFF; one above 0x10FFFF loses its upper bits.
constexpr unichar highHalfOf(std::uint32_t codepoint) {
    return static_cast<unichar>(((codepoint - 0x10000) & 0xFFC00) >> 10 | 0xD800);
}
constexpr unichar lowHalfOf(std::uint32_t codepoint) {
    return static_cast<unichar>((codepoint & 0x3FF) | 0xDC00);
}

constexpr std::uint32_t codepointOfPair(unichar high, unichar low) {
    return ((high & 0x3FFu) << 10 | (low & 0x3FFu)) + 0x10000;
}

/// Writes the code point's one or two units and answers the place after them.
constexpr unichar* writeCodepoint(std::uint32_t codepoint, unichar* units) {
    if (!isSupplementary(codepoint)) {
        *units++ = static_cast<unichar>(codepoint);
        return units;
    }
    *units++ = highHalfOf(codepoint);
    *units++ = lowHalfOf(codepoint);
    return units;
}

/// Raises NSInvalidArgumentException for a count without code points.
inline void requireCodepoints(const std::uint32_t* codepoints, NSUInteger count) {
    if (!codepoints && count)
        throw NSException(NSInvalidArgumentException, "a count was given without code points");
}

/// Raise NSRangeException for an index not below the count, or a range not inside it.
inline void requireIndexBelow(NSUInteger index, NSUInteger count) {
    if (index >= count) raiseException(NSRangeException, u"index (%d) beyond bounds (%d)"_ns, index, count);
}
inline void requireRangeInside(NSRange range, NSUInteger count) {
    if (!isRangeInside(range, count))
        raiseException(NSRangeException, u"range {%u, %u} beyond bounds (%u)"_ns, range.location,
                       range.length, count);
}

}  // namespace pelvor
