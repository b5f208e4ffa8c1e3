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
    const auto pathOf = [&](const char* name) { return scope.folder.path(prefix + name); };
    scope.folder.write(prefix + "a.recovery", "");
    scope.folder.write(prefix + "b.recovery", "some other file");
    scope.folder.write(prefix + "c.recovery", signature + std::string(12, '\xFF'));
    scope.folder.write(prefix + "d.recovery.unfinished", signature);
    std::filesystem::create_directory(pathOf("e.recovery"));
    std::filesystem::create_symlink(scope.folder.write("elsewhere", "x"), pathOf("f.recovery"));
    ASSERT_EQ(mkfifo(pathOf("g.recovery").c_str(), 0600), 0);
    scope.folder.write(prefix + "h.recovery", "");
    std::filesystem::resize_file(pathOf("h.recovery"), kLongestRecoveryFile + 1);
    LogLines log;
    EXPECT_THAT(scope.found(), ElementsAre("Dear Anna,\nI write"));
    for (const char* name : {"a", "b", "c", "e", "f", "g", "h"})
        EXPECT_THAT(log.lines, Contains(HasSubstr(name + std::string(".recovery is passed over: "))));
    EXPECT_THAT(scope.names(), ::testing::IsSupersetOf({"a.recovery.damaged", "b.recovery.damaged",
                                                        "c.recovery.damaged", "h.recovery.damaged"}));
    EXPECT_THAT(scope.names(), Each(::testing::Not(EndsWith(kUnfinishedExtension.data()))));
    EXPECT_EQ(scope.folder.read("elsewhere"), "x");
}

TEST(RecoveryStore, LeavesWhatIsMoreThanFitsTheScreen) {
    RecoveryScope scope;
    scope.type(u"I write"_ns);
    scope.journal->leave();
    const std::filesystem::path folder = scope.store.folder(), first = folder / scope.names().at(0);
    for (std::size_t i = 1; i < RecoveryStore::kMost + 2; ++i) {
        const auto copy = folder / (std::to_string(i) + ".recovery");
        std::filesystem::copy_file(first, copy);
        std::filesystem::last_write_time(
            copy, std::filesystem::last_write_time(first) - std::chrono::minutes(i * 7 % 52));
    }
    LogLines log;
    {
        auto documents = scope.store.abandonedDocuments();
        ASSERT_EQ(documents.size(), RecoveryStore::kMost);
        EXPECT_TRUE(std::ranges::is_sorted(documents, std::ranges::greater(), [](const auto& document) {
            return document.date->timeIntervalSinceReferenceDate();
        }));
        for (AbandonedDocument& document : documents) document.discard();
    }
    EXPECT_THAT(log.lines, ElementsAre(AllOf(StartsWith("2 more"), EndsWith("wait for the next start"))));
    EXPECT_EQ(scope.found().size(), 2u);
}

TEST(RecoveryStore, MissesNoFileThatWasNeverThere) {
    AbandonedDocument document;
    document.origin = RecoveryOrigin::of(u"/no/such/letter.txt"_ns, nullptr, nullptr);
    EXPECT_EQ(document.fileState(), RecoveredFileState::neverThere);
}

}  // namespace
