// SPDX-License-Identifier: Apache-2.0
// UTF-8 to UTF-16 in bulk, for the readers of property lists.
#pragma once

#include <cstddef>
#include <string_view>

namespace pelvor {

/// How many bytes at the front are ASCII.
std::size_t asciiPrefixLength(std::string_view bytes);
/// Writes bytes that are all ASCII as as many units.
void widenASCII(std::string_view bytes, char16_t* units);
/// What `decodeUTF8` read: how many units it wrote, and whether the bytes were UTF-8; if not, where they
/// ceased to be.
struct DecodedUTF8 {
    std::size_t unitCount;
    std::size_t byteCount;
    bool isValid;
};
/// Writes the text to `units`, which have room for one unit a byte. Surrogates, overlong forms and sequences
/// cut off are not UTF-8.
DecodedUTF8 decodeUTF8(std::string_view bytes, char16_t* units);

}  // namespace pelvor
