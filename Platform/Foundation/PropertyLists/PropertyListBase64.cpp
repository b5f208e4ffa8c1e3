// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListBase64.h"

#include <algorithm>
#include <array>

namespace pelvor {
namespace {

constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Marks in the decoding table; digits have values below 64.
constexpr std::uint8_t kSpace = 64;
constexpr std::uint8_t kPadding = 65;
constexpr std::uint8_t kForeign = 128;

constexpr auto kValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kForeign);
    for (std::uint8_t i = 0; i < 64; ++i) values[static_cast<std::uint8_t>(kDigits[i])] = i;
    for (char space : {' ', '\t', '\r', '\n'}) values[static_cast<std::uint8_t>(space)] = kSpace;
    values['='] = kPadding;
    return values;
}();

void encodeGroup(char* place, std::uint32_t bits) {
    for (int i = 0; i < 4; ++i) place[i] = kDigits[bits >> (18 - 6 * i) & 63];
}

// The last one or two bytes, padded.
void encodeTail(char* place, std::span<const std::uint8_t> tail) {
    encodeGroup(place, static_cast<std::uint32_t>(tail[0] << 16) |
                           (tail.size() > 1 ? static_cast<std::uint32_t>(tail[1] << 8) : 0));
    place[3] = '=';
    if (tail.size() == 1) place[2] = '=';
}

std::size_t encodeLine(char* place, std::span<const std::uint8_t> data) {
    char* start = place;
    std::size_t at = 0;
    for (; at + 3 <= data.size(); at += 3, place += 4)
        encodeGroup(place, static_cast<std::uint32_t>(data[at] << 16 | data[at + 1] << 8 | data[at + 2]));
    if (at < data.size()) {
        encodeTail(place, data.subspan(at));
        place += 4;
    }
    return static_cast<std::size_t>(place - start);
}

// Nothing but padding and white space may follow padding.
bool isPaddingOnly(const std::uint8_t* next, const std::uint8_t* end) {
    return std::all_of(next, end,
                       [](std::uint8_t c) { return kValues[c] == kSpace || kValues[c] == kPadding; });
}

}  // namespace

bool decodePropertyListBase64(std::string& text) {
    auto* next = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::uint8_t* end = next + text.size();
    char* out = text.data();  // never overtakes `next`
    std::uint32_t bits = 0;
    unsigned digits = 0;
    for (; next < end; ++next) {
        if (digits == 0)
            for (; end - next >= 4; next += 4) {
                std::uint8_t a = kValues[next[0]], b = kValues[next[1]], c = kValues[next[2]],
                             d = kValues[next[3]];
                if ((a | b | c | d) >= 64) break;
                std::uint32_t group = static_cast<std::uint32_t>(a << 18 | b << 12 | c << 6 | d);
                *out++ = static_cast<char>(group >> 16);
                *out++ = static_cast<char>(group >> 8);
                *out++ = static_cast<char>(group);
            }
        if (next == end) break;
        std::uint8_t value = kValues[*next];
        if (value == kSpace) continue;
        if (value == kPadding) break;
        if (value == kForeign) return false;
        bits = bits << 6 | value;
        digits = (digits + 1) % 4;
        if (digits != 1) *out++ = static_cast<char>(bits >> (digits == 2 ? 4 : digits == 3 ? 2 : 0));
    }
    if (digits == 1 || !isPaddingOnly(next, end)) return false;
    text.resize(static_cast<std::size_t>(out - text.data()));
    return true;
}

void appendPropertyListBase64(GrowingBytes& bytes, std::span<const std::uint8_t> data, std::size_t lineLength,
                              std::size_t indent) {
    const std::size_t bytesALine = lineLength / 4 * 3;
    while (!data.empty()) {
        auto line = data.first(std::min(bytesALine, data.size()));
        bytes.append(indent, '\t');
        bytes.advance(encodeLine(bytes.room(lineLength), line));
        bytes.append('\n');
        data = data.subspan(line.size());
    }
}

}  // namespace pelvor
