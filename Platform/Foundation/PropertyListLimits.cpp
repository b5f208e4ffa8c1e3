// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyListLimits.h"

#include <atomic>

namespace pelvor {

namespace {
constinit std::atomic<std::uint32_t> maximumDepth{PropertyListLimits{}.maximumDepth};
constinit std::atomic<std::uint32_t> maximumSharedObjects{PropertyListLimits{}.maximumSharedObjects};
}  // namespace

PropertyListLimits propertyListLimits() {
    return {maximumDepth.load(std::memory_order_relaxed),
            maximumSharedObjects.load(std::memory_order_relaxed)};
}

void setPropertyListLimits(PropertyListLimits limits) {
    maximumDepth.store(limits.maximumDepth, std::memory_order_relaxed);
    maximumSharedObjects.store(limits.maximumSharedObjects, std::memory_order_relaxed);
}

}  // namespace pelvor
