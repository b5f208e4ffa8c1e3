// SPDX-License-Identifier: Apache-2.0
// Tests of the framework's version number.
#include "Foundation/PlatformVersion.h"

#include <gtest/gtest.h>

#include <thread>

namespace pelvor {
namespace {

TEST(PlatformVersion, IsNewUntilTheHostSetsAnother) {
    const double before = platformVersion();
    EXPECT_EQ(before, 1000.0);

    setPlatformVersion(742.5);
    double seenElsewhere = 0;
    std::thread([&] { seenElsewhere = platformVersion(); }).join();
    EXPECT_EQ(seenElsewhere, 742.5);

    setPlatformVersion(before);
    EXPECT_EQ(platformVersion(), before);
}

}  // namespace
}  // namespace pelvor
