// SPDX-License-Identifier: Apache-2.0
// What the user sees as one character: a letter with its marks, a syllable, an emoji of several code points.
#pragma once

#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

/// The composed character around the index, which is inside the string.
NSRange composedCharacterAt(NSString* string, NSUInteger index);

/// Whether composed characters end and begin at the index, which may be that of either end of the text.
bool isComposedCharacterBound(std::u16string_view text, std::size_t index);

}  // namespace pelvor
