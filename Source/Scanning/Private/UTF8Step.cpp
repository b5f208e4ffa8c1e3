// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/UTF8Step.h"

#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

void UTF8Step::run() {
    while (in < inEnd && out < outEnd) {
        if (_state.utf8octetsremaining) {
            if (readOwed() == Progress::stopped) return;
            continue;
        }
        if (hasBoth(kEnoughForUTF8Blocks)) decodeUTF8Blocks(*this, UTF8Rule::lenient);
        while (in < inEnd && out < outEnd && *in < 0x80) put(static_cast<unichar>(*in++));
        if (in == inEnd || out == outEnd || readSequence() == Progress::stopped) return;
    }
}

UTF8Step::Progress UTF8Step::readSequence() {
    unsigned char lead = *in;
    std::size_t left = inputLeft();
    if (lead < 0xC0 || lead >= 0xFE) {
        ++in;
        put(kReplacementCharacter);
    } else if (lead < 0xE0) {
        if (left < 2) {
            owe(lead & 0x1Fu, 1);
        } else {
            bool isWhole = isContinuation(in[1]);
            put(isWhole ? static_cast<unichar>((lead & 0x1F) << 6 | (in[1] & 0x3F)) : kReplacementCharacter);
            in += 2;
        }
    } else if (lead < 0xF0) {
        if (left < 3) {
            owe(lead & 0x0Fu, 2);
        } else {
            bool isWhole = isContinuation(in[1]) && isContinuation(in[2]);
            unsigned value = (lead & 0x0Fu) << 12 | (in[1] & 0x3Fu) << 6 | (in[2] & 0x3Fu);
            put(isWhole ? static_cast<unichar>(value) : kReplacementCharacter);
            in += 3;
        }
    } else if (lead < 0xF8 && left >= 4) {
        std::uint32_t value =
            (lead & 0x07u) << 18 | (in[1] & 0x3Fu) << 12 | (in[2] & 0x3Fu) << 6 | (in[3] & 0x3Fu);
        in += 4;
        return put(value);
    } else {
        std::uint16_t owed = lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
        owe(lead & (0x3Fu >> (owed - 1)), owed);
    }
    return Progress::more;
}

void UTF8Step::owe(std::uint32_t bits, std::uint16_t count) {
    ++in;
    _state.partialCharacter = bits;
    _state.utf8octetsremaining = count;
}

UTF8Step::Progress UTF8Step::readOwed() {
    for (; _state.utf8octetsremaining && in < inEnd; --_state.utf8octetsremaining)
        _state.partialCharacter = _state.partialCharacter << 6 | (*in++ & 0x3Fu);
    if (_state.utf8octetsremaining) return Progress::stopped;
    std::uint32_t value = _state.partialCharacter;
    _state.partialCharacter = 0;
    return put(value);
}

// Stops, and loses the character, where a pair finds room for one unit.
UTF8Step::Progress UTF8Step::put(std::uint32_t value) {
    if (value < 0x10000 || value > 0x10FFFF) {
        put(value < 0x10000 ? static_cast<unichar>(value) : kReplacementCharacter);
        return Progress::more;
    }
    if (roomLeft() < 2) return Progress::stopped;
    out = writeCodepoint(value, out);
    return Progress::more;
}

}  // namespace pelvor
