// SPDX-License-Identifier: Apache-2.0
// WRControlWord: what a trie of control words finds.
#pragma once

#include "Scanning/OFTrieBucket.h"

namespace pelvor {

class WRControlWord : public OFTrieBucket {
    PELVOR_CLASS(WRControlWord, OFTrieBucket);

  public:
    // C++ only
    /// Of the reader's table of control words.
    unsigned index = 0;

  protected:
    WRControlWord() = default;
    ~WRControlWord() = default;
};

}  // namespace pelvor
