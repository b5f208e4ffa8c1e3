// SPDX-License-Identifier: Apache-2.0
// Tells whether bytes are UTF-8.
#pragma once

#include <string_view>

namespace pelvor {

/// Whether the bytes are UTF-8, from the first character to the last: no overlong forms, no halves of pairs,
/// nothing above U+10FFFF, nothing cut off.
bool isUTF8(std::string_view bytes);

/// The same a character at a time, as it is done where the processor lacks the instructions for more.
bool isUTF8Plainly(std::string_view bytes);

}  // namespace pelvor
