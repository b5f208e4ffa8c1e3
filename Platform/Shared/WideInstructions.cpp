// SPDX-License-Identifier: Apache-2.0
#include "Shared/WideInstructions.h"

#include <atomic>

namespace pelvor {
namespace {

bool hasWideInstructions() {
#ifdef PELVOR_HAS_WIDE_FORMS
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("popcnt");
#else
    return false;
#endif
}

constinit std::atomic<int> plainScopes = 0;

}  // namespace

bool usesWideInstructions() {
    static const bool isPresent = hasWideInstructions();
    return isPresent && plainScopes.load(std::memory_order_relaxed) == 0;
}

PlainInstructionsScope::PlainInstructionsScope() { ++plainScopes; }

PlainInstructionsScope::~PlainInstructionsScope() { --plainScopes; }

}  // namespace pelvor
