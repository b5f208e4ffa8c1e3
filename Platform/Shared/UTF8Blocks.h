// SPDX-License-Identifier: Apache-2.0
// Decoding UTF-8 many bytes at a time: what all decoders of UTF-8 begin with.
#pragma once

#include <cstddef>

#include "Runtime/Export.h"

namespace pelvor {

/// Which characters a decoder takes.
enum class UTF8Rule : bool {
    strict,   ///< those of well-formed UTF-8
    lenient,  ///< also overlong forms of two and three bytes, and halves of surrogate pairs
};

/// The bytes that are still to be decoded, and the room for their units.
struct UTF8Work {
    const unsigned char* in;
    const unsigned char* inEnd;
    char16_t* out;
    char16_t* outEnd;

    /// Whether there are so many bytes, and room for so many units.
    bool hasBoth(std::ptrdiff_t count) const { return inEnd - in >= count && outEnd - out >= count; }
};

/// With less than this of both, `decodeUTF8Blocks` does nothing.
inline constexpr std::ptrdiff_t kEnoughForUTF8Blocks = 24;

/// Decodes whole characters, the first of which begins at `in`, and moves `in` and `out` behind them. Stops
/// near the end of the bytes or of the room, and before what the rule does not take; what stands there is for
/// the caller to decode. The room behind `out` may be written to.
PELVOR_EXPORT void decodeUTF8Blocks(UTF8Work& work, UTF8Rule rule);

/// The part of `decodeUTF8Blocks` that wide instructions do.
void decodeUTF8BlocksWidely(UTF8Work& work, UTF8Rule rule);

}  // namespace pelvor
