// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"

#include "Witness.h"

namespace {

struct ZWFNSubscribeFileWatcherTest : WatcherTest {
    ZWFNSubscribeFileWatcherTest() { watcher->setDelegate(witness); }
    Retained<ZWFNSubscribeFileWatcher> watcher = ZWFNSubscribeFileWatcher::init();
};

TEST_F(ZWFNSubscribeFileWatcherTest, ReportsAModifiedFolderToObserversAndThenToTheDelegate) {
    const auto before = descriptors();
    sh("mkdir d e");
    for (const char* name : {"d", "e", "d"}) watcher->addPath(path(name));
    auto other = observer();
    other->reaction = [&](const std::string& report) { EXPECT_FALSE(witness->has(report)); };
    sh("echo >d/f; echo >d/g");
    runUntil("WrittenTo d");
    for (const char* name : {"d", "nothing"}) watcher->removePath(path(name));
    witness->reaction = [&](const std::string&) { watcher = nullptr; };
    sh("rm d/f; mv d/g e");
    runUntil("WrittenTo e");
    for (Witness* each : {other.get(), witness.get()})
        EXPECT_EQ(each->takeReports(), "WrittenTo d, WrittenTo e");
    EXPECT_EQ(descriptors(), before) << "the watcher ended inside its delegate";
}

TEST_F(ZWFNSubscribeFileWatcherTest, LogsWhatItCannotDo) {
    LogLines log;
    for (NSString* wrong : {u"/dev/null"_ns, u"/nothing"_ns, NSString::of({u"/\0", 2})})
        watcher->addPath(wrong);
    ZWFileSubscriptionProc(2, watcher, 1);
    watcher->sendDelegateMessage_forSubscription(ZWFolderWasModified, 77);
    EXPECT_THAT(
        log.lines,
        ElementsAre("ZWFNSubscribeFileWatcher addPath: /dev/null failed due to error ID=20.",
                    "ZWFNSubscribeFileWatcher addPath: /nothing failed due to error ID=2.",
                    EndsWith("failed due to error ID=22."), "ZWFileSubscriptionProc: Unknown message 2"));
    EXPECT_EQ(witness->takeReports(), "");
}

}  // namespace
