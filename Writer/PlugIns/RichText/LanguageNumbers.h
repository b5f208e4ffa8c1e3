// SPDX-License-Identifier: Apache-2.0
// The numbers that rich text files have for languages.
#pragma once

#include <cstdint>
#include <string_view>

namespace pelvor {

/// "en-GB" for 2057, "en" for 9; "" for an unknown number.
std::string_view languageOfNumber(std::int32_t number);
/// 0 for an unknown name.
std::int32_t numberOfLanguage(std::string_view name);

}  // namespace pelvor
