// SPDX-License-Identifier: Apache-2.0
// A string as somebody else's class may be: it has only the three primitives, and its units stand nowhere in
// memory.
#pragma once

#include "PBRepeatString.h"

namespace pelvor {

inline NSString* inPieces(std::u16string_view text) {
    auto length = static_cast<NSUInteger>(text.size());
    return PBRepeatString::initWithString_length(NSString::of(text), length).autorelease();
}
inline NSString* inPieces(const std::string& text) { return inPieces(NSString::ofUTF8(text)->toUTF16()); }

}  // namespace pelvor
