// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListBase64.h"

#include <algorithm>

#include "Shared/Base64.h"

namespace pelvor {
namespace {

bool isSpace(std::uint8_t c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

bool decodePropertyListBase64(std::string& text) {
    auto* out = reinterpret_cast<std::uint8_t*>(text.data());  // never overtakes `next`
    std::size_t next = 0;
    std::uint32_t bits = 0;
    unsigned digits = 0;
    for (; next < text.size(); ++next) {
        if (digits == 0) {
            std::size_t length = readBase64Groups(std::string_view(text).substr(next), out);
            out += length / 4 * 3;
            next += length;
            if (next == text.size()) break;
        }
        auto c = static_cast<std::uint8_t>(text[next]);
        if (isSpace(c)) continue;
        std::uint8_t value = kBase64Values[c];
        if (value == kBase64Padding) break;
        if (value == kBase64Foreign) return false;
        bits = bits << 6 | value;
        digits = (digits + 1) % 4;
        if (digits != 1) *out++ = static_cast<std::uint8_t>(bits >> (digits == 2 ? 4 : digits == 3 ? 2 : 0));
    }
    // Nothing but padding and white space may follow padding.
    bool isPaddingOnly =
        std::all_of(text.begin() + static_cast<std::ptrdiff_t>(next), text.end(),
                    [](char c) { return c == '=' || isSpace(static_cast<std::uint8_t>(c)); });
    if (digits == 1 || !isPaddingOnly) return false;
    text.resize(static_cast<std::size_t>(out - reinterpret_cast<std::uint8_t*>(text.data())));
    return true;
}

void appendPropertyListBase64(GrowingBytes& bytes, std::span<const std::uint8_t> data, std::size_t lineLength,
                              std::size_t indent) {
    const std::size_t bytesALine = lineLength / 4 * 3;
    while (!data.empty()) {
        auto line = data.first(std::min(bytesALine, data.size()));
        bytes.append(indent, '\t');
        auto* start = reinterpret_cast<std::uint8_t*>(bytes.room(lineLength));
        bytes.advance(static_cast<std::size_t>(writeBase64(line, start) - start));
        bytes.append('\n');
        data = data.subspan(line.size());
    }
}

}  // namespace pelvor
