// SPDX-License-Identifier: Apache-2.0
#include "Private/HexText.h"

#include <array>

#include "Shared/Vectors.h"

namespace pelvor {
namespace {

using Byte = std::uint8_t;

constexpr char kDigits[] = "0123456789abcdef";

constexpr auto kValues = [] {
    std::array<Byte, 256> values{};
    values.fill(255);
    for (Byte i = 0; i < 10; ++i) values[static_cast<std::size_t>('0' + i)] = i;
    for (Byte i = 10; i < 16; ++i) {
        values[static_cast<std::size_t>('a' + i - 10)] = i;
        values[static_cast<std::size_t>('A' + i - 10)] = i;
    }
    return values;
}();

// The elements of two vectors in turn, first the lower halves', then the upper halves'.
Bytes16 lowerInTurn(Bytes16 one, Bytes16 other) {
    return __builtin_shufflevector(one, other, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
Bytes16 upperInTurn(Bytes16 one, Bytes16 other) {
    return __builtin_shufflevector(one, other, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

// Machines compare signed bytes.
using SignedBytes16 = signed char __attribute__((vector_size(16)));

Bytes16 digitsOf(Bytes16 numbers) {
    auto areLetters = reinterpret_cast<Bytes16>(reinterpret_cast<SignedBytes16>(numbers) > 9);
    return numbers + '0' + (areLetters & ('a' - '0' - 10));
}

// The digits of sixteen bytes.
void writeSixteen(const Byte* bytes, char16_t* units) {
    Bytes16 sixteen = loadBytes(bytes);
    Bytes16 first = digitsOf(reinterpret_cast<Bytes16>(reinterpret_cast<Units8>(sixteen) >> 4) & 15);
    Bytes16 second = digitsOf(sixteen & 15);
    for (Bytes16 digits : {lowerInTurn(first, second), upperInTurn(first, second)})
        for (Bytes16 part : {lowerInTurn(digits, Bytes16{}), upperInTurn(digits, Bytes16{})}) {
            std::memcpy(units, &part, sizeof part);
            units += 8;
        }
}

// Eight bytes from as many pairs of digits, each byte in a unit of its own. Takes the bits of units that are
// no digits out of `areDigits`.
Units8 valuesOf(const char16_t* units, Bytes16& areDigits) {
    Bytes16 text = lowBytes(loadUnits(units), loadUnits(units + 8));
    // The least signed byte stands for 0.
    auto isBelow = [](Bytes16 bytes, int count) {
        const auto end = static_cast<signed char>(count - 128);
        return reinterpret_cast<Bytes16>(reinterpret_cast<SignedBytes16>(bytes - 128) <
                                         SignedBytes16{} + end);
    };
    Bytes16 areLetters = isBelow((text | 0x20) - 'a', 6);
    areDigits &= areLetters | isBelow(text - '0', 10);
    auto pairs = reinterpret_cast<Units8>((text & 15) + (areLetters & 9));
    return pairs << 4 | pairs >> 8;
}

// Sixteen bytes from as many pairs of digits; false, with nothing written, if one is no digit.
bool readSixteen(const char16_t* units, Byte* bytes) {
    Bytes16 areDigits = ~Bytes16{};
    Bytes16 sixteen = lowBytes(valuesOf(units, areDigits), valuesOf(units + 16, areDigits));
    if (bitsOf(areDigits) != 0xFFFF) return false;
    std::memcpy(bytes, &sixteen, sizeof sixteen);
    return true;
}

}  // namespace

std::uint8_t valueOfHexDigit(char16_t unit) { return kValues[unit & 0xFF]; }

void writeHex(std::span<const std::uint8_t> bytes, char16_t* units) {
    std::size_t i = 0;
    for (; i + 16 <= bytes.size(); i += 16) writeSixteen(bytes.data() + i, units + 2 * i);
    for (; i < bytes.size(); ++i) {
        units[2 * i] = static_cast<char16_t>(kDigits[bytes[i] >> 4]);
        units[2 * i + 1] = static_cast<char16_t>(kDigits[bytes[i] & 15]);
    }
}

bool readHex(std::u16string_view units, std::uint8_t* bytes) {
    std::size_t i = 0;
    for (; i + 32 <= units.size(); i += 32)
        if (!readSixteen(units.data() + i, bytes + i / 2)) return false;
    for (; i + 2 <= units.size(); i += 2) {
        Byte high = valueOfHexDigit(units[i]), low = valueOfHexDigit(units[i + 1]);
        if ((high | low) > 15) return false;
        bytes[i / 2] = static_cast<Byte>(high << 4 | low);
    }
    return true;
}

}  // namespace pelvor
