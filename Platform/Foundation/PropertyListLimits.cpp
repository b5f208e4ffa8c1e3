// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyListLimits.h"

#include <atomic>

namespace pelvor {

namespace {
constinit std::atomic<PropertyListLimits> limitsInForce{PropertyListLimits{}};
}

PropertyListLimits propertyListLimits() { return limitsInForce.load(std::memory_order_relaxed); }

void setPropertyListLimits(PropertyListLimits limits) {
    limitsInForce.store(limits, std::memory_order_relaxed);
}

}  // namespace pelvor
