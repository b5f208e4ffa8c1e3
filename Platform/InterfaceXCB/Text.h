// SPDX-License-Identifier: Apache-2.0
// Texts of other programs and of keys in UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

std::u16string utf16(char32_t character);
/// Each byte that is part of no character becomes U+FFFD.
std::u16string utf16(std::string_view utf8);

}  // namespace pelvor
