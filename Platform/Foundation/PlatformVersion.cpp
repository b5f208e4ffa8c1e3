// SPDX-License-Identifier: Apache-2.0
// Keeps the framework's version number.
#include "Foundation/PlatformVersion.h"

#include <atomic>

namespace pelvor {

namespace {
std::atomic<double> currentVersion{1000.0};
}

double platformVersion() { return currentVersion.load(std::memory_order_relaxed); }

void setPlatformVersion(double version) { currentVersion.store(version, std::memory_order_relaxed); }

}  // namespace pelvor
