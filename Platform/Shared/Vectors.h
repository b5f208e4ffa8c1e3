// SPDX-License-Identifier: Apache-2.0
// Sixteen bytes or eight units at a time, in the compiler's own vectors, which every machine has.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pelvor {

static_assert(std::endian::native == std::endian::little, "blocks are read with the first byte lowest");

using Bytes8 = std::uint8_t __attribute__((vector_size(8)));
using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Units8 = std::uint16_t __attribute__((vector_size(16)));

inline Bytes16 loadBytes(const void* from) {
    Bytes16 bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}
inline Units8 loadUnits(const void* from) {
    Units8 units;
    std::memcpy(&units, from, sizeof units);
    return units;
}
// Comparisons are written with these: clang 14 ends on one with a bare number.
inline Bytes16 vectorOf(std::uint8_t byte) { return Bytes16{} + byte; }
inline Units8 vectorOf(char16_t unit) { return Units8{} + static_cast<std::uint16_t>(unit); }

/// Writes eight bytes as eight units, or the low bytes of eight units as eight bytes.
inline void widenEight(const void* bytes, char16_t* units) {
    Bytes8 eight;
    std::memcpy(&eight, bytes, sizeof eight);
    const auto wide = __builtin_convertvector(eight, Units8);
    std::memcpy(units, &wide, sizeof wide);
}
inline void narrowEight(Units8 units, char* bytes) {
    const auto eight = __builtin_convertvector(units, Bytes8);
    std::memcpy(bytes, &eight, sizeof eight);
}

/// The low bytes of sixteen units.
inline Bytes16 lowBytes(Units8 first, Units8 second) {
    return __builtin_shufflevector(reinterpret_cast<Bytes16>(first), reinterpret_cast<Bytes16>(second), 0, 2,
                                   4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

// What compilers do not find by themselves.
#if defined(__SSE2__)

/// Which of sixteen bytes have their highest bit set: bit i for byte i. For the result of a comparison, these
/// are the bytes for which the comparison holds.
template <class Bytes>
unsigned bitsOf(Bytes bytes) {
    return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(bytes)));
}
/// Where two comparisons of eight units each hold.
template <class Units>
unsigned bitsOf(Units first, Units second) {
    return bitsOf(_mm_packs_epi16(reinterpret_cast<__m128i>(first), reinterpret_cast<__m128i>(second)));
}

#else

template <class Bytes>
unsigned bitsOf(Bytes bytes) {
    unsigned bits = 0;
    for (int i = 0; i < 16; ++i) bits |= (bytes[i] >> 7 & 1u) << i;
    return bits;
}
template <class Units>
unsigned bitsOf(Units first, Units second) {
    unsigned bits = 0;
    for (int i = 0; i < 8; ++i) bits |= (first[i] & 1u) << i | (second[i] & 1u) << (i + 8);
    return bits;
}

#endif

}  // namespace pelvor
