// SPDX-License-Identifier: Apache-2.0
#include "assertions.h"

#include <gmock/gmock.h>

#include "Foundation/NSLog.h"
#include "Runtime/Class.h"

namespace pelvor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Assertions, LogWhenTheyAreSoftAndGoOn) {
    std::vector<std::string> log;
    LogSinkScope scope([&](const LogEntry& entry) { log.emplace_back(entry.text); });
    PBSoftAssertFailed("Assertion", "count % 2 == 0", "PBTrie.cpp", 12);
    PBSoftAssertFailed("Check", "a", "b", -1);
    EXPECT_THAT(log, ElementsAre("*** Assertion failed: requires 'count % 2 == 0', file PBTrie.cpp, line 12",
                                 "*** Check failed: requires 'a', file b, line -1"));
}

TEST(Assertions, DoNothingWhenTheyAreHard) {
    std::vector<std::string> log;
    LogSinkScope scope([&](const LogEntry& entry) { log.emplace_back(entry.text); });
    PBAssertFailed("Assertion", "false", "PBTrie.cpp", 12);
    PBAssertFailed(nullptr, nullptr, nullptr, 0);
    EXPECT_THAT(log, IsEmpty());
}

TEST(Assertions, HaveAClassThatTheLoadTimeSequenceFinds) {
    Class* cls = &_PBAssertionWarning::classRecord;
    for (const char* selector : {"load", "didLoad"}) {
        EXPECT_TRUE(cls->classMethod(registerSelector(selector))) << selector;
        EXPECT_FALSE(cls->superclass()->classMethod(registerSelector(selector))) << selector;
    }
}

}  // namespace
}  // namespace pelvor
