// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSProcessInfo.h"

#include <unistd.h>
#include <filesystem>
#include <set>

#include "Foundation/NSRuntimeNames.h"
#include "Platform/Foundation/EnvironmentScope.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

TEST(NSProcessInfoTest, TellsWhatTheProcessWasStartedWith) {
    auto* info = NSProcessInfo::processInfo();
    EXPECT_EQ(info->processIdentifier(), getpid());
    ASSERT_GE(info->arguments()->count(), 1u);
    std::filesystem::path program(cast<NSString>(info->arguments()->objectAtIndex(0))->toUTF8());
    EXPECT_EQ(program.filename(), info->processName()->toUTF8());
}

TEST(NSProcessInfoTest, TheEnvironmentIsThatOfTheMoment) {
    for (const char* value : {"a=b", static_cast<const char*>(nullptr)}) {
        EnvironmentScope scope("PELVOR_TEST_VARIABLE", value);
        id found = NSProcessInfo::processInfo()->environment()->objectForKey(u"PELVOR_TEST_VARIABLE"_ns);
        EXPECT_TRUE(value ? u"a=b"_ns->isEqual(found) : !found) << found;
    }
}

TEST(NSProcessInfoTest, UniqueStringsDiffer) {
    std::set<std::string> strings;
    for (int i = 0; i < 100; ++i)
        strings.insert(NSProcessInfo::processInfo()->globallyUniqueString()->toUTF8());
    EXPECT_EQ(strings.size(), 100u);
}

TEST(NSRuntimeNamesTest, ClassesAndSelectorsAreFoundByNameAndNamed) {
    EXPECT_EQ(NSClassFromString(u"NSProcessInfo"_ns), NSProcessInfo::classObject());
    EXPECT_EQ(NSClassFromString(u"NSNoSuchClass"_ns), nullptr);
    EXPECT_EQ(NSClassFromString(nullptr), nullptr);
    EXPECT_TRUE(NSStringFromClass(NSProcessInfo::classObject())->isEqualToString(u"NSProcessInfo"_ns));
    EXPECT_EQ(NSStringFromClass(nullptr), nullptr);
    EXPECT_EQ(NSSelectorFromString(u"objectAtIndex:"_ns), "objectAtIndex:"_sel);
    EXPECT_EQ(NSSelectorFromString(u""_ns), SEL());
    EXPECT_TRUE(NSStringFromSelector("count"_sel)->isEqualToString(u"count"_ns));
    EXPECT_EQ(NSStringFromSelector(SEL()), nullptr);
}

}  // namespace
}  // namespace pelvor::testing
