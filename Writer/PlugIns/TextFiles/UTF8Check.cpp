// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/UTF8Check.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <tmmintrin.h>
#endif

namespace pelvor {
namespace {

// The second byte decides about overlong forms, halves of pairs and what lies above U+10FFFF.
bool isSecondByte(std::uint8_t lead, std::uint8_t byte) {
    const std::uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return byte >= low && byte <= high;
}

// How long the character beyond ASCII at the place is; 0 if there is none.
std::size_t lengthOfCharacter(std::string_view bytes, std::size_t place) {
    const std::uint8_t lead = byteAt(bytes, place);
    const std::size_t length = lengthAfterLead(lead);
    if (length == 1 || lead > 0xF4 || bytes.size() - place < length) return 0;
    if (!isSecondByte(lead, byteAt(bytes, place + 1))) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if (!isContinuation(byteAt(bytes, place + i))) return 0;
    return length;
}

constexpr std::uint64_t kHighBits = 0x8080808080808080;

// Of the byte, which comes first in memory, that has the first of the bits.
std::size_t placeOfFirstHighBit(std::uint64_t bits) {
    const int zeros =
        std::endian::native == std::endian::little ? std::countr_zero(bits) : std::countl_zero(bits);
    return static_cast<std::size_t>(zeros) / 8;
}

// Where the ASCII that stands at the place ends.
std::size_t endOfASCII(std::string_view bytes, std::size_t place) {
    for (std::uint64_t words[4]; bytes.size() - place >= sizeof words; place += sizeof words) {
        std::memcpy(words, bytes.data() + place, sizeof words);
        if ((words[0] | words[1] | words[2] | words[3]) & kHighBits) break;
    }
    for (std::uint64_t word; bytes.size() - place >= sizeof word; place += sizeof word) {
        std::memcpy(&word, bytes.data() + place, sizeof word);
        if (word & kHighBits) return place + placeOfFirstHighBit(word & kHighBits);
    }
    while (place < bytes.size() && byteAt(bytes, place) < 0x80) ++place;
    return place;
}

#if defined(__x86_64__)
#define PELVOR_SSSE3 __attribute__((target("ssse3")))

// What can be wrong with a byte and the one before it. Each of three tables, for the halves of the first byte
// and the upper half of the second, tells what is possible; what all three allow is wrong.
enum Fault : std::uint8_t {
    tooShort = 1,            // a lead byte without a continuation
    tooLong = 2,             // a continuation after ASCII
    overlong3 = 4,           // E0 80 to E0 9F
    tooLarge = 8,            // F4 90 and more
    surrogate = 16,          // ED A0 and more
    overlong2 = 32,          // C0 and C1
    tooLargeOrOver4 = 64,    // F5 80 and more; F0 80 to F0 8F
    twoContinuations = 128,  // right only as the third or fourth byte of a character
};

constexpr std::uint8_t kAnyLow = tooShort | tooLong | twoContinuations;
constexpr std::uint8_t kLargeLow = kAnyLow | tooLarge | tooLargeOrOver4;

alignas(16) constexpr std::uint8_t kFirstHigh[16] = {tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     tooLong,
                                                     twoContinuations,
                                                     twoContinuations,
                                                     twoContinuations,
                                                     twoContinuations,
                                                     tooShort | overlong2,
                                                     tooShort,
                                                     tooShort | overlong3 | surrogate,
                                                     tooShort | tooLarge | tooLargeOrOver4};
alignas(16) constexpr std::uint8_t kFirstLow[16] = {kAnyLow | overlong3 | overlong2 | tooLargeOrOver4,
                                                    kAnyLow | overlong2,
                                                    kAnyLow,
                                                    kAnyLow,
                                                    kAnyLow | tooLarge,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow,
                                                    kLargeLow | surrogate,
                                                    kLargeLow,
                                                    kLargeLow};
constexpr std::uint8_t kContinuation = tooLong | overlong2 | twoContinuations;
alignas(16) constexpr std::uint8_t kSecondHigh[16] = {tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      kContinuation | overlong3 | tooLargeOrOver4,
                                                      kContinuation | overlong3 | tooLarge,
                                                      kContinuation | surrogate | tooLarge,
                                                      kContinuation | surrogate | tooLarge,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort,
                                                      tooShort};

PELVOR_SSSE3 __m128i load(const void* bytes) { return _mm_loadu_si128(static_cast<const __m128i*>(bytes)); }

// Not zero where something is wrong with a byte and those before it.
PELVOR_SSSE3 __m128i faultsIn(__m128i bytes, __m128i before) {
    const __m128i nibble = _mm_set1_epi8(0x0F);
    const __m128i first = _mm_alignr_epi8(bytes, before, 15);
    const __m128i firstHigh = _mm_and_si128(_mm_srli_epi16(first, 4), nibble);
    const __m128i secondHigh = _mm_and_si128(_mm_srli_epi16(bytes, 4), nibble);
    const __m128i pair =
        _mm_and_si128(_mm_and_si128(_mm_shuffle_epi8(load(kFirstHigh), firstHigh),
                                    _mm_shuffle_epi8(load(kFirstLow), _mm_and_si128(first, nibble))),
                      _mm_shuffle_epi8(load(kSecondHigh), secondHigh));
    // The upper bit is set where a third or a fourth byte has to be.
    const __m128i third = _mm_subs_epu8(_mm_alignr_epi8(bytes, before, 14), _mm_set1_epi8(0xE0 - 0x80));
    const __m128i fourth = _mm_subs_epu8(_mm_alignr_epi8(bytes, before, 13), _mm_set1_epi8(0xF0 - 0x80));
    const __m128i wanted = _mm_and_si128(_mm_or_si128(third, fourth), _mm_set1_epi8(static_cast<char>(0x80)));
    return _mm_xor_si128(pair, wanted);
}

PELVOR_SSSE3 bool isUTF8Widely(std::string_view bytes) {
    __m128i before = _mm_setzero_si128(), faults = _mm_setzero_si128();
    for (; bytes.size() >= 16; bytes.remove_prefix(16)) {
        const __m128i block = load(bytes.data());
        // Nothing but ASCII, twice: there is nothing to look at.
        if (_mm_movemask_epi8(_mm_or_si128(block, before)) != 0)
            faults = _mm_or_si128(faults, faultsIn(block, before));
        before = block;
    }
    // The zeros that fill the last block up make a fault of a character that is cut off.
    char last[16] = {};
    std::memcpy(last, bytes.data(), bytes.size());
    faults = _mm_or_si128(faults, faultsIn(load(last), before));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(faults, _mm_setzero_si128())) == 0xFFFF;
}
#endif

}  // namespace

bool isUTF8(std::string_view bytes) {
#if defined(__x86_64__)
    static const bool isWide = __builtin_cpu_supports("ssse3") != 0;
    if (isWide) return isUTF8Widely(bytes);
#endif
    return isUTF8Plainly(bytes);
}

bool isUTF8Plainly(std::string_view bytes) {
    for (std::size_t place = 0; (place = endOfASCII(bytes, place)) < bytes.size();) {
        while (place < bytes.size() && byteAt(bytes, place) >= 0x80) {
            const std::size_t length = lengthOfCharacter(bytes, place);
            if (length == 0) return false;
            place += length;
        }
    }
    return true;
}

}  // namespace pelvor
