// SPDX-License-Identifier: Apache-2.0
#include "Foundation/SystemVersion.h"

#include <sys/utsname.h>
#include "Foundation/PlatformVersion.h"
#include "Prelude.h"

namespace {

TEST(SystemVersionCode, ComesFromTheKernelsRelease) {
    const std::pair<const char*, int> cases[] = {
        {"6.1.0-18-amd64", 0x0610},
        {"5.15.2", 0x0592},
        {"10.4.9", 0x1049},
        {"4.19.99999999999-x", 0x0499},
        {"123.1", 0x9910},
        {"6.8-rc1", 0x0680},
        {"7", 0x0700},
        {"", 0},
        {nullptr, 0},
    };
    for (auto [release, code] : cases)
        EXPECT_EQ(systemVersionCodeOfRelease(release), code) << (release ? release : "null");

    utsname names;
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(systemVersionCode(), systemVersionCodeOfRelease(names.release));
}

TEST(SystemVersionCode, IsWhatTheHostSays) {
    setSystemVersionCode(0x1039);
    EXPECT_EQ(systemVersionCode(), 0x1039);
    setSystemVersionCode(0);
    EXPECT_NE(systemVersionCode(), 0x1039);
}

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
