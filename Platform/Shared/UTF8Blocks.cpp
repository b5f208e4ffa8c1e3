// SPDX-License-Identifier: Apache-2.0
#include "Shared/UTF8Blocks.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "Shared/Codepoints.h"
#include "Shared/Vectors.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080u;

template <class Word>
Word load(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Reads runs of characters of one length. What is written behind the output is written again.
template <UTF8Rule kRule>
struct Cursor : UTF8Work {
    static constexpr bool kIsStrict = kRule == UTF8Rule::strict;

    void skip(int bytes, int units) {
        in += bytes;
        out += units;
    }
    // Reads those of the next sixteen bytes that are ASCII; returns whether a byte stopped it.
    bool readASCII() {
        widenEight(in, out);
        widenEight(in + 8, out + 8);
        int count = std::countr_zero(bitsOf(loadBytes(in)) | 0x10000);
        skip(count, count);
        return count < 16;
    }
    void readASCIIBlocks() {
        for (; hasBoth(32); skip(32, 32)) {
            if ((load<std::uint64_t>(in) | load<std::uint64_t>(in + 8) | load<std::uint64_t>(in + 16) |
                 load<std::uint64_t>(in + 24)) &
                kHighBits)
                return;
            for (int i = 0; i < 32; i += 8) widenEight(in + i, out + i);
        }
    }
    bool readTwoByteForm() {
        auto word = load<std::uint16_t>(in);
        if ((word & 0xC0E0) != 0x80C0 || (kIsStrict && !(word & 0x1E))) return false;
        *out = static_cast<char16_t>((word & 0x1F) << 6 | (word >> 8 & 0x3F));
        skip(2, 1);
        return true;
    }
    // Up to four characters.
    bool readTwoByteForms() {
        auto word = load<std::uint64_t>(in);
        std::uint64_t wrong = (word & 0xC0E0C0E0C0E0C0E0u) ^ 0x80C080C080C080C0u;
        // The highest bit of each half-word whose lead has none of the bits that say 0x80 or more.
        if (kIsStrict) wrong |= ~((word & 0x001E001E001E001Eu) + 0x7FFF7FFF7FFF7FFFu) & 0x8000800080008000u;
        if (wrong & 0xFFFF) return false;
        std::uint64_t units = (word & 0x001F001F001F001Fu) << 6 | (word >> 8 & 0x003F003F003F003Fu);
        std::memcpy(out, &units, sizeof units);
        int count = wrong ? std::countr_zero(wrong) / 16 : 4;
        skip(2 * count, count);
        return true;
    }
    bool readThreeByteForm() {
        auto word = load<std::uint32_t>(in);
        if ((word & 0x00C0C0F0u) != 0x008080E0u) return false;
        auto unit = static_cast<char16_t>((word & 0x0F) << 12 | (word >> 2 & 0x0FC0) | (word >> 16 & 0x3F));
        if (kIsStrict && (unit < 0x800 || isSurrogate(unit))) return false;
        *out = unit;
        skip(3, 1);
        return true;
    }
    bool readPair() {
        auto word = load<std::uint32_t>(in);
        if ((word & 0xC0C0C0F8u) != 0x808080F0u) return false;
        std::uint32_t value =
            (word & 0x07) << 18 | (word << 4 & 0x3F000) | (word >> 10 & 0x0FC0) | (word >> 24 & 0x3F);
        if (value < 0x10000 || value > 0x10FFFF) return false;
        writeCodepoint(value, out);
        skip(4, 2);
        return true;
    }
    // As long as there is enough of both that nothing need be asked for each byte.
    void read() {
        while (hasBoth(kEnoughForUTF8Blocks)) {
            if (!readASCII()) {
                readASCIIBlocks();
            } else if (readTwoByteForm()) {
                while (hasBoth(8) && readTwoByteForms()) continue;
            } else if (readThreeByteForm()) {
                while (hasBoth(4) && readThreeByteForm()) continue;
            } else if (readPair()) {
                while (hasBoth(4) && readPair()) continue;
            } else {
                break;
            }
        }
    }
};

template <UTF8Rule kRule>
void decodePlainly(UTF8Work& work) {
    Cursor<kRule> cursor{work};
    cursor.read();
    work = cursor;
}

}  // namespace

void decodeUTF8Blocks(UTF8Work& work, UTF8Rule rule) {
    if (usesWideInstructions()) decodeUTF8BlocksWidely(work, rule);
    rule == UTF8Rule::strict ? decodePlainly<UTF8Rule::strict>(work) : decodePlainly<UTF8Rule::lenient>(work);
}

}  // namespace pelvor
