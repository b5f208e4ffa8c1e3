// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"

#include "NSWorkspace-PelvorAdditions.h"
#include "Witness.h"

namespace {

using Watcher = ZWFNSubscribeFileWatcher;

struct ZWFNSubscribeFileWatcherTest : WatcherTest {
    ZWFNSubscribeFileWatcherTest() { watcher->setDelegate(witness); }
    Retained<Watcher> watcher = Watcher::init();
};

TEST_F(ZWFNSubscribeFileWatcherTest, ReportsAModifiedFolderToObserversAndThenToTheDelegate) {
    for (const char* name : {"d", "e"}) std::filesystem::create_directory(file(name));
    for (const char* name : {"d", "e", "d"}) watcher->addPath(path(name));
    witness->listen(ZWFileWatcherWriteNotification);
    folder.write("d/a", ""), folder.write("d/b", "");
    runUntil("WrittenTo d");
    EXPECT_THAT(witness->takeReports(), ElementsAre("WrittenTo d", "WrittenTo d")) << "one by each road";
    watcher->removePath(path("d"));
    watcher->removePath(path("nothing"));
    unlink(file("d/a").c_str());
    std::filesystem::rename(file("d/b"), file("e/b"));
    runUntil("WrittenTo e");
    EXPECT_EQ(witness->takeReports().size(), 2u);
    EXPECT_EQ(witness->reportsOnMainThread, 4);
}

TEST_F(ZWFNSubscribeFileWatcherTest, EndsInsideItsDelegate) {
    const auto before = descriptors();
    watcher->addPath(NSString::ofUTF8(folder.path().string()));
    witness->reaction = [&](const std::string&) { watcher = nullptr; };
    folder.write("f", "");
    runUntil([&] { return !watcher; });
    EXPECT_EQ(descriptors(), before);
}

TEST_F(ZWFNSubscribeFileWatcherTest, LogsWhatItCannotDo) {
    LogLines log;
    watcher->addPath(NSString::ofUTF8(folder.write("f", "")));
    watcher->addPath(u"/nothing"_ns);
    ZWFileSubscriptionProc(2, watcher, 1);
    watcher->sendDelegateMessage_forSubscription(ZWFolderWasModified, 77);
    EXPECT_THAT(log.lines,
                ElementsAre("ZWFNSubscribeFileWatcher addPath: " + file("f") + " failed due to error ID=20.",
                            "ZWFNSubscribeFileWatcher addPath: /nothing failed due to error ID=2.",
                            "ZWFileSubscriptionProc: Unknown message 2"));
    EXPECT_THAT(witness->takeReports(), IsEmpty());
}

TEST(NSWorkspace, HasACentreOfItsOwnAndNoCreatorCodes) {
    NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
    EXPECT_NE(workspace->notificationCenter(), NSNotificationCenter::defaultCenter());
    EXPECT_EQ(fullPathForApplicationWithCreatorCode(workspace, 0x50575254), nullptr);
}

}  // namespace
