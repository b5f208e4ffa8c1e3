// SPDX-License-Identifier: Apache-2.0
// The numbers that rich text files have for languages.
#pragma once

#include <cstdint>
#include <string_view>

namespace pelvor {

/// "en-GB" for 2057, "en" for 9; "" for an unknown number.
std::u16string_view languageOfNumber(std::int32_t number);
/// The number of the language of that name, "pt-BR" or "pt_BR". A name without a region has the number of its
/// usual region, that of "fr-FR" for "fr", and a name with more parts than are known that of the known ones:
/// that of "de-CH" for "de-CH-1901". 0 for an unknown language.
std::int32_t numberOfLanguage(std::u16string_view name);

/// Whether the text could be the name of a language: up to 35 letters, digits, hyphens and underscores.
bool isLanguageName(std::u16string_view text);

/// The number of text whose language is unknown.
inline constexpr std::int32_t kUnknownLanguage = 1024;

}  // namespace pelvor
