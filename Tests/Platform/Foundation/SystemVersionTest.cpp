// SPDX-License-Identifier: Apache-2.0
#include "Foundation/SystemVersion.h"

#include <sys/utsname.h>
#include "Foundation/PlatformVersion.h"
#include "Prelude.h"

namespace {

TEST(SystemVersionCode, ComesFromTheKernelsReleaseUnlessTheHostSaysIt) {
    expectAll({"6.1.0-18-amd64 -> 0610", "5.15.2 -> 0592", "10.4.9 -> 1049", "4.19.99999999999-x -> 0499",
               "123.1 -> 9910", "6.8-rc1 -> 0680", "7 -> 0700", " -> 0000"},
              [](const std::string& release) {
                  return NSString::stringWithFormat(u"%04x"_ns, systemVersionCodeOfRelease(release.c_str()));
              });
    EXPECT_EQ(systemVersionCodeOfRelease(nullptr), 0);
    utsname names;
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(systemVersionCode(), systemVersionCodeOfRelease(names.release));
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
