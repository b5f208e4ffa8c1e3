// SPDX-License-Identifier: Apache-2.0
// The hash of a string's units.
#include <cstring>

#include "Foundation/NSInlineStringPrivate.h"

namespace pelvor {
namespace {

// Products of 64-bit words folded to their halves' exclusive or: every bit of the words reaches every bit
// of the result.
constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15, kSecond = 0xD6E8FEB86659FD93,
                        kThird = 0xA0761D6478BD642F, kFourth = 0xE7037ED1A0B428DB;

inline std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    auto product = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t word(const char* bytes) {
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Up to 16 bytes as two words; the length tells short texts of equal words apart.
std::uint64_t mixTail(const char* bytes, std::size_t size, std::uint64_t seed) {
    std::uint64_t a = 0, b = 0;
    if (size >= 8) {
        a = word(bytes);
        b = word(bytes + size - 8);
    } else {
        std::memcpy(&a, bytes, size);
    }
    return mix(a ^ kFirst, b ^ seed);
}

}  // namespace

std::uintptr_t hashUnits(std::u16string_view units) {
    const char* bytes = reinterpret_cast<const char*>(units.data());
    std::size_t size = units.size() * sizeof(unichar);
    std::uint64_t seed = kThird ^ size, other = kFourth, third = kSecond;
    if (size > 48) {
        for (; size > 48; bytes += 48, size -= 48) {
            seed = mix(word(bytes) ^ kFirst, word(bytes + 8) ^ seed);
            other = mix(word(bytes + 16) ^ kSecond, word(bytes + 24) ^ other);
            third = mix(word(bytes + 32) ^ kThird, word(bytes + 40) ^ third);
        }
        seed ^= other ^ third;
    }
    for (; size > 16; bytes += 16, size -= 16) seed = mix(word(bytes) ^ kFirst, word(bytes + 8) ^ seed);
    std::uint64_t hash = mix(mixTail(bytes, size, seed), kSecond);
    // Strings keep half of it, and 0 stands for "not yet computed".
    auto half = static_cast<std::uint32_t>(hash ^ hash >> 32);
    if (!half) half = 1;
    return std::uintptr_t{half} << 32 | half;
}

}  // namespace pelvor
