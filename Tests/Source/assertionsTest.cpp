// SPDX-License-Identifier: Apache-2.0
#include "assertions.h"

#include "Prelude.h"

namespace {

TEST(Assertions, LogWhenTheyAreSoftAndDoNothingWhenTheyAreHard) {
    LogLines log;
    PBSoftAssertFailed("Assertion", "count % 2 == 0", "PBTrie.cpp", 12);
    PBSoftAssertFailed("Check", "a", "b", -1);
    PBAssertFailed("Assertion", "false", "PBTrie.cpp", 12);
    PBAssertFailed(nullptr, nullptr, nullptr, 0);
    EXPECT_THAT(log.lines,
                ElementsAre("*** Assertion failed: requires 'count % 2 == 0', file PBTrie.cpp, line 12",
                            "*** Check failed: requires 'a', file b, line -1"));
}

}  // namespace
