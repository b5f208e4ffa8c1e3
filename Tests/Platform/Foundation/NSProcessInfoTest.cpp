// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSProcessInfo.h"

#include <unistd.h>
#include <set>

#include "Foundation/NSRuntimeNames.h"
#include "Platform/Foundation/BundleTestSupport.h"

namespace {

TEST(NSProcessInfoTest, TellsWhatTheProcessWasStartedWithAndMakesUniqueStrings) {
    auto* info = NSProcessInfo::processInfo();
    EXPECT_EQ(info->processIdentifier(), getpid());
    ASSERT_GE(info->arguments()->count(), 1u);
    std::filesystem::path program(shown(info->arguments()->objectAtIndex(0)));
    EXPECT_EQ(program.filename(), shown(info->processName()));
    std::set<std::string> strings;
    for (int i = 0; i < 100; ++i) strings.insert(shown(NSProcessInfo::processInfo()->globallyUniqueString()));
    EXPECT_EQ(strings.size(), 100u);
}

TEST(NSProcessInfoTest, TheEnvironmentIsThatOfTheMoment) {
    for (const char* value : {"a=b", static_cast<const char*>(nullptr)}) {
        EnvironmentScope scope("PELVOR_TEST_VARIABLE", value);
        id found = NSProcessInfo::processInfo()->environment()->objectForKey(u"PELVOR_TEST_VARIABLE"_ns);
        EXPECT_TRUE(value ? u"a=b"_ns->isEqual(found) : !found) << found;
    }
}

TEST(NSRuntimeNamesTest, ClassesAndSelectorsAreFoundByNameAndNamed) {
    Class* cls = NSProcessInfo::classObject();
    EXPECT_EQ(shown(NSClassFromString(u"NSProcessInfo"_ns), NSStringFromClass(cls),
                    NSStringFromSelector("count"_sel)),
              "NSProcessInfo NSProcessInfo count");
    for (NSString* name : {u"NSNoSuchClass"_ns, static_cast<NSString*>(nullptr)})
        EXPECT_EQ(NSClassFromString(name), nullptr);
    EXPECT_EQ(NSSelectorFromString(u"objectAtIndex:"_ns), "objectAtIndex:"_sel);
    EXPECT_EQ(NSSelectorFromString(u""_ns), SEL());
    EXPECT_TRUE(!NSStringFromClass(nullptr) && !NSStringFromSelector(SEL()));
}

}  // namespace
