// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Text.h"

#include <array>
#include <locale>

namespace pelvor {

namespace {

struct Decoder : std::codecvt<char16_t, char8_t, std::mbstate_t> {};

}  // namespace

std::u16string utf16(char32_t character) {
    if (character >= 0xD800 && character < 0xE000) return u"\uFFFD";
    if (character < 0x10000) return {static_cast<char16_t>(character)};
    if (character > 0x10FFFF) return u"\uFFFD";
    character -= 0x10000;
    return {static_cast<char16_t>(0xD800 + (character >> 10)),
            static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
}

std::u16string utf16(std::string_view utf8) {
    static const Decoder decoder;
    std::u16string text;
    const auto* next = reinterpret_cast<const char8_t*>(utf8.data());
    const char8_t* const end = next + utf8.size();
    while (next < end) {
        std::array<char16_t, 256> units;
        char16_t* unitsEnd = units.data();
        std::mbstate_t state{};
        const char8_t* const start = next;
        const auto result =
            decoder.in(state, start, end, next, units.data(), units.data() + units.size(), unitsEnd);
        text.append(units.data(), unitsEnd);
        if (result == std::codecvt_base::error || next == start) {
            text += u'\uFFFD';
            ++next;
        }
    }
    return text;
}

}  // namespace pelvor
