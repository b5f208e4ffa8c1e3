// SPDX-License-Identifier: Apache-2.0
#include "Foundation/UTF8UnitsPrivate.h"

#include <cstdint>
#include <cstring>

namespace pelvor {
namespace {

// Sixteen bytes or eight units at a time; compilers turn these into the machine's vector instructions.
using Bytes8 = std::uint8_t __attribute__((vector_size(8)));
using Units8 = std::uint16_t __attribute__((vector_size(16)));
constexpr std::uint64_t kHighBits = 0x8080808080808080u;

std::uint64_t loadWord(const char* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

void widenEight(const char* bytes, char16_t* units) {
    Bytes8 narrow;
    std::memcpy(&narrow, bytes, sizeof narrow);
    Units8 wide = __builtin_convertvector(narrow, Units8);
    std::memcpy(units, &wide, sizeof wide);
}

struct CodePoint {
    std::uint32_t value;
    std::size_t size;  // in bytes; 0 for bytes that are no character
};

bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

// The character at the front, which is not ASCII.
CodePoint decodeCharacter(const std::uint8_t* bytes, std::size_t available) {
    std::uint8_t lead = bytes[0];
    if (lead < 0xC2 || lead > 0xF4) return {0, 0};
    std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (available < size) return {0, 0};
    std::uint32_t value = lead & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if (!isContinuation(bytes[i])) return {0, 0};
        value = value << 6 | (bytes[i] & 0x3Fu);
    }
    bool isOverlong = (size == 3 && value < 0x800) || (size == 4 && value < 0x10000);
    bool isSurrogate = value >= 0xD800 && value < 0xE000;
    if (isOverlong || isSurrogate || value > 0x10FFFF) return {0, 0};
    return {value, size};
}

char16_t* appendCharacter(std::uint32_t value, char16_t* units) {
    if (value < 0x10000) {
        *units++ = static_cast<char16_t>(value);
        return units;
    }
    *units++ = static_cast<char16_t>(0xD7C0 + (value >> 10));
    *units++ = static_cast<char16_t>(0xDC00 + (value & 0x3FF));
    return units;
}

}  // namespace

std::size_t asciiPrefixLength(std::string_view bytes) {
    std::size_t at = 0;
    for (; at + 16 <= bytes.size(); at += 16)
        if ((loadWord(bytes.data() + at) | loadWord(bytes.data() + at + 8)) & kHighBits) break;
    while (at < bytes.size() && static_cast<std::uint8_t>(bytes[at]) < 0x80) ++at;
    return at;
}

void widenASCII(std::string_view bytes, char16_t* units) {
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) widenEight(bytes.data() + at, units + at);
    for (; at < bytes.size(); ++at) units[at] = static_cast<unsigned char>(bytes[at]);
}

DecodedUTF8 decodeUTF8(std::string_view bytes, char16_t* units) {
    char16_t* out = units;
    std::size_t at = 0;
    while (at < bytes.size()) {
        auto lead = static_cast<std::uint8_t>(bytes[at]);
        if (lead < 0x80) {
            if (at + 8 <= bytes.size() && !(loadWord(bytes.data() + at) & kHighBits)) {
                widenEight(bytes.data() + at, out);
                at += 8;
                out += 8;
            } else {
                *out++ = lead;
                ++at;
            }
            continue;
        }
        CodePoint character =
            decodeCharacter(reinterpret_cast<const std::uint8_t*>(bytes.data()) + at, bytes.size() - at);
        if (character.size == 0) return {static_cast<std::size_t>(out - units), at, false};
        out = appendCharacter(character.value, out);
        at += character.size;
    }
    return {static_cast<std::size_t>(out - units), at, true};
}

}  // namespace pelvor
