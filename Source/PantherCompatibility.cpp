// SPDX-License-Identifier: Apache-2.0
#include "PantherCompatibility.h"

#include <cmath>

#include "Foundation/PlatformVersion.h"

namespace pelvor {

void poseOnOldPlatforms(Class* cls) {
    constexpr double kFirstVersionWithTheOperations = 743;
    if (std::floor(platformVersion()) < kFirstVersionWithTheOperations) cls->poseAsClass(cls->superclass());
}

}  // namespace pelvor
