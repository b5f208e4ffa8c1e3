// SPDX-License-Identifier: Apache-2.0
// Texts that other programs on a display write: layouts, resources, and what input methods compose.
#include <cstdint>

#include "InterfaceXCB/Keyboard.h"
#include "InterfaceXCB/Preedit.h"
#include "InterfaceXCB/Screens.h"
#include "InterfaceXCB/Text.h"
#include "Require.h"

namespace {

using namespace pelvor;

bool isWellFormed(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isFirst = (text[i] & 0xFC00) == 0xD800;
        if (isFirst && (i + 1 == text.size() || (text[++i] & 0xFC00) != 0xDC00)) return false;
        if (!isFirst && (text[i] & 0xFC00) == 0xDC00) return false;
    }
    return true;
}

/// Each four bytes say what to replace, and by how many of the bytes behind them.
void compose(std::string_view bytes) {
    Preedit preedit;
    while (bytes.size() >= 4) {
        const auto number = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
        const std::size_t first = number(0), length = number(1), caret = number(2), count = number(3) % 32U;
        bytes.remove_prefix(4);
        const std::string_view text = bytes.substr(0, count);
        std::vector<std::uint32_t> styles(text.begin(),
                                          text.begin() + static_cast<std::ptrdiff_t>(text.size() / 2));
        bytes.remove_prefix(text.size());
        preedit.replace(first == 255 ? SIZE_MAX : first, length == 255 ? SIZE_MAX : length, utf16(text),
                        styles);
        preedit.setCaret(caret == 255 ? SIZE_MAX : caret);
        const Preedit::Shown shown = preedit.shown();
        require(isWellFormed(shown.text) && shown.caret <= shown.text.size(), "a text, and the caret in it");
        std::size_t end = 0;
        for (const PreeditSpan& span : shown.spans) {
            require(span.location == end && span.length > 0, "spans one behind the other");
            end += span.length;
        }
        require(end == shown.text.size(), "spans of all of the text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    require(isWellFormed(utf16(bytes)), "UTF-16 of any bytes");
    const float scale = scaleOfResources(bytes);
    require(scale >= 1 && scale <= 8, "a scale that can be drawn with");
    for (const BackendLayout& layout : layoutsOfRules(bytes))
        require(layout.name.starts_with(layout.shortName), "the name of a layout");
    compose(bytes);
    return 0;
}
