// SPDX-License-Identifier: Apache-2.0
// Which of the machine's wide instructions the scanning code uses.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

/// Each level has those before it. `avx512` means the parts that move bytes by masks, too (BW, VBMI, VBMI2).
enum class Instructions : char { plain, avx2, avx512 };

/// What is in use now: all that the machine has, unless a test has asked for less. Any thread.
PELVOR_EXPORT Instructions instructionsInUse();
/// Uses no more than this from now on, to the same results; answers what is in use then. For tests.
PELVOR_EXPORT Instructions useInstructions(Instructions most);

}  // namespace pelvor
