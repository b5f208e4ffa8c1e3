// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>

#include "Scanning/Private/WideInstructions.h"

namespace pelvor {
namespace {

Instructions machineInstructions() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2")) return Instructions::plain;
    bool isWidest = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                    __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2");
    return isWidest ? Instructions::avx512 : Instructions::avx2;
#else
    return Instructions::plain;
#endif
}

// Threads that find it unknown at the same time store the same.
constexpr char kUnknown = -1;
constinit std::atomic<char> inUse = kUnknown;

}  // namespace

Instructions instructionsInUse() {
    char known = inUse.load(std::memory_order_relaxed);
    return known == kUnknown ? useInstructions(Instructions::avx512) : static_cast<Instructions>(known);
}

Instructions useInstructions(Instructions most) {
    Instructions taken = std::min(most, machineInstructions());
    inUse.store(static_cast<char>(taken), std::memory_order_relaxed);
    return taken;
}

}  // namespace pelvor
