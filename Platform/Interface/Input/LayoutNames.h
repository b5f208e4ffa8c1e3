// SPDX-License-Identifier: Apache-2.0
// What keyboard layouts and their languages are called.
#pragma once

#include <cstdint>
#include <string>

namespace pelvor {

/// The name of a layout, "German (no dead keys)", in the user's language, as far as the system's catalogues
/// of the names of layouts have it.
std::string localizedLayoutName(const std::string& name);

/// "de" for "deu", "sr-Latn" for "srp-Latn"; "" for "".
std::string languageTag(const std::string& language);
/// The number of the script system that the language is usually written in, or that its tag names.
std::int32_t scriptSystemOfLanguage(const std::string& language);

}  // namespace pelvor
