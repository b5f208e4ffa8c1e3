// SPDX-License-Identifier: Apache-2.0
#include "Scanning/UTF8StepPrivate.h"

#include <bit>
#include <cstring>

#include "Scanning/WideInstructionsPrivate.h"

namespace pelvor {
namespace {

constexpr unichar kReplacement = 0xFFFD;

// What compilers turn into the machine's vectors.
using Bytes8 = std::uint8_t __attribute__((vector_size(8)));
using Units8 = std::uint16_t __attribute__((vector_size(16)));

template <class Word>
Word load(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

void widenEight(const unsigned char* bytes, unichar* units) {
    Units8 wide = __builtin_convertvector(load<Bytes8>(bytes), Units8);
    std::memcpy(units, &wide, sizeof wide);
}

constexpr std::uint64_t kHighBits = 0x8080808080808080u;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

void UTF8Step::run() {
    const bool isWide = instructionsInUse() == Instructions::avx512;
    while (_in < _inEnd && _out < _outEnd) {
        if (_state.utf8octetsremaining) {
            if (readOwed() == Progress::stopped) return;
            continue;
        }
        if (isWide) {
            readWide();
            if (_in == _inEnd || _out == _outEnd) return;
        }
        if (*_in < 0x80)
            readASCII();
        else if (readSequence() == Progress::stopped)
            return;
    }
}

void UTF8Step::readASCII() {
    while (inputLeft() >= 32 && roomLeft() >= 32) {
        std::uint64_t joined = load<std::uint64_t>(_in) | load<std::uint64_t>(_in + 8) |
                               load<std::uint64_t>(_in + 16) | load<std::uint64_t>(_in + 24);
        if (joined & kHighBits) break;
        for (int i = 0; i < 32; i += 8) widenEight(_in + i, _out + i);
        _in += 32;
        _out += 32;
    }
    // The rest of a run at once: what is written behind it is written again.
    while (std::endian::native == std::endian::little && inputLeft() >= 8 && roomLeft() >= 8) {
        std::uint64_t beyond = load<std::uint64_t>(_in) & kHighBits;
        widenEight(_in, _out);
        int count = beyond ? std::countr_zero(beyond) / 8 : 8;
        _in += count;
        _out += count;
        if (beyond) return;
    }
    while (_in < _inEnd && _out < _outEnd && *_in < 0x80) put(static_cast<unichar>(*_in++));
}

// Four characters at a time while they are of two bytes each.
void UTF8Step::readTwoByteRun() {
    while (std::endian::native == std::endian::little && inputLeft() >= 8 && roomLeft() >= 4) {
        auto word = load<std::uint64_t>(_in);
        std::uint64_t wrong = (word & 0xC0E0C0E0C0E0C0E0u) ^ 0x80C080C080C080C0u;
        std::uint64_t units = (word & 0x001F001F001F001Fu) << 6 | (word >> 8 & 0x003F003F003F003Fu);
        std::memcpy(_out, &units, sizeof units);
        int count = wrong ? std::countr_zero(wrong) / 16 : 4;
        _in += 2 * count;
        _out += count;
        if (wrong) return;
    }
}

void UTF8Step::readThreeByteRun() {
    while (std::endian::native == std::endian::little && inputLeft() >= 4 && roomLeft() >= 1) {
        auto word = load<std::uint32_t>(_in);
        if ((word & 0x00C0C0F0u) != 0x008080E0u) return;
        put(static_cast<unichar>((word & 0x0F) << 12 | (word >> 2 & 0x0FC0) | (word >> 16 & 0x3F)));
        _in += 3;
    }
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
            if (isWhole) readTwoByteRun();
        }
    } else if (lead < 0xF0) {
        if (left < 3) {
            owe(lead & 0x0Fu, 2);
        } else {
            bool isWhole = isContinuation(_in[1]) && isContinuation(_in[2]);
            unsigned value = (lead & 0x0Fu) << 12 | (_in[1] & 0x3Fu) << 6 | (_in[2] & 0x3Fu);
            put(isWhole ? static_cast<unichar>(value) : kReplacement);
            _in += 3;
            if (isWhole) readThreeByteRun();
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
