// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryStore.h"

#include <sys/stat.h>

#include "EnvironmentScope.h"
#include "RecoveryScope.h"

namespace {

TEST(RecoveryStore, IsInTheFolderForStateOfTheUser) {
    EnvironmentScope home("HOME", "/home/ann"), state("XDG_STATE_HOME", "relative");
    EXPECT_EQ(RecoveryStore::ofUser().folder(), "/home/ann/.local/state/pelvor-writer/recovery");
    EnvironmentScope named("XDG_STATE_HOME", "/s");
    EXPECT_EQ(RecoveryStore::ofUser().folder(), "/s/pelvor-writer/recovery");
}

TEST(RecoveryStore, PassesOverWhatIsNoRecoveryFileAndSaysWhy) {
    RecoveryScope scope;
    scope.type(u"I write"_ns);
    scope.journal->leave();
    const std::string prefix = "state/recovery/", signature(kRecoverySignature);
    scope.folder.write(prefix + "a.recovery", "");
    scope.folder.write(prefix + "b.recovery", "some other file");
    scope.folder.write(prefix + "c.recovery", signature + std::string(12, '\xFF'));
    scope.folder.write(prefix + "d.recovery.unfinished", signature);
    std::filesystem::create_directory(scope.store.folder() + "/e.recovery");
    std::filesystem::create_symlink(scope.folder.write("elsewhere", "x"),
                                    scope.store.folder() + "/f.recovery");
    ASSERT_EQ(mkfifo((scope.store.folder() + "/g.recovery").c_str(), 0600), 0);
    std::ofstream(scope.store.folder() + "/h.recovery").flush();
    std::filesystem::resize_file(scope.store.folder() + "/h.recovery", kLongestRecoveryFile + 1);
    std::string log;
    {
        LogSinkScope sink([&](const LogEntry& entry) { (log += entry.text) += '\n'; });
        EXPECT_THAT(scope.found(), ElementsAre("Dear Anna,\nI write"));
    }
    for (const char* name : {"a", "b", "c", "e", "f", "g", "h"})
        EXPECT_THAT(log, HasSubstr(std::string("/") + name + ".recovery is passed over: ")) << name;
    EXPECT_THAT(scope.names(), ::testing::IsSupersetOf({"a.recovery.damaged", "b.recovery.damaged",
                                                        "c.recovery.damaged", "h.recovery.damaged"}));
    EXPECT_THAT(scope.names(), ::testing::Not(Contains("d.recovery.unfinished")));
    EXPECT_EQ(scope.folder.read("elsewhere"), "x");
}

TEST(RecoveryStore, TellsWhetherTheFileIsAnotherThanItWas) {
    using enum RecoveredFileState;
    TemporaryFolder folder;
    NSString* path = NSString::ofUTF8(folder.path("letter.txt"));
    AbandonedDocument document;
    document.origin = RecoveryOrigin::of(path, nullptr, nullptr);
    EXPECT_EQ(document.fileState(), neverThere);
    folder.write("letter.txt", "one");
    document.origin = RecoveryOrigin::of(path, nullptr, nullptr);
    EXPECT_EQ(document.fileState(), unchanged);
    folder.write("letter.txt", "longer");
    EXPECT_EQ(document.fileState(), changed);
    std::filesystem::remove(folder.path("letter.txt"));
    EXPECT_EQ(document.fileState(), missing);
}

}  // namespace
