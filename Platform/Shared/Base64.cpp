// SPDX-License-Identifier: Apache-2.0
#include "Shared/Base64.h"

#include <algorithm>
#include <type_traits>

#include "Shared/WideInstructions.h"
#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

namespace pelvor {
namespace {

using Byte = std::uint8_t;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

constexpr std::array<Byte, 256> kBase64Values = [] {
    std::array<Byte, 256> values{};
    values.fill(kBase64Foreign);
    for (Byte i = 0; i < 64; ++i) values[static_cast<Byte>(kAlphabet[i])] = i;
    values['='] = kBase64Padding;
    return values;
}();

namespace {

template <class Unit>
Unit* writeTail(std::span<const Byte> tail, Unit* text) {
    unsigned first = tail[0], second = tail.size() > 1 ? tail[1] : 0;
    *text++ = static_cast<Unit>(kAlphabet[first >> 2]);
    *text++ = static_cast<Unit>(kAlphabet[(first & 3) << 4 | second >> 4]);
    *text++ = tail.size() > 1 ? static_cast<Unit>(kAlphabet[(second & 15) << 2]) : Unit{'='};
    *text++ = '=';
    return text;
}

#ifdef PELVOR_HAS_WIDE_FORMS

PELVOR_WIDE inline __m256i inBothHalves(__m128i half) { return _mm256_broadcastsi128_si256(half); }

// The characters of the 24 bytes from `bytes` on, of which 28 can be read.
PELVOR_WIDE inline __m256i charactersOf(const Byte* bytes) {
    const __m256i order = inBothHalves(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    const __m256i shifts =
        inBothHalves(_mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                   '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0));
    __m256i group = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(bytes + 12),
                                        reinterpret_cast<const __m128i*>(bytes));
    group = _mm256_shuffle_epi8(group, order);
    // Six bits a byte.
    __m256i high = _mm256_mulhi_epu16(_mm256_and_si256(group, _mm256_set1_epi32(0x0fc0fc00)),
                                      _mm256_set1_epi32(0x04000040));
    __m256i low = _mm256_mullo_epi16(_mm256_and_si256(group, _mm256_set1_epi32(0x003f03f0)),
                                     _mm256_set1_epi32(0x01000010));
    __m256i values = _mm256_or_si256(high, low);
    // The runs of the alphabet by number: 13 for capitals, 0 for small letters, 1 to 10 for digits.
    __m256i runs = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
    __m256i areCapitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
    runs = _mm256_or_si256(runs, _mm256_and_si256(areCapitals, _mm256_set1_epi8(13)));
    return _mm256_add_epi8(values, _mm256_shuffle_epi8(shifts, runs));
}

PELVOR_WIDE inline void store(__m256i characters, Byte* text) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), characters);
}

PELVOR_WIDE inline void store(__m256i characters, char16_t* text) {
    auto* place = reinterpret_cast<__m256i*>(text);
    _mm256_storeu_si256(place, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(characters)));
    _mm256_storeu_si256(place + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(characters, 1)));
}

template <class Unit>
PELVOR_WIDE std::size_t writeWide(std::span<const Byte> bytes, Unit* text) {
    std::size_t i = 0;
    for (; i + 28 <= bytes.size(); i += 24, text += 32) store(charactersOf(bytes.data() + i), text);
    return i;
}

// 32 units as bytes; those above 0xFF become 0 or 0xFF.
PELVOR_WIDE inline __m256i loadBlock(const char16_t* text) {
    auto* place = reinterpret_cast<const __m256i*>(text);
    __m256i packed = _mm256_packus_epi16(_mm256_loadu_si256(place), _mm256_loadu_si256(place + 1));
    return _mm256_permute4x64_epi64(packed, 0xD8);
}

// Turns 32 characters into 24 bytes, with eight more written; false, with nothing written, if one of them is
// not in the alphabet.
PELVOR_WIDE inline bool readBlock(const char16_t* text, Byte* bytes) {
    const __m256i lowKinds = inBothHalves(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                        0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A));
    const __m256i highKinds = inBothHalves(_mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10,
                                                         0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10));
    const __m256i shifts =
        inBothHalves(_mm_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i order = inBothHalves(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    const __m256i slash = _mm256_set1_epi8('/');
    __m256i block = loadBlock(text);
    __m256i high = _mm256_and_si256(_mm256_srli_epi32(block, 4), slash);
    __m256i kinds = _mm256_shuffle_epi8(lowKinds, _mm256_and_si256(block, slash));
    if (!_mm256_testz_si256(kinds, _mm256_shuffle_epi8(highKinds, high))) return false;
    __m256i runs = _mm256_add_epi8(_mm256_cmpeq_epi8(block, slash), high);
    __m256i values = _mm256_add_epi8(block, _mm256_shuffle_epi8(shifts, runs));
    values = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    values = _mm256_madd_epi16(values, _mm256_set1_epi32(0x00011000));
    values = _mm256_shuffle_epi8(values, order);
    values = _mm256_permutevar8x32_epi32(values, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), values);
    return true;
}

PELVOR_WIDE std::size_t readWide(std::u16string_view text, Byte* bytes) {
    std::size_t i = 0;
    while (i + 32 <= text.size() && readBlock(text.data() + i, bytes)) {
        i += 32;
        bytes += 24;
    }
    return i;
}

#else

template <class Unit>
std::size_t writeWide(std::span<const Byte>, Unit*) {
    return 0;
}
std::size_t readWide(std::u16string_view, Byte*) { return 0; }

#endif

// Reads groups without padding, from the character at `start` on, and returns where they end.
template <class Char>
std::size_t readGroups(std::basic_string_view<Char> text, std::size_t start, Byte* bytes) {
    std::size_t i = start;
    for (; i + 4 <= text.size(); i += 4) {
        unsigned values[4], all = 0;
        for (int k = 0; k < 4; ++k) {
            auto unit = static_cast<std::make_unsigned_t<Char>>(text[i + k]);
            values[k] = unit < 256 ? kBase64Values[unit] : kBase64Foreign;
            all |= values[k];
        }
        if (all >= kBase64Padding) break;
        unsigned group = values[0] << 18 | values[1] << 12 | values[2] << 6 | values[3];
        *bytes++ = static_cast<Byte>(group >> 16);
        *bytes++ = static_cast<Byte>(group >> 8);
        *bytes++ = static_cast<Byte>(group);
    }
    return i;
}

std::size_t readUnitGroups(std::u16string_view text, Byte* bytes) {
    std::size_t start = usesWideInstructions() ? readWide(text, bytes) : 0;
    return readGroups(text, start, bytes + start / 4 * 3);
}

template <class Unit>
Unit* write(std::span<const Byte> bytes, Unit* text) {
    std::size_t i = usesWideInstructions() ? writeWide(bytes, text) : 0;
    text += i / 3 * 4;
    for (; i + 3 <= bytes.size(); i += 3, text += 4) {
        unsigned group = static_cast<unsigned>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]);
        for (int k = 0; k < 4; ++k) text[k] = static_cast<Unit>(kAlphabet[group >> (18 - 6 * k) & 63]);
    }
    return i < bytes.size() ? writeTail(bytes.subspan(i), text) : text;
}

}  // namespace

std::size_t readBase64Groups(std::string_view text, std::uint8_t* bytes) {
    return readGroups(text, 0, bytes);
}

std::uint8_t* writeBase64(std::span<const std::uint8_t> bytes, std::uint8_t* text) {
    return write(bytes, text);
}

char16_t* writeBase64(std::span<const std::uint8_t> bytes, char16_t* text) { return write(bytes, text); }

bool Base64Reader::read(std::u16string_view text) {
    while (!text.empty() && !_isPadded) {
        if (_count == 0) {
            std::size_t size = readUnitGroups(text, _bytes);
            _bytes += size / 4 * 3;
            text.remove_prefix(size);
            if (text.empty()) return true;
        }
        char16_t unit = text.front();
        text.remove_prefix(1);
        if (unit >= 0x80) return false;
        if (kBase64Values[unit] == kBase64Foreign) continue;
        _group[_count++] = kBase64Values[unit];
        if (_count == 4) finishGroup();
    }
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

void Base64Reader::finishGroup() {
    auto [a, b, c, d] = _group;
    _count = 0;
    _isPadded = a == kBase64Padding || b == kBase64Padding || c == kBase64Padding || d == kBase64Padding;
    if (a == kBase64Padding || b == kBase64Padding) return;
    *_bytes++ = static_cast<Byte>(a << 2 | b >> 4);
    if (c == kBase64Padding) return;
    *_bytes++ = static_cast<Byte>(b << 4 | c >> 2);
    if (d != kBase64Padding) *_bytes++ = static_cast<Byte>(c << 6 | d);
}

}  // namespace pelvor
