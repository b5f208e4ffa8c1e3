// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/UTF8Step.h"

#include <bit>
#include <cstring>

#include "Shared/Vectors.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

constexpr unichar kReplacement = 0xFFFD;

using Bytes8 = std::uint8_t __attribute__((vector_size(8)));

template <class Word>
Word load(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

constexpr std::uint64_t kHighBits = 0x8080808080808080u;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// How far input and output have come. Units that were written beyond the end of the output are overwritten.
struct Cursor {
    const unsigned char* in;
    unichar* out;

    void widenEight(int offset) {
        Units8 wide = __builtin_convertvector(load<Bytes8>(in + offset), Units8);
        std::memcpy(out + offset, &wide, sizeof wide);
    }
    void skip(int bytes, int units) {
        in += bytes;
        out += units;
    }
    // Reads those of the next sixteen bytes that are ASCII; returns whether a byte stopped it.
    bool readASCII() {
        widenEight(0);
        widenEight(8);
        int count = std::countr_zero(bitsOf(loadBytes(in)) | 0x10000);
        skip(count, count);
        return count < 16;
    }
    bool readTwoByteForm() {
        auto word = load<std::uint16_t>(in);
        if ((word & 0xC0E0) != 0x80C0) return false;
        *out = static_cast<unichar>((word & 0x1F) << 6 | (word >> 8 & 0x3F));
        skip(2, 1);
        return true;
    }
    // Up to four characters.
    bool readTwoByteForms() {
        auto word = load<std::uint64_t>(in);
        std::uint64_t wrong = (word & 0xC0E0C0E0C0E0C0E0u) ^ 0x80C080C080C080C0u;
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
        *out = static_cast<unichar>((word & 0x0F) << 12 | (word >> 2 & 0x0FC0) | (word >> 16 & 0x3F));
        skip(3, 1);
        return true;
    }
    bool readPair() {
        auto word = load<std::uint32_t>(in);
        if ((word & 0xC0C0C0F8u) != 0x808080F0u) return false;
        std::uint32_t value =
            (word & 0x07) << 18 | (word << 4 & 0x3F000) | (word >> 10 & 0x0FC0) | (word >> 24 & 0x3F);
        value -= 0x10000;
        if (value >= 0x100000) return false;
        out[0] = static_cast<unichar>(0xD800 + (value >> 10));
        out[1] = static_cast<unichar>(0xDC00 + (value & 0x3FF));
        skip(4, 2);
        return true;
    }
};

}  // namespace

void UTF8Step::run() {
    const bool isWide = usesWideInstructions();
    while (_in < _inEnd && _out < _outEnd) {
        if (_state.utf8octetsremaining) {
            if (readOwed() == Progress::stopped) return;
            continue;
        }
        if (isWide) readWide();
        readWellFormed();
        while (_in < _inEnd && _out < _outEnd && *_in < 0x80) put(static_cast<unichar>(*_in++));
        if (_in == _inEnd || _out == _outEnd || readSequence() == Progress::stopped) return;
    }
}

// Runs as long as there are enough bytes and enough room that no byte needs a check of its own.
void UTF8Step::readWellFormed() {
    constexpr std::ptrdiff_t kEnough = 24;
    Cursor cursor{_in, _out};
    auto hasBoth = [&](std::ptrdiff_t count) {
        return _inEnd - cursor.in >= count && _outEnd - cursor.out >= count;
    };
    while (hasBoth(kEnough)) {
        if (!cursor.readASCII()) {
            while (hasBoth(32)) {
                const unsigned char* in = cursor.in;
                std::uint64_t joined = load<std::uint64_t>(in) | load<std::uint64_t>(in + 8) |
                                       load<std::uint64_t>(in + 16) | load<std::uint64_t>(in + 24);
                if (joined & kHighBits) break;
                for (int i = 0; i < 32; i += 8) cursor.widenEight(i);
                cursor.skip(32, 32);
            }
        } else if (cursor.readTwoByteForm()) {
            while (hasBoth(8) && cursor.readTwoByteForms()) continue;
        } else if (cursor.readThreeByteForm()) {
            while (hasBoth(4) && cursor.readThreeByteForm()) continue;
        } else if (cursor.readPair()) {
            while (hasBoth(4) && cursor.readPair()) continue;
        } else {
            break;
        }
    }
    _in = cursor.in;
    _out = cursor.out;
}

UTF8Step::Progress UTF8Step::readSequence() {
    unsigned char lead = *_in;
    std::size_t left = inputLeft();
    if (lead < 0xC0 || lead >= 0xFE) {
        ++_in;
        put(kReplacement);
    } else if (lead < 0xE0) {
        if (left < 2) {
            owe(lead & 0x1Fu, 1);
        } else {
            bool isWhole = isContinuation(_in[1]);
            put(isWhole ? static_cast<unichar>((lead & 0x1F) << 6 | (_in[1] & 0x3F)) : kReplacement);
            _in += 2;
        }
    } else if (lead < 0xF0) {
        if (left < 3) {
            owe(lead & 0x0Fu, 2);
        } else {
            bool isWhole = isContinuation(_in[1]) && isContinuation(_in[2]);
            unsigned value = (lead & 0x0Fu) << 12 | (_in[1] & 0x3Fu) << 6 | (_in[2] & 0x3Fu);
            put(isWhole ? static_cast<unichar>(value) : kReplacement);
            _in += 3;
        }
    } else if (lead < 0xF8 && left >= 4) {
        std::uint32_t value =
            (lead & 0x07u) << 18 | (_in[1] & 0x3Fu) << 12 | (_in[2] & 0x3Fu) << 6 | (_in[3] & 0x3Fu);
        _in += 4;
        return put(value);
    } else {
        std::uint16_t owed = lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
        owe(lead & (0x3Fu >> (owed - 1)), owed);
    }
    return Progress::more;
}

void UTF8Step::owe(std::uint32_t bits, std::uint16_t count) {
    ++_in;
    _state.partialCharacter = bits;
    _state.utf8octetsremaining = count;
}

UTF8Step::Progress UTF8Step::readOwed() {
    for (; _state.utf8octetsremaining && _in < _inEnd; --_state.utf8octetsremaining)
        _state.partialCharacter = _state.partialCharacter << 6 | (*_in++ & 0x3Fu);
    if (_state.utf8octetsremaining) return Progress::stopped;
    std::uint32_t value = _state.partialCharacter;
    _state.partialCharacter = 0;
    return put(value);
}

// Stops, and loses the character, where a pair finds room for one unit.
UTF8Step::Progress UTF8Step::put(std::uint32_t value) {
    if (value < 0x10000 || value > 0x10FFFF) {
        put(value < 0x10000 ? static_cast<unichar>(value) : kReplacement);
        return Progress::more;
    }
    if (roomLeft() < 2) return Progress::stopped;
    put(static_cast<unichar>(0xD800 + ((value - 0x10000) >> 10)));
    put(static_cast<unichar>(0xDC00 + ((value - 0x10000) & 0x3FF)));
    return Progress::more;
}

}  // namespace pelvor
