// SPDX-License-Identifier: Apache-2.0
// Whether the machine has the wide instructions (AVX2) that some loops have a form for; chosen here for all.
#pragma once

#include "Runtime/Export.h"

#if defined(__x86_64__)
#define PELVOR_HAS_WIDE_FORMS 1
/// Compiles a function for wide instructions. It may be called only while `usesWideInstructions()`.
#define PELVOR_WIDE __attribute__((target("avx2,bmi,popcnt")))
#endif

namespace pelvor {

/// Whether loops take their wide forms now. Any thread.
PELVOR_EXPORT bool usesWideInstructions();

/// While an object of this class exists, all loops take their plain forms, with the same results; for tests
/// and benchmarks.
class PELVOR_EXPORT PlainInstructionsScope {
  public:
    PlainInstructionsScope();
    PlainInstructionsScope(const PlainInstructionsScope&) = delete;
    PlainInstructionsScope& operator=(const PlainInstructionsScope&) = delete;
    ~PlainInstructionsScope();
};

}  // namespace pelvor
