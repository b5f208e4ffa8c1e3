// SPDX-License-Identifier: Apache-2.0
#include "Private/HexText.h"

#include <array>
#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

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

#ifdef PELVOR_HAS_WIDE_FORMS

PELVOR_WIDE std::size_t writeWide(std::span<const Byte> bytes, char16_t* units) {
    const __m256i digits =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kDigits)));
    std::size_t i = 0;
    for (; i + 16 <= bytes.size(); i += 16, units += 32) {
        __m256i wide =
            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + i)));
        // Each pair of bytes: the high four bits, then the low four.
        __m256i halves = _mm256_or_si256(_mm256_srli_epi16(wide, 4), _mm256_slli_epi16(wide, 8));
        __m256i text = _mm256_shuffle_epi8(digits, _mm256_and_si256(halves, _mm256_set1_epi8(15)));
        auto* place = reinterpret_cast<__m256i*>(units);
        _mm256_storeu_si256(place, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(text)));
        _mm256_storeu_si256(place + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(text, 1)));
    }
    return i;
}

// 32 units as 16 bytes a time; stops at what is no digit.
PELVOR_WIDE std::size_t readWide(std::u16string_view units, Byte* bytes) {
    const __m256i lowBytes = _mm256_set1_epi16(0xFF);
    std::size_t i = 0;
    for (; i + 32 <= units.size(); i += 32, bytes += 16) {
        auto* place = reinterpret_cast<const __m256i*>(units.data() + i);
        __m256i text = _mm256_packus_epi16(_mm256_and_si256(_mm256_loadu_si256(place), lowBytes),
                                           _mm256_and_si256(_mm256_loadu_si256(place + 1), lowBytes));
        text = _mm256_permute4x64_epi64(text, 0xD8);
        __m256i number = _mm256_sub_epi8(text, _mm256_set1_epi8('0'));
        __m256i letter =
            _mm256_sub_epi8(_mm256_or_si256(text, _mm256_set1_epi8(0x20)), _mm256_set1_epi8('a'));
        __m256i isNumber = _mm256_cmpeq_epi8(_mm256_min_epu8(number, _mm256_set1_epi8(9)), number);
        __m256i isLetter = _mm256_cmpeq_epi8(_mm256_min_epu8(letter, _mm256_set1_epi8(5)), letter);
        if (_mm256_movemask_epi8(_mm256_or_si256(isNumber, isLetter)) != -1) break;
        __m256i values = _mm256_blendv_epi8(_mm256_add_epi8(letter, _mm256_set1_epi8(10)), number, isNumber);
        __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0110));
        __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(pairs, pairs), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm256_castsi256_si128(packed));
    }
    return i;
}

#else

std::size_t writeWide(std::span<const Byte>, char16_t*) { return 0; }
std::size_t readWide(std::u16string_view, Byte*) { return 0; }

#endif

}  // namespace

std::uint8_t valueOfHexDigit(char16_t unit) { return kValues[unit & 0xFF]; }

void writeHex(std::span<const std::uint8_t> bytes, char16_t* units, WideInstructions wide) {
    std::size_t i = wide == WideInstructions::present ? writeWide(bytes, units) : 0;
    for (; i < bytes.size(); ++i) {
        units[2 * i] = static_cast<char16_t>(kDigits[bytes[i] >> 4]);
        units[2 * i + 1] = static_cast<char16_t>(kDigits[bytes[i] & 15]);
    }
}

bool readHex(std::u16string_view units, std::uint8_t* bytes, WideInstructions wide) {
    std::size_t i = wide == WideInstructions::present ? readWide(units, bytes) : 0;
    for (; i + 2 <= units.size(); i += 2) {
        Byte high = valueOfHexDigit(units[i]), low = valueOfHexDigit(units[i + 1]);
        if ((high | low) > 15) return false;
        bytes[i / 2] = static_cast<Byte>(high << 4 | low);
    }
    return true;
}

}  // namespace pelvor
