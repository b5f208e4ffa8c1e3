// SPDX-License-Identifier: Apache-2.0
// One step of decoding UTF-8; for the string decoder.
#pragma once

#include <span>

#include "Scanning/OFStringDecoder.h"

namespace pelvor {

/// Decodes from where a state left off as far as input and room go, and puts what is left into the state.
class UTF8Step {
  public:
    UTF8Step(OFStringDecoderState& state, std::span<const unsigned char> bytes, std::span<unichar> units)
        : _state(state),
          _in(bytes.data()),
          _inEnd(bytes.data() + bytes.size()),
          _out(units.data()),
          _outEnd(units.data() + units.size()) {}

    void run();
    /// Behind the bytes consumed and the units produced.
    const unsigned char* input() const { return _in; }
    const unichar* output() const { return _out; }

  private:
    enum class Progress { more, stopped };

    std::size_t inputLeft() const { return static_cast<std::size_t>(_inEnd - _in); }
    std::size_t roomLeft() const { return static_cast<std::size_t>(_outEnd - _out); }
    // Goes as far as whole characters do in blocks, by wide instructions; what it leaves is for the rest.
    // Each unit is put together at the last byte of its character; those places are then moved together.
    void readWide();
    // The same without wide instructions.
    void readWellFormed();
    Progress readSequence();
    Progress readOwed();
    Progress put(std::uint32_t value);
    void put(unichar unit) { *_out++ = unit; }
    void owe(std::uint32_t bits, std::uint16_t count);

    OFStringDecoderState& _state;
    const unsigned char* _in;
    const unsigned char* const _inEnd;
    unichar* _out;
    unichar* const _outEnd;
};

}  // namespace pelvor
