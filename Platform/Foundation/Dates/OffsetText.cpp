// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Dates/OffsetText.h"

#include <cstdlib>

namespace pelvor {
namespace {

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

int digitsAt(std::u16string_view text, std::size_t place) {
    return (text[place] - u'0') * 10 + (text[place + 1] - u'0');
}

bool areDigits(std::u16string_view text, std::size_t place) {
    return place + 1 < text.size() && isDigit(text[place]) && isDigit(text[place + 1]);
}

}  // namespace

std::u16string offsetText(int seconds) {
    const int size = std::abs(seconds);
    std::u16string text(1, seconds < 0 ? u'-' : u'+');
    for (int part : {size / 3600, size / 60 % 60, size % 60}) {
        if (text.size() == 5 && part == 0) break;
        text += static_cast<char16_t>(u'0' + part / 10);
        text += static_cast<char16_t>(u'0' + part % 10);
    }
    return text;
}

std::size_t lengthOfOffset(std::u16string_view text) {
    if (text.size() < 2 || (text[0] != u'+' && text[0] != u'-') || !isDigit(text[1])) return 0;
    std::size_t length = areDigits(text, 1) ? 3 : 2;
    for (int part = 0; part < 2; ++part) {
        const bool hasColon = length < text.size() && text[length] == u':';
        if (length == 2 && !hasColon) break;
        const std::size_t digits = length + hasColon;
        if (!areDigits(text, digits)) break;
        length = digits + 2;
    }
    return length;
}

std::optional<int> offsetOfText(std::u16string_view text) {
    const std::size_t length = lengthOfOffset(text);
    if (length == 0 || length != text.size()) return std::nullopt;
    int seconds = 0, unit = 3600;
    for (std::size_t place = 1; place < length; place += 2, unit /= 60) {
        if (text[place] == u':') ++place;
        const bool isSingle = place == 1 && !areDigits(text, 1);
        const int part = isSingle ? text[place--] - u'0' : digitsAt(text, place);
        if (part > (unit == 3600 ? 23 : 59)) return std::nullopt;
        seconds += part * unit;
    }
    return text[0] == u'-' ? -seconds : seconds;
}

}  // namespace pelvor
