// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Preedit.h"

#include <algorithm>

namespace pelvor {

namespace {

constexpr std::uint32_t kHighlighted = 1 | 4;    // XIMReverse, XIMHighlight
constexpr std::size_t kGreatestCount = 1 << 14;  // nobody composes more before it becomes text

}  // namespace

void Preedit::clear() {
    _characters.clear();
    _caret = 0;
}

void Preedit::replace(std::size_t first, std::size_t length, std::u16string_view text,
                      std::span<const std::uint32_t> styles) {
    first = std::min(first, _characters.size());
    length = std::min(length, _characters.size() - first);
    std::vector<Character> added;
    for (std::size_t i = 0; i < text.size() && _characters.size() + added.size() < kGreatestCount;) {
        const bool isPair =
            (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
        const std::size_t count = isPair ? 2 : 1;
        const bool isHighlighted = added.size() < styles.size() && (styles[added.size()] & kHighlighted) != 0;
        added.push_back({std::u16string(text.substr(i, count)), isHighlighted});
        i += count;
    }
    const auto place = _characters.begin() + static_cast<std::ptrdiff_t>(first);
    _characters.insert(_characters.erase(place, place + static_cast<std::ptrdiff_t>(length)), added.begin(),
                       added.end());
}

Preedit::Shown Preedit::shown() const {
    Shown shown;
    for (std::size_t i = 0; i < _characters.size(); ++i) {
        const Character& character = _characters[i];
        if (i == _caret) shown.caret = shown.text.size();
        if (shown.spans.empty() || shown.spans.back().isHighlighted != character.isHighlighted)
            shown.spans.push_back({shown.text.size(), 0, character.isHighlighted});
        shown.text += character.units;
        shown.spans.back().length += character.units.size();
    }
    if (_caret >= _characters.size()) shown.caret = shown.text.size();
    return shown;
}

}  // namespace pelvor
