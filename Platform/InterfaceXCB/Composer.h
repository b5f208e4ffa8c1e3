// SPDX-License-Identifier: Apache-2.0
// XComposer: dead keys and compose sequences.
#pragma once

#include "InterfaceXCB/Keyboard.h"

namespace pelvor {

struct XComposeEnd {
    void operator()(xkb_compose_table* table) const;
    void operator()(xkb_compose_state* state) const;
};

/// Takes keys one by one.
class XComposer {
  public:
    struct Result {
        enum class Kind { plain, taken, composed };
        Kind kind = Kind::plain;  ///< plain: the key is for somebody else
        std::u16string text;      ///< of a sequence that is complete
    };
    /// Reads the sequences of the user's locale, which takes some milliseconds.
    void prepare(xkb_context* context);
    Result take(xkb_keysym_t symbol);
    void reset();

  private:
    std::unique_ptr<xkb_compose_state, XComposeEnd> _state;
    bool _isPrepared = false;
};

}  // namespace pelvor
