// SPDX-License-Identifier: Apache-2.0
// Whether the machine has the wide vector instructions that some loops have a form for.
#pragma once

#include "Runtime/Export.h"

#if defined(__x86_64__)
#define PELVOR_HAS_WIDE_FORMS 1
/// The functions so marked are compiled for AVX2 and must be called only where it is there.
#define PELVOR_WIDE __attribute__((target("avx2,bmi")))
#endif

namespace pelvor {

enum class WideInstructions { absent, present };

inline WideInstructions wideInstructions() {
#ifdef PELVOR_HAS_WIDE_FORMS
    static const bool arePresent = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi");
    return arePresent ? WideInstructions::present : WideInstructions::absent;
#else
    return WideInstructions::absent;
#endif
}

}  // namespace pelvor
