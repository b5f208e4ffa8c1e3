// SPDX-License-Identifier: Apache-2.0
#include "Base64TextPrivate.h"

#include <array>
#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

namespace pelvor {
namespace {

using Byte = std::uint8_t;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr Byte kPadding = 64;
constexpr Byte kForeign = 127;

constexpr auto kValues = [] {
    std::array<Byte, 256> values{};
    values.fill(kForeign);
    for (Byte i = 0; i < 64; ++i) values[static_cast<Byte>(kAlphabet[i])] = i;
    values['='] = kPadding;
    return values;
}();

// The two characters of 12 bits.
constexpr auto kPairs = [] {
    std::array<std::array<Byte, 2>, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {static_cast<Byte>(kAlphabet[i >> 6]), static_cast<Byte>(kAlphabet[i & 63])};
    return pairs;
}();

Byte* writeTail(std::span<const Byte> tail, Byte* text) {
    unsigned first = tail[0], second = tail.size() > 1 ? tail[1] : 0;
    *text++ = static_cast<Byte>(kAlphabet[first >> 2]);
    *text++ = static_cast<Byte>(kAlphabet[(first & 3) << 4 | second >> 4]);
    *text++ = tail.size() > 1 ? static_cast<Byte>(kAlphabet[(second & 15) << 2]) : Byte{'='};
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

PELVOR_WIDE std::size_t writeWide(std::span<const Byte> bytes, Byte* text) {
    std::size_t i = 0;
    for (; i + 28 <= bytes.size(); i += 24, text += 32)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), charactersOf(bytes.data() + i));
    return i;
}

// Turns 32 characters into 24 bytes, with eight more written; false, with nothing written, if one of them is
// not in the alphabet.
PELVOR_WIDE inline bool readBlock(const Byte* text, Byte* bytes) {
    const __m256i lowKinds = inBothHalves(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                        0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A));
    const __m256i highKinds = inBothHalves(_mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10,
                                                         0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10));
    const __m256i shifts =
        inBothHalves(_mm_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i order = inBothHalves(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    const __m256i slash = _mm256_set1_epi8('/');
    __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
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

PELVOR_WIDE std::size_t readWide(std::span<const Byte> text, Byte* bytes) {
    std::size_t i = 0;
    while (i + 32 <= text.size() && readBlock(text.data() + i, bytes)) {
        i += 32;
        bytes += 24;
    }
    return i;
}

#else

std::size_t writeWide(std::span<const Byte>, Byte*) { return 0; }
std::size_t readWide(std::span<const Byte>, Byte*) { return 0; }

#endif

// Reads groups without padding; answers how many characters they are.
std::size_t readGroups(std::span<const Byte> text, Byte* bytes, WideInstructions wide) {
    std::size_t i = wide == WideInstructions::present ? readWide(text, bytes) : 0;
    bytes += i / 4 * 3;
    for (; i + 4 <= text.size(); i += 4) {
        unsigned a = kValues[text[i]], b = kValues[text[i + 1]], c = kValues[text[i + 2]],
                 d = kValues[text[i + 3]];
        if ((a | b | c | d) >= kPadding) break;
        unsigned group = a << 18 | b << 12 | c << 6 | d;
        *bytes++ = static_cast<Byte>(group >> 16);
        *bytes++ = static_cast<Byte>(group >> 8);
        *bytes++ = static_cast<Byte>(group);
    }
    return i;
}

}  // namespace

std::uint8_t* writeBase64(std::span<const std::uint8_t> bytes, std::uint8_t* text, WideInstructions wide) {
    std::size_t i = wide == WideInstructions::present ? writeWide(bytes, text) : 0;
    text += i / 3 * 4;
    for (; i + 3 <= bytes.size(); i += 3, text += 4) {
        unsigned group = static_cast<unsigned>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]);
        auto first = kPairs[group >> 12], second = kPairs[group & 0xFFF];
        text[0] = first[0];
        text[1] = first[1];
        text[2] = second[0];
        text[3] = second[1];
    }
    return i < bytes.size() ? writeTail(bytes.subspan(i), text) : text;
}

void Base64Reader::read(std::span<const std::uint8_t> text) {
    while (!text.empty() && !_isPadded) {
        if (_count == 0) {
            std::size_t size = readGroups(text, _bytes, _wide);
            _bytes += size / 4 * 3;
            text = text.subspan(size);
            if (text.empty()) return;
        }
        Byte value = kValues[text.front()];
        text = text.subspan(1);
        if (value == kForeign) continue;
        _group[_count++] = value;
        if (_count == 4) finishGroup();
    }
}

void Base64Reader::finishGroup() {
    auto [a, b, c, d] = _group;
    _count = 0;
    _isPadded = a == kPadding || b == kPadding || c == kPadding || d == kPadding;
    if (a == kPadding || b == kPadding) return;
    *_bytes++ = static_cast<Byte>(a << 2 | b >> 4);
    if (c == kPadding) return;
    *_bytes++ = static_cast<Byte>(b << 4 | c >> 2);
    if (d != kPadding) *_bytes++ = static_cast<Byte>(c << 6 | d);
}

}  // namespace pelvor
