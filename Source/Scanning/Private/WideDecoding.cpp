// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/WideDecoding.h"

#include <algorithm>
#include <array>
#include <bit>

#include "Scanning/Private/UTF8Block.h"
#include "Scanning/Private/UTF8Step.h"

#if defined(__x86_64__)
#if !defined(__clang__)
// GCC takes the operands that its own intrinsics leave undefined for a fault of the caller.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#define PELVOR_WIDE_TARGET __attribute__((target("avx512f,avx512bw,avx512vbmi,avx512vbmi2,bmi,popcnt")))
#define PELVOR_WIDE PELVOR_WIDE_TARGET __attribute__((always_inline)) inline
#endif

namespace pelvor {

#if defined(__x86_64__)
namespace {

PELVOR_WIDE __m512i all(int byte) { return _mm512_set1_epi8(static_cast<char>(byte)); }

PELVOR_WIDE std::uint64_t strangeLeads(__m512i bytes) {
    std::uint64_t isF0 = _mm512_cmpeq_epi8_mask(bytes, all(0xF0));
    std::uint64_t isF4 = _mm512_cmpeq_epi8_mask(bytes, all(0xF4));
    std::uint64_t hasLow = _mm512_cmplt_epu8_mask(bytes, all(0x90)) >> 1;
    return _mm512_cmpgt_epu8_mask(bytes, all(0xF4)) | (isF0 & hasLow) | (isF4 & ~hasLow);
}

PELVOR_WIDE UTF8Block blockOf(__m512i bytes, std::uint64_t beyond) {
    std::uint64_t leads4 = _mm512_cmpge_epu8_mask(bytes, all(0xF0));
    return {beyond, _mm512_cmplt_epi8_mask(bytes, all(0xC0)), _mm512_cmpge_epu8_mask(bytes, all(0xE0)),
            leads4, leads4 ? strangeLeads(bytes) : 0};
}

// Three bytes a unit: its low six bits (seven in ASCII), the six above them, and the top four.
struct Parts {
    __m512i low, middle, top;
};

// Both halves of the pairs, which stand at the third and fourth bytes of their characters.
PELVOR_WIDE void placePairs(Parts& parts, __m512i bytes, std::uint64_t leads4, __m512i before1,
                            __m512i before2) {
    std::uint64_t first = leads4 << 2, second = leads4 << 3;
    // 0xDC00 and the low ten bits.
    __m512i middle = _mm512_or_si512(_mm512_and_si512(before1, all(0x0F)), all(0x30));
    parts.middle = _mm512_mask_mov_epi8(parts.middle, second, middle);
    parts.top = _mm512_mask_mov_epi8(parts.top, first | second, all(0x0D));
    // 0xD800 and the bits above those, less 0x10000.
    __m512i low = _mm512_or_si512(_mm512_and_si512(_mm512_slli_epi16(before1, 2), all(0x3C)),
                                  _mm512_and_si512(_mm512_srli_epi16(bytes, 4), all(0x03)));
    parts.low = _mm512_mask_mov_epi8(parts.low, first, low);
    middle = _mm512_or_si512(_mm512_and_si512(_mm512_slli_epi16(before2, 2), all(0x1C)),
                             _mm512_and_si512(_mm512_srli_epi16(before1, 4), all(0x03)));
    middle = _mm512_or_si512(_mm512_sub_epi8(middle, all(1)), all(0x20));
    parts.middle = _mm512_mask_mov_epi8(parts.middle, first, middle);
}

PELVOR_WIDE Parts partsOf(__m512i bytes, const UTF8Block& block) {
    alignas(64) static constexpr auto kPrevious = [] {
        std::array<std::uint8_t, 64> places{};
        for (unsigned i = 1; i < 64; ++i) places[i] = static_cast<std::uint8_t>(i - 1);
        return places;
    }();
    const __m512i previous = _mm512_load_si512(kPrevious.data()), six = all(0x3F);
    __m512i before1 = _mm512_permutexvar_epi8(previous, bytes);
    __m512i before2 = _mm512_permutexvar_epi8(previous, before1);
    Parts parts;
    parts.low = _mm512_mask_mov_epi8(bytes, block.beyond, _mm512_and_si512(bytes, six));
    parts.middle = _mm512_maskz_mov_epi8(block.continuations, _mm512_and_si512(before1, six));
    parts.top = _mm512_maskz_mov_epi8(block.leads3 << 2, _mm512_and_si512(before2, all(0x0F)));
    if (block.leads4) placePairs(parts, bytes, block.leads4, before1, before2);
    return parts;
}

PELVOR_WIDE void storeUnits(unichar* units, unsigned count, __m512i values) {
    _mm512_mask_storeu_epi16(units, static_cast<__mmask32>(firstBits(count)), values);
}

PELVOR_WIDE void storeHalf(unichar* units, unsigned count, __m256i low, __m256i middle, __m256i top) {
    __m512i wide =
        _mm512_or_si512(_mm512_cvtepu8_epi16(low), _mm512_slli_epi16(_mm512_cvtepu8_epi16(middle), 6));
    wide = _mm512_or_si512(wide, _mm512_slli_epi16(_mm512_cvtepu8_epi16(top), 12));
    storeUnits(units, count, wide);
}

PELVOR_WIDE void store(unichar* units, unsigned count, const Parts& parts) {
    storeHalf(units, std::min(count, 32u), _mm512_castsi512_si256(parts.low),
              _mm512_castsi512_si256(parts.middle), _mm512_castsi512_si256(parts.top));
    if (count <= 32) return;
    storeHalf(units + 32, count - 32, _mm512_extracti64x4_epi64(parts.low, 1),
              _mm512_extracti64x4_epi64(parts.middle, 1), _mm512_extracti64x4_epi64(parts.top, 1));
}

PELVOR_WIDE void storeASCII(unichar* units, unsigned count, __m512i bytes) {
    storeUnits(units, std::min(count, 32u), _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes)));
    if (count <= 32) return;
    storeUnits(units + 32, count - 32, _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(bytes, 1)));
}

}  // namespace

PELVOR_WIDE_TARGET void UTF8Step::readSixtyFours() {
    while (_in < _inEnd && _out < _outEnd) {
        // No more units than bytes: there is room for all.
        auto count = static_cast<unsigned>(std::min<std::size_t>({64, inputLeft(), roomLeft()}));
        __m512i bytes = _mm512_maskz_loadu_epi8(firstBits(count), _in);
        std::uint64_t beyond = _mm512_movepi8_mask(bytes);
        if (!beyond) {
            storeASCII(_out, count, bytes);
            _in += count;
            _out += count;
            continue;
        }
        UTF8Block block = blockOf(bytes, beyond);
        unsigned whole = block.wholeCount(count, 64);
        if (!whole) return;
        std::uint64_t places = block.unitPlaces(whole);
        Parts parts = partsOf(bytes, block);
        parts = {_mm512_maskz_compress_epi8(places, parts.low),
                 _mm512_maskz_compress_epi8(places, parts.middle),
                 _mm512_maskz_compress_epi8(places, parts.top)};
        auto units = static_cast<unsigned>(std::popcount(places));
        store(_out, units, parts);
        _in += whole;
        _out += units;
        // The end cuts off three bytes at most: what follows is malformed.
        if (whole + 3 < count) return;
    }
}

namespace {

// What the upper half of the bytes stands for: two pairs of tables of 32 units.
struct Tables {
    __m512i first, second, third, fourth;
};

PELVOR_WIDE __m512i lookUp(const Tables& tables, __m512i bytes) {
    __m512i lower = _mm512_permutex2var_epi16(tables.first, bytes, tables.second);
    __m512i upper = _mm512_permutex2var_epi16(tables.third, bytes, tables.fourth);
    __mmask32 isUpper = _mm512_test_epi16_mask(bytes, _mm512_set1_epi16(0x40));
    __mmask32 isBeyond = _mm512_test_epi16_mask(bytes, _mm512_set1_epi16(0x80));
    return _mm512_mask_mov_epi16(bytes, isBeyond, _mm512_mask_mov_epi16(lower, isUpper, upper));
}

}  // namespace

PELVOR_WIDE_TARGET void decodeSinglyWide(const unichar* half, unsigned span, const unsigned char* bytes,
                                         NSUInteger count, unichar* units) {
    const Tables tables{_mm512_loadu_si512(half), _mm512_loadu_si512(half + 32),
                        _mm512_loadu_si512(half + 64), _mm512_loadu_si512(half + 96)};
    for (NSUInteger i = 0; i < count; i += 64) {
        unsigned left = std::min(count - i, NSUInteger{64});
        __m512i block = _mm512_maskz_loadu_epi8(firstBits(left), bytes + i);
        __m512i fromHalf = _mm512_sub_epi8(block, all(0x80));
        if (!_mm512_cmplt_epu8_mask(fromHalf, all(static_cast<int>(span)))) {
            storeASCII(units + i, left, block);
            continue;
        }
        __m512i first = _mm512_cvtepu8_epi16(_mm512_castsi512_si256(block));
        __m512i second = _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1));
        storeUnits(units + i, std::min(left, 32u), lookUp(tables, first));
        if (left > 32) storeUnits(units + i + 32, left - 32, lookUp(tables, second));
    }
}
#else
void UTF8Step::readSixtyFours() {}

void decodeSinglyWide(const unichar*, unsigned, const unsigned char*, NSUInteger, unichar*) {}
#endif

}  // namespace pelvor
