// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/UnitConversion.h"

#include <unicode/ustring.h>

#include <cstring>

namespace pelvor {
namespace {

using Byte = unsigned char;

// Vectors that compilers turn into the machine's own.
using Bytes8 = std::uint8_t __attribute__((vector_size(8)));
using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Units8 = std::uint16_t __attribute__((vector_size(16)));

template <class T, class Char>
T load(const Char* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// The bits that no ASCII text has set.
template <class Char>
constexpr std::uint64_t kBeyondAscii = sizeof(Char) == 1 ? 0x8080808080808080u : 0xFF80FF80FF80FF80u;

template <class Char>
bool hasAsciiWord(const Char* text) {
    return !(load<std::uint64_t>(text) & kBeyondAscii<Char>);
}

template <class Char>
std::size_t prefixOf(std::basic_string_view<Char> text) {
    constexpr std::size_t kWord = 8 / sizeof(Char);
    const Char *place = text.data(), *end = place + text.size();
    auto joined = [&] {
        return load<std::uint64_t>(place) | load<std::uint64_t>(place + kWord) |
               load<std::uint64_t>(place + 2 * kWord) | load<std::uint64_t>(place + 3 * kWord);
    };
    while (end - place >= static_cast<std::ptrdiff_t>(4 * kWord) && !(joined() & kBeyondAscii<Char>))
        place += 4 * kWord;
    while (place < end && static_cast<std::make_unsigned_t<Char>>(*place) < 0x80) ++place;
    return static_cast<std::size_t>(place - text.data());
}

template <class Char>
void widenEight(const Char* bytes, char16_t* units) {
    Units8 wide = __builtin_convertvector(load<Bytes8>(bytes), Units8);
    std::memcpy(units, &wide, sizeof wide);
}

void narrowEight(const char16_t* units, char* bytes) {
    Bytes8 narrow = __builtin_convertvector(load<Units8>(units), Bytes8);
    std::memcpy(bytes, &narrow, sizeof narrow);
}

bool isContinuation(Byte byte) { return (byte & 0xC0) == 0x80; }

// Reads a sequence of several bytes; 0 for one that is ill-formed.
std::size_t decodeSequence(const Byte* bytes, std::ptrdiff_t left, char32_t& c) {
    Byte lead = bytes[0];
    if (lead < 0xE0) {
        if (lead < 0xC2 || left < 2 || !isContinuation(bytes[1])) return 0;
        c = static_cast<char32_t>((lead & 0x1F) << 6 | (bytes[1] & 0x3F));
        return 2;
    }
    if (lead < 0xF0) {
        if (left < 3 || !isContinuation(bytes[1]) || !isContinuation(bytes[2])) return 0;
        c = static_cast<char32_t>((lead & 0x0F) << 12 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F));
        return c < 0x800 || (c & 0xF800) == 0xD800 ? 0 : 3;
    }
    if (left < 4 || !isContinuation(bytes[1]) || !isContinuation(bytes[2]) || !isContinuation(bytes[3]))
        return 0;
    c = static_cast<char32_t>((lead & 0x07) << 18 | (bytes[1] & 0x3F) << 12 | (bytes[2] & 0x3F) << 6 |
                              (bytes[3] & 0x3F));
    return lead > 0xF4 || c < 0x10000 || c > 0x10FFFF ? 0 : 4;
}

}  // namespace

std::size_t asciiPrefix(std::string_view bytes) { return prefixOf(bytes); }

std::size_t asciiPrefix(std::u16string_view units) { return prefixOf(units); }

void widen(std::string_view bytes, char16_t* units) {
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) widenEight(bytes.data() + i, units + i);
    for (; i < bytes.size(); ++i) units[i] = static_cast<Byte>(bytes[i]);
}

void narrow(std::u16string_view units, char* bytes) {
    std::size_t i = 0;
    for (; i + 8 <= units.size(); i += 8) narrowEight(units.data() + i, bytes + i);
    for (; i < units.size(); ++i) bytes[i] = static_cast<char>(units[i]);
}

// MARK: From UTF-8

std::size_t unitCountOfUTF8(std::string_view bytes) {
    std::size_t i = asciiPrefix(bytes), total = i;
    while (i + 16 <= bytes.size()) {
        // One for each lead, one more for the lead of a pair; no more than fit a byte in one go.
        Bytes16 counts{};
        for (int k = 0; k < 127 && i + 16 <= bytes.size(); ++k, i += 16) {
            auto block = load<Bytes16>(bytes.data() + i);
            counts -= reinterpret_cast<Bytes16>((block & 0xC0) != 0x80);
            counts -= reinterpret_cast<Bytes16>((block & 0xF0) == 0xF0);
        }
        for (int k = 0; k < 16; ++k) total += counts[k];
    }
    for (; i < bytes.size(); ++i) {
        auto byte = static_cast<Byte>(bytes[i]);
        total += !isContinuation(byte) + (byte >= 0xF0);
    }
    return total;
}

DecodedUTF8 decodeUTF8(std::string_view text, char16_t* units) {
    const char16_t* first = units;
    auto decoded = [&](bool isValid) {
        return DecodedUTF8{static_cast<std::size_t>(units - first), isValid};
    };
    const Byte *bytes = reinterpret_cast<const Byte*>(text.data()), *end = bytes + text.size();
    while (bytes < end) {
        if (*bytes < 0x80) {
            while (end - bytes >= 8 && hasAsciiWord(bytes)) {
                widenEight(bytes, units);
                bytes += 8;
                units += 8;
            }
            while (bytes < end && *bytes < 0x80) *units++ = *bytes++;
        }
        while (bytes < end && *bytes >= 0x80) {
            char32_t c;
            std::size_t size = decodeSequence(bytes, end - bytes, c);
            if (size == 0) return decoded(false);
            bytes += size;
            if (c > 0xFFFF) *units++ = U16_LEAD(c);
            *units++ = c > 0xFFFF ? U16_TRAIL(c) : static_cast<char16_t>(c);
        }
    }
    return decoded(true);
}

std::optional<std::u16string> unitsFromUTF8(std::string_view bytes) {
    std::u16string units(unitCountOfUTF8(bytes), u'\0');
    if (!decodeUTF8(bytes, units.data()).isValid) return std::nullopt;
    return units;
}

std::u16string unitsFromUTF8Mending(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t size = 0;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &size, bytes.data(),
                         static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &error);
    units.resize(static_cast<std::size_t>(size));
    return units;
}

// MARK: To UTF-8

namespace {

// How many bytes the units take, where every half of a pair has its other half.
std::size_t byteCount(std::u16string_view units) {
    std::size_t i = asciiPrefix(units), total = units.size();
    while (i + 8 <= units.size()) {
        Units8 counts{};
        for (int k = 0; k < 8192 && i + 8 <= units.size(); ++k, i += 8) {
            auto block = load<Units8>(units.data() + i);
            counts -= reinterpret_cast<Units8>((block & 0xFF80) != 0);
            counts -= reinterpret_cast<Units8>((block & 0xF800) != 0);
            counts += reinterpret_cast<Units8>((block & 0xF800) == 0xD800);
        }
        for (int k = 0; k < 8; ++k) total += counts[k];
    }
    for (; i < units.size(); ++i)
        total += (units[i] >= 0x80u) + (units[i] >= 0x800u) - ((units[i] & 0xF800u) == 0xD800u);
    return total;
}

// False at a lone half.
bool encode(std::u16string_view text, char* bytes) {
    auto put = [&bytes](unsigned lead, char32_t bits) { *bytes++ = static_cast<char>(lead | bits); };
    const char16_t *units = text.data(), *end = units + text.size();
    while (units < end) {
        while (end - units >= 8 && hasAsciiWord(units) && hasAsciiWord(units + 4)) {
            narrowEight(units, bytes);
            units += 8;
            bytes += 8;
        }
        while (units < end && *units < 0x80) *bytes++ = static_cast<char>(*units++);
        while (units < end && *units >= 0x80) {
            char32_t c = *units++;
            if (c < 0x800) {
                put(0xC0, c >> 6);
            } else if ((c & 0xF800) != 0xD800) {
                put(0xE0, c >> 12);
                put(0x80, c >> 6 & 0x3F);
            } else {
                if (c >= 0xDC00 || units == end || (*units & 0xFC00) != 0xDC00) return false;
                c = (c << 10) + *units++ - ((0xD800 << 10) + 0xDC00 - 0x10000);
                put(0xF0, c >> 18);
                put(0x80, c >> 12 & 0x3F);
                put(0x80, c >> 6 & 0x3F);
            }
            put(0x80, c & 0x3F);
        }
    }
    return true;
}

}  // namespace

std::optional<std::string> utf8FromUnits(std::u16string_view units) {
    // A lone half would take one byte more than is counted: it is found before that is written.
    std::string bytes(byteCount(units), '\0');
    if (!encode(units, bytes.data())) return std::nullopt;
    return bytes;
}

std::string utf8FromUnitsMending(std::u16string_view units) {
    if (auto bytes = utf8FromUnits(units)) return *std::move(bytes);
    std::string bytes(units.size() * 3, '\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t size = 0;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &size, units.data(),
                       static_cast<int32_t>(units.size()), 0xFFFD, nullptr, &error);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

}  // namespace pelvor
