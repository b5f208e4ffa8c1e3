// SPDX-License-Identifier: Apache-2.0
// UTF-8 thirty-two bytes at a time.
#include <bit>
#include <cstdint>

#include "Shared/UTF8Blocks.h"
#include "Shared/WideInstructions.h"

#ifdef PELVOR_HAS_WIDE_FORMS
#include <immintrin.h>
#endif

namespace pelvor {

#ifdef PELVOR_HAS_WIDE_FORMS
namespace {

// A bit for each byte of a block, the first byte's lowest.
using Bits = std::uint32_t;
constexpr unsigned kBlockSize = 32;

Bits firstBits(unsigned count) { return count < kBlockSize ? (Bits{1} << count) - 1 : ~Bits{0}; }

struct Block {
    Bits beyond;         // not ASCII
    Bits continuations;  // 10xxxxxx
    Bits leads3;         // of three bytes or more
    Bits leads4;         // of four bytes or more
    Bits strange;        // leads of characters that the rule does not take, and bytes that are no leads

    // How many of the first bytes are whole characters that need no second look. A character that the end
    // cuts in two is not among them.
    unsigned wholeCount() const {
        Bits leads = beyond & ~continuations;
        Bits expected = leads << 1 | leads3 << 2 | leads4 << 3;
        if (Bits wrong = (expected ^ continuations) | strange) [[unlikely]] {
            auto place = static_cast<unsigned>(std::countr_zero(wrong));
            bool isMissing = (expected & ~continuations) >> place & 1;
            if (!isMissing) return place;
            return kBlockSize - 1 -
                   static_cast<unsigned>(std::countl_zero(~continuations & firstBits(place)));
        }
        Bits open = (leads & ~firstBits(31)) | (leads3 & ~firstBits(30)) | (leads4 & ~firstBits(29));
        return static_cast<unsigned>(std::countr_zero(open));
    }
    // Where units go in the first bytes: to the last byte of each character, the first half of a pair to the
    // byte before.
    Bits unitPlaces(unsigned count) const {
        Bits kept = firstBits(count);
        return (kept & ~((continuations & kept) >> 1)) | (leads4 << 2 & kept);
    }
};

// For each choice of eight units the bytes that move those together.
struct Gathering {
    alignas(16) std::uint8_t bytes[256][16];
};
constexpr Gathering gathering = [] {
    Gathering all{};
    for (unsigned choice = 0; choice < 256; ++choice)
        for (unsigned unit = 0, count = 0; unit < 8; ++unit)
            if (choice >> unit & 1) {
                all.bytes[choice][count++] = static_cast<std::uint8_t>(2 * unit);
                all.bytes[choice][count++] = static_cast<std::uint8_t>(2 * unit + 1);
            }
    return all;
}();

PELVOR_WIDE inline __m256i every(int byte) { return _mm256_set1_epi8(static_cast<char>(byte)); }

PELVOR_WIDE inline __m256i both(__m256i one, __m256i other) { return _mm256_and_si256(one, other); }

PELVOR_WIDE inline __m256i either(__m256i one, __m256i other) { return _mm256_or_si256(one, other); }

PELVOR_WIDE inline __m256i isAtLeast(__m256i bytes, int least) {
    return _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, every(least)), bytes);
}

PELVOR_WIDE inline Bits bitsOf(__m256i bytes) { return static_cast<unsigned>(_mm256_movemask_epi8(bytes)); }

PELVOR_WIDE inline __m256i isContinuation(__m256i bytes) { return _mm256_cmpgt_epi8(every(0xC0), bytes); }

// Where a byte is this lead and the next byte is below the limit, or, for `isBelow` false, is not.
PELVOR_WIDE inline Bits leadsBefore(__m256i bytes, int lead, bool isBelow, int limit) {
    Bits isAbove = bitsOf(isAtLeast(bytes, limit));
    return bitsOf(_mm256_cmpeq_epi8(bytes, every(lead))) & (isBelow ? ~isAbove : isAbove) >> 1;
}

// Leads of four bytes whose value is below 0x10000 or above 0x10FFFF, and those of more.
PELVOR_WIDE inline Bits strangeLeadsOf4(__m256i bytes) {
    return bitsOf(isAtLeast(bytes, 0xF5)) | leadsBefore(bytes, 0xF0, true, 0x90) |
           leadsBefore(bytes, 0xF4, false, 0x90);
}

// Leads of overlong forms of two and three bytes, and of halves of pairs.
PELVOR_WIDE inline Bits illFormedLeads(__m256i bytes, bool hasLeadsOf3) {
    Bits leads = bitsOf(_mm256_cmpeq_epi8(both(bytes, every(0xFE)), every(0xC0)));
    if (!hasLeadsOf3) return leads;
    return leads | leadsBefore(bytes, 0xE0, true, 0xA0) | leadsBefore(bytes, 0xED, false, 0xA0);
}

template <UTF8Rule kRule>
PELVOR_WIDE inline Block blockOf(__m256i bytes, Bits beyond) {
    Block block{beyond, bitsOf(isContinuation(bytes)), bitsOf(isAtLeast(bytes, 0xE0)),
                bitsOf(isAtLeast(bytes, 0xF0)), 0};
    if (block.leads4) block.strange = strangeLeadsOf4(bytes);
    if (kRule == UTF8Rule::strict) block.strange |= illFormedLeads(bytes, block.leads3 != 0);
    return block;
}

// Three bytes a unit: its low six bits (seven in ASCII), the six above them, and the top four.
struct Parts {
    __m256i low, middle, top;
};

PELVOR_WIDE inline void replace(__m256i& bytes, __m256i where, __m256i with) {
    bytes = _mm256_blendv_epi8(bytes, with, where);
}

// Both halves of the pairs, which stand at the third and fourth bytes of their characters.
PELVOR_WIDE inline void placePairs(Parts& parts, __m256i bytes, __m256i before1, __m256i before2,
                                   __m256i before3) {
    __m256i isFirst = isAtLeast(before2, 0xF0), isSecond = isAtLeast(before3, 0xF0);
    // 0xDC00 and the low ten bits.
    replace(parts.middle, isSecond, either(both(before1, every(0x0F)), every(0x30)));
    replace(parts.top, either(isFirst, isSecond), every(0x0D));
    // 0xD800 and the bits above those, less 0x10000.
    replace(parts.low, isFirst,
            either(both(_mm256_slli_epi16(before1, 2), every(0x3C)),
                   both(_mm256_srli_epi16(bytes, 4), every(0x03))));
    __m256i middle = either(both(_mm256_slli_epi16(before2, 2), every(0x1C)),
                            both(_mm256_srli_epi16(before1, 4), every(0x03)));
    replace(parts.middle, isFirst, either(_mm256_sub_epi8(middle, every(1)), every(0x20)));
}

PELVOR_WIDE inline Parts partsOf(__m256i bytes, bool hasPairs) {
    const __m256i carried = _mm256_permute2x128_si256(bytes, bytes, 0x08);
    __m256i before1 = _mm256_alignr_epi8(bytes, carried, 15);
    __m256i before2 = _mm256_alignr_epi8(bytes, carried, 14);
    __m256i isBeyond = _mm256_cmpgt_epi8(_mm256_setzero_si256(), bytes);
    Parts parts;
    parts.low = _mm256_andnot_si256(both(isBeyond, every(0xC0)), bytes);
    parts.middle = both(both(before1, every(0x3F)), isContinuation(bytes));
    parts.top = both(both(before2, every(0x0F)), isAtLeast(before2, 0xE0));
    if (hasPairs) placePairs(parts, bytes, before1, before2, _mm256_alignr_epi8(bytes, carried, 13));
    return parts;
}

// Stores those of eight units whose bits are set, and returns the place behind them.
PELVOR_WIDE inline char16_t* storeChosen(char16_t* units, __m128i eight, Bits places) {
    auto choice = static_cast<unsigned>(places & 0xFF);
    __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(gathering.bytes[choice]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(units), _mm_shuffle_epi8(eight, shuffle));
    return units + std::popcount(choice);
}

// Writes up to 32 units, whatever their number.
PELVOR_WIDE inline char16_t* store(char16_t* units, const Parts& parts, Bits places) {
    __m256i lower = either(parts.low, both(_mm256_slli_epi16(parts.middle, 6), every(0xC0)));
    __m256i upper = either(both(_mm256_srli_epi16(parts.middle, 2), every(0x0F)),
                           both(_mm256_slli_epi16(parts.top, 4), every(0xF0)));
    __m256i even = _mm256_unpacklo_epi8(lower, upper), odd = _mm256_unpackhi_epi8(lower, upper);
    units = storeChosen(units, _mm256_castsi256_si128(even), places);
    units = storeChosen(units, _mm256_castsi256_si128(odd), places >> 8);
    units = storeChosen(units, _mm256_extracti128_si256(even, 1), places >> 16);
    return storeChosen(units, _mm256_extracti128_si256(odd, 1), places >> 24);
}

PELVOR_WIDE inline void storeASCII(char16_t* units, __m256i bytes) {
    auto* to = reinterpret_cast<__m256i*>(units);
    _mm256_storeu_si256(to, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(bytes)));
    _mm256_storeu_si256(to + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(bytes, 1)));
}

// No more units than bytes come of a block: there is room for all. Each unit is put together at the last byte
// of its character; those places are then moved together.
template <UTF8Rule kRule>
PELVOR_WIDE void decode(UTF8Work& work) {
    const unsigned char* in = work.in;
    char16_t* out = work.out;
    while (work.inEnd - in >= kBlockSize && work.outEnd - out >= kBlockSize) {
        __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
        Bits beyond = bitsOf(bytes);
        if (!beyond) {
            storeASCII(out, bytes);
            in += kBlockSize;
            out += kBlockSize;
            continue;
        }
        Block block = blockOf<kRule>(bytes, beyond);
        unsigned whole = block.wholeCount();
        out = store(out, partsOf(bytes, block.leads4 != 0), block.unitPlaces(whole));
        in += whole;
        // The end cuts off three bytes at most: what follows is malformed.
        if (whole < kBlockSize - 3) break;
    }
    work.in = in;
    work.out = out;
}

}  // namespace

void decodeUTF8BlocksWidely(UTF8Work& work, UTF8Rule rule) {
    rule == UTF8Rule::strict ? decode<UTF8Rule::strict>(work) : decode<UTF8Rule::lenient>(work);
}
#else
void decodeUTF8BlocksWidely(UTF8Work&, UTF8Rule) {}
#endif

}  // namespace pelvor
