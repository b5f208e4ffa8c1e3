// SPDX-License-Identifier: Apache-2.0
#include "Shared/UTF8.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Shared/Codepoints.h"
#include "Shared/UTF8Blocks.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

using Byte = unsigned char;

// Vectors that compilers turn into the machine's own.
using Words2 = std::uint64_t __attribute__((vector_size(16)));

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

void narrowSixteen(const char16_t* units, char* bytes) {
    Bytes16 narrow = lowBytes(loadUnits(units), loadUnits(units + 8));
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
        return c < 0x800 || isSurrogate(c) ? 0 : 3;
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
    for (; i + 16 <= units.size(); i += 16) narrowSixteen(units.data() + i, bytes + i);
    for (; i + 8 <= units.size(); i += 8) narrowEight(loadUnits(units.data() + i), bytes + i);
    for (; i < units.size(); ++i) bytes[i] = static_cast<char>(units[i]);
}

// MARK: From UTF-8

std::size_t unitCountOfUTF8(std::string_view bytes) {
    std::size_t i = asciiPrefix(bytes), total = i;
    while (i + 16 <= bytes.size()) {
        // One for each lead, one more for the lead of a pair; no more than fit a byte in one go.
        Bytes16 counts{};
        for (int k = 0; k < 127 && i + 16 <= bytes.size(); ++k, i += 16) {
            auto block = loadBytes(bytes.data() + i);
            counts -= reinterpret_cast<Bytes16>((block & 0xC0) != vectorOf(std::uint8_t{0x80}));
            counts -= reinterpret_cast<Bytes16>((block & 0xF0) == vectorOf(std::uint8_t{0xF0}));
        }
        for (int k = 0; k < 16; ++k) total += counts[k];
    }
    for (; i < bytes.size(); ++i) {
        auto byte = static_cast<Byte>(bytes[i]);
        total += !isContinuation(byte) + (byte >= 0xF0);
    }
    return total;
}

DecodedUTF8 decodeUTF8(std::string_view bytes, std::span<char16_t> units) {
    const auto* first = reinterpret_cast<const Byte*>(bytes.data());
    UTF8Work work{first, first + bytes.size(), units.data(), units.data() + units.size()};
    while (work.in < work.inEnd) {
        if (work.hasBoth(kEnoughForUTF8Blocks)) decodeUTF8Blocks(work, UTF8Rule::strict);
        const Byte* in = work.in;
        char16_t* out = work.out;
        for (; work.inEnd - in >= 8 && !(load<std::uint64_t>(in) & kBeyondAscii<char>); in += 8, out += 8)
            widenEight(in, out);
        while (in < work.inEnd && *in < 0x80) *out++ = *in++;
        while (in < work.inEnd && *in >= 0x80) {
            char32_t c;
            const std::size_t size = decodeSequence(in, work.inEnd - in, c);
            if (size == 0) return {static_cast<std::size_t>(out - units.data()), false};
            in += size;
            out = writeCodepoint(c, out);
        }
        work.in = in;
        work.out = out;
    }
    return {static_cast<std::size_t>(work.out - units.data()), true};
}

std::optional<std::u16string> unitsFromUTF8(std::string_view bytes) {
    std::u16string units(unitCountOfUTF8(bytes), u'\0');
    if (!decodeUTF8(bytes, units).isValid) return std::nullopt;
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

// Each of eight units below 0x800, with or without a second byte, as the next one overwrites what is too
// much.
char* writeEightShort(const char16_t* units, char* bytes) {
    for (int i = 0; i < 8; ++i) {
        unsigned unit = units[i], isLong = unit >= 0x80;
        bytes[0] = static_cast<char>(isLong ? 0xC0 | unit >> 6 : unit);
        bytes[1] = static_cast<char>(0x80 | (unit & 0x3F));
        bytes += 1 + isLong;
    }
    return bytes;
}

// The bits that any of four units at the same place in their words has set.
std::uint64_t bitsOf(Units8 units) {
    auto words = reinterpret_cast<Words2>(units);
    return words[0] | words[1];
}

// As many of the characters at the front as begin with a unit from 0x800 on; null at a lone half.
template <LoneHalf kLoneHalf>
char* writeLong(const char16_t*& units, const char16_t* end, char* bytes) {
    for (; units < end && *units >= 0x800; ++units) {
        char32_t c = *units;
        if (isSurrogate(c)) [[unlikely]] {
            if (isHighSurrogate(c) && units + 1 < end && isLowSurrogate(units[1])) {
                c = codepointOfPair(units[0], units[1]);
                ++units;
            } else if (kLoneHalf == LoneHalf::replaced) {
                c = kReplacementCharacter;
            } else {
                return nullptr;
            }
        }
        bytes = writeUTF8(c, bytes);
    }
    return bytes;
}

template <LoneHalf kLoneHalf>
char* write(std::u16string_view text, char* bytes) {
    const char16_t *units = text.data(), *end = units + text.size();
    while (units < end) {
        for (; end - units >= 32; units += 32, bytes += 32) {
            auto all =
                loadUnits(units) | loadUnits(units + 8) | loadUnits(units + 16) | loadUnits(units + 24);
            if (bitsOf(all) & kBeyondAscii<char16_t>) break;
            narrowSixteen(units, bytes);
            narrowSixteen(units + 16, bytes + 16);
        }
        if (end - units >= 8) {
            if (const std::uint64_t bits = bitsOf(loadUnits(units)); !(bits & kBeyondAscii<char16_t>)) {
                narrowEight(loadUnits(units), bytes);
                units += 8;
                bytes += 8;
                continue;
            } else if (!(bits & 0xF800F800F800F800)) {
                bytes = writeEightShort(units, bytes);
                units += 8;
                continue;
            }
        }
        while (units < end && *units < 0x800) bytes = writeUTF8(char32_t{*units++}, bytes);
        bytes = writeLong<kLoneHalf>(units, end, bytes);
        if (!bytes) return nullptr;
    }
    return bytes;
}

// Through a buffer that stays in the cache, since a string clears what it grows by.
std::optional<std::string> utf8Of(std::u16string_view units, LoneHalf loneHalf) {
    constexpr std::size_t kPiece = 1024;
    char buffer[roomForUTF8(kPiece)];
    std::string bytes;
    while (!units.empty()) {
        std::size_t size = std::min(kPiece, units.size());
        if (splitsPair(units, size)) --size;
        const char* end = writeUTF8(units.substr(0, size), buffer, loneHalf);
        if (!end) return std::nullopt;
        if (bytes.empty()) {  // the rest will be much like the first piece
            const auto first = static_cast<std::size_t>(end - buffer);
            bytes.reserve((first + first / 16) * units.size() / size);
        }
        bytes.append(buffer, static_cast<std::size_t>(end - buffer));
        units.remove_prefix(size);
    }
    return bytes;
}

}  // namespace

char* writeUTF8(std::u16string_view units, char* bytes, LoneHalf loneHalf) {
    return loneHalf == LoneHalf::refused ? write<LoneHalf::refused>(units, bytes)
                                         : write<LoneHalf::replaced>(units, bytes);
}

std::optional<std::string> utf8FromUnits(std::u16string_view units) {
    return utf8Of(units, LoneHalf::refused);
}

std::string utf8FromUnitsMending(std::u16string_view units) { return *utf8Of(units, LoneHalf::replaced); }

}  // namespace pelvor
