// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/EastAsian.h"

#include "Text/Fonts/FontCatalogue.h"

namespace pelvor {

EastAsian eastAsianLanguage(std::string_view tag) {
    const std::string name = lowerCased(tag);
    const std::string_view language = std::string_view(name).substr(0, name.find('-'));
    if (language == "ja") return EastAsian::japanese;
    if (language == "ko") return EastAsian::korean;
    if (language != "zh") return EastAsian::unknown;
    auto has = [&name](const char* part) { return name.find(part) != std::string::npos; };
    if (has("-hk") || has("-mo")) return EastAsian::hongKong;
    return has("-tw") || has("-hant") ? EastAsian::taiwanese : EastAsian::chinese;
}

}  // namespace pelvor
