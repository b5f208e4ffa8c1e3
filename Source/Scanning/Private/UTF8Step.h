// SPDX-License-Identifier: Apache-2.0
// One step of decoding UTF-8; for the string decoder.
#pragma once

#include <span>

#include "Scanning/OFStringDecoder.h"
#include "Shared/UTF8Blocks.h"

namespace pelvor {

/// Decodes from where a state left off as far as input and room go, and puts what is left into the state.
class UTF8Step : UTF8Work {
  public:
    UTF8Step(OFStringDecoderState& state, std::span<const unsigned char> bytes, std::span<unichar> units)
        : UTF8Work{bytes.data(), bytes.data() + bytes.size(), units.data(), units.data() + units.size()},
          _state(state) {}

    void run();
    /// Behind the bytes consumed and the units produced.
    const unsigned char* input() const { return in; }
    const unichar* output() const { return out; }

  private:
    enum class Progress { more, stopped };

    std::size_t inputLeft() const { return static_cast<std::size_t>(inEnd - in); }
    std::size_t roomLeft() const { return static_cast<std::size_t>(outEnd - out); }
    Progress readSequence();
    Progress readOwed();
    Progress put(std::uint32_t value);
    void put(unichar unit) { *out++ = unit; }
    void owe(std::uint32_t bits, std::uint16_t count);

    OFStringDecoderState& _state;
};

}  // namespace pelvor
