// SPDX-License-Identifier: Apache-2.0
// What a back end makes of keys.
#pragma once

#include "Interface/Backend/Backend.h"

namespace pelvor {

struct InputReply {
    enum class Kind { text, preedit, command };
    Kind kind = Kind::text;
    std::u16string text;
    std::size_t caret = 0;
    std::vector<PreeditSpan> spans;
    BackendKey key;
};

}  // namespace pelvor
