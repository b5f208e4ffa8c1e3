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

// The leads of the block before, and above them those of this block.
class Leads {
  public:
    // Leads of two, three and four bytes or more.
    void add(Bits two, Bits three, Bits four) {
        add(_two, two);
        add(_three, three);
        add(_four, four);
    }
    // Whether this block has parts of characters of four bytes.
    bool hasFour() const { return _four >> (kBlockSize - 3) != 0; }
    // Whether a character goes on behind this block.
    bool isLastOpen() const { return ofBlock(_two | _three << 1 | _four << 2) >> (kBlockSize - 1); }
    Bits continuations() const { return ofBlock(_two << 1 | _three << 2 | _four << 3); }
    // Where units go: to the last byte of each character, the first half of a pair to the byte before.
    Bits unitPlaces() const { return ~ofBlock(_two | _three << 1 | _four << 2) | ofBlock(_four << 2); }

  private:
    static void add(std::uint64_t& leads, Bits bits) {
        leads = leads >> kBlockSize | std::uint64_t{bits} << kBlockSize;
    }
    static Bits ofBlock(std::uint64_t bits) { return static_cast<Bits>(bits >> kBlockSize); }

    std::uint64_t _two = 0, _three = 0, _four = 0;
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

// The bytes of a block, and the bytes up to three places before each of them.
struct Block {
    __m256i bytes, before1, before2, before3;
};

PELVOR_WIDE inline Block blockOf(__m256i bytes, __m256i previous) {
    const __m256i carried = _mm256_permute2x128_si256(previous, bytes, 0x21);
    return {bytes, _mm256_alignr_epi8(bytes, carried, 15), _mm256_alignr_epi8(bytes, carried, 14),
            _mm256_alignr_epi8(bytes, carried, 13)};
}

// Second bytes below the limit, where one of the leads is before them, or from it on, where the other is.
PELVOR_WIDE inline __m256i secondsOutside(const Block& block, int leadOfUpper, int leadOfLower, int limit) {
    const __m256i isUpper = isAtLeast(block.bytes, limit);
    return either(_mm256_andnot_si256(isUpper, _mm256_cmpeq_epi8(block.before1, every(leadOfUpper))),
                  both(isUpper, _mm256_cmpeq_epi8(block.before1, every(leadOfLower))));
}

// Bytes that the rule does not take after what is before them. The values of four bytes are from 0x10000 to
// 0x10FFFF; the strict rule refuses overlong forms of two and three bytes, and halves of pairs.
template <UTF8Rule kRule>
PELVOR_WIDE inline Bits strangeBytes(const Block& block, bool hasFour) {
    __m256i strange = _mm256_setzero_si256();
    if (kRule == UTF8Rule::strict)
        strange = either(_mm256_cmpeq_epi8(both(block.bytes, every(0xFE)), every(0xC0)),
                         secondsOutside(block, 0xE0, 0xED, 0xA0));
    if (hasFour)
        strange =
            either(strange, either(isAtLeast(block.bytes, 0xF5), secondsOutside(block, 0xF0, 0xF4, 0x90)));
    return bitsOf(strange);
}

// Three bytes a unit: its low six bits (seven in ASCII), the six above them, and the top four.
struct Parts {
    __m256i low, middle, top;
};

PELVOR_WIDE inline void replace(__m256i& bytes, __m256i where, __m256i with) {
    bytes = _mm256_blendv_epi8(bytes, with, where);
}

// Both halves of the pairs, which stand at the third and fourth bytes of their characters.
PELVOR_WIDE inline void placePairs(Parts& parts, const Block& block) {
    const auto [bytes, before1, before2, before3] = block;
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

PELVOR_WIDE inline Parts partsOf(const Block& block, bool hasPairs) {
    const auto [bytes, before1, before2, before3] = block;
    __m256i isBeyond = _mm256_cmpgt_epi8(_mm256_setzero_si256(), bytes);
    Parts parts;
    parts.low = _mm256_andnot_si256(both(isBeyond, every(0xC0)), bytes);
    parts.middle = both(both(before1, every(0x3F)), isContinuation(bytes));
    parts.top = both(both(before2, every(0x0F)), isAtLeast(before2, 0xE0));
    if (hasPairs) placePairs(parts, block);
    return parts;
}

// Stores those of eight units whose bits are the lowest of `places`.
PELVOR_WIDE inline void storeChosen(char16_t* units, __m128i eight, Bits places) {
    __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(gathering.bytes[places & 0xFF]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(units), _mm_shuffle_epi8(eight, shuffle));
}

// Writes up to 32 units, whatever their number, and returns the place behind them.
PELVOR_WIDE inline char16_t* store(char16_t* units, const Parts& parts, Bits places) {
    __m256i lower = either(parts.low, both(_mm256_slli_epi16(parts.middle, 6), every(0xC0)));
    __m256i upper = either(both(_mm256_srli_epi16(parts.middle, 2), every(0x0F)),
                           both(_mm256_slli_epi16(parts.top, 4), every(0xF0)));
    __m256i even = _mm256_unpacklo_epi8(lower, upper), odd = _mm256_unpackhi_epi8(lower, upper);
    storeChosen(units, _mm256_castsi256_si128(even), places);
    storeChosen(units + std::popcount(places & firstBits(8)), _mm256_castsi256_si128(odd), places >> 8);
    storeChosen(units + std::popcount(places & firstBits(16)), _mm256_extracti128_si256(even, 1),
                places >> 16);
    storeChosen(units + std::popcount(places & firstBits(24)), _mm256_extracti128_si256(odd, 1),
                places >> 24);
    return units + std::popcount(places);
}

PELVOR_WIDE inline void storeASCII(char16_t* units, __m256i bytes) {
    auto* to = reinterpret_cast<__m256i*>(units);
    _mm256_storeu_si256(to, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(bytes)));
    _mm256_storeu_si256(to + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(bytes, 1)));
}

// No more units than bytes come of a block: there is room for all. Each unit is put together at the last byte
// of its character, which may have begun in the block before; those places are then moved together. Blocks of
// ASCII follow whole characters alone, so that what is before the next block does not matter to that block.
template <UTF8Rule kRule>
PELVOR_WIDE void decode(UTF8Work& work) {
    const unsigned char* in = work.in;
    char16_t* out = work.out;
    __m256i previous = _mm256_setzero_si256();
    Leads leads;
    Bits wrong = 0;
    bool isOpen = false;
    while (!wrong && work.inEnd - in >= kBlockSize && work.outEnd - out >= kBlockSize) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
        const Bits beyond = bitsOf(bytes);
        if (!beyond && !isOpen) {
            storeASCII(out, bytes);
            in += kBlockSize;
            out += kBlockSize;
            leads = {};
            continue;
        }
        const Block block = blockOf(bytes, previous);
        const Bits continuations = bitsOf(isContinuation(bytes));
        leads.add(beyond & ~continuations, bitsOf(isAtLeast(bytes, 0xE0)), bitsOf(isAtLeast(bytes, 0xF0)));
        wrong = (leads.continuations() ^ continuations) | strangeBytes<kRule>(block, leads.hasFour());
        const unsigned count = wrong ? static_cast<unsigned>(std::countr_zero(wrong)) : kBlockSize;
        out = store(out, partsOf(block, leads.hasFour()), leads.unitPlaces() & firstBits(count));
        in += count;
        previous = bytes;
        isOpen = leads.isLastOpen();
    }
    work.in = in;
    work.out = out;
}

// Moves back to the beginning of a character of which only the first bytes have been read.
void leaveOpenCharacter(UTF8Work& work, const unsigned char* first) {
    for (int count = 1; count <= 3 && count <= work.in - first; ++count) {
        const unsigned char lead = work.in[-count];
        if ((lead & 0xC0) == 0x80) continue;
        const int length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (count >= length) return;
        work.in -= count;
        if (length == 4 && count == 3) --work.out;  // the first half of a pair
        return;
    }
}

}  // namespace

void decodeUTF8BlocksWidely(UTF8Work& work, UTF8Rule rule) {
    const unsigned char* const first = work.in;
    rule == UTF8Rule::strict ? decode<UTF8Rule::strict>(work) : decode<UTF8Rule::lenient>(work);
    leaveOpenCharacter(work, first);
}
#else
void decodeUTF8BlocksWidely(UTF8Work&, UTF8Rule) {}
#endif

}  // namespace pelvor
