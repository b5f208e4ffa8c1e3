// SPDX-License-Identifier: Apache-2.0
// A change of a text, as the user writes it.
#pragma once

#include <optional>

#include "Foundation/NSString.h"

namespace pelvor {

/// The text that takes the place of a range. Positions and lengths count UTF-16 units.
struct TextEdit {
    NSRange range;
    Retained<NSString> text;
};

/// The greatest number that a user may write.
inline constexpr NSUInteger kGreatestTextPosition = 999'999'999;
/// The number that the text stands for; no value unless the text consists of digits and the number is at most
/// kGreatestTextPosition.
std::optional<NSUInteger> textPositionOf(NSString* text);

/// Reads "insert POSITION TEXT", "delete POSITION LENGTH" or "replace POSITION LENGTH TEXT"; no value for any
/// other line. The text goes on to the end of the line and is written as in TextEscapes.h.
std::optional<TextEdit> textEditOf(NSString* line);

}  // namespace pelvor
