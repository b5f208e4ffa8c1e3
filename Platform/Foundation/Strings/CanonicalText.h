// SPDX-License-Identifier: Apache-2.0
// Comparing text up to canonical equivalence and case, and code points; for Foundation's own sources.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

/// Compares as the options say: case-insensitive, literal, numeric. Text that is not compared literally is
/// ordered by the units of its composed form.
NSComparisonResult compareText(std::u16string_view a, std::u16string_view b, NSStringCompareOptions options);

/// The code point that begins at the index; a lone half is itself.
inline char32_t codePointAt(std::u16string_view text, std::size_t index) {
    char32_t unit = text[index];
    if ((unit & 0xFC00) != 0xD800 || index + 1 == text.size()) return unit;
    char32_t next = text[index + 1];
    return (next & 0xFC00) == 0xDC00 ? (unit << 10) + next - ((0xD800 << 10) + 0xDC00 - 0x10000) : unit;
}

inline std::size_t unitCount(char32_t codePoint) { return codePoint > 0xFFFF ? 2 : 1; }

/// Whether the index lies between the halves of a pair.
inline bool splitsPair(std::u16string_view text, std::size_t index) {
    return index > 0 && index < text.size() && (text[index] & 0xFC00) == 0xDC00 &&
           (text[index - 1] & 0xFC00) == 0xD800;
}

}  // namespace pelvor
