// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/WRRecoveryJournal.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <csignal>

#include "Foundation/ClockScope.h"
#include "Foundation/NSRunLoop.h"
#include "RandomSteps.h"
#include "RecoveryScope.h"

namespace {

std::string pathOfFile(const RecoveryScope& scope) {
    return scope.store.folder() + '/' + scope.names().at(0);
}

// Moves the clock until the journal's timer has brought a finished file of at least that size.
void waitForFile(const RecoveryScope& scope, std::uintmax_t size) {
    for (;;) {
        std::error_code error;
        const auto names = scope.names();
        if (names.size() == 1 && !names[0].ends_with(kUnfinishedExtension) &&
            std::filesystem::file_size(scope.store.folder() + '/' + names[0], error) >= size && !error)
            return;
        NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode,
                                                        NSDate::dateWithTimeIntervalSinceNow(60));
        std::this_thread::yield();
    }
}

TEST(WRRecoveryJournal, WritesBehindAChangeAndNothingBefore) {
    ClockScope clock;
    RecoveryScope scope;
    EXPECT_FALSE(NSRunLoop::currentRunLoop()->hasWorkForMode(NSDefaultRunLoopMode));
    scope.type(u"I write"_ns);
    waitForFile(scope, 1);
    EXPECT_EQ(std::filesystem::status(scope.store.folder()).permissions(), std::filesystem::perms{0700});
    EXPECT_EQ(std::filesystem::status(pathOfFile(scope)).permissions(), std::filesystem::perms{0600});
    EXPECT_THAT(scope.found(), IsEmpty());  // its owner lives
    scope.journal->leave();
    EXPECT_THAT(scope.found(), ElementsAre("Dear Anna,\nI write"));
}

// Files that may not grow stand for a full disk: a part of a record is written.
TEST(WRRecoveryJournal, TellsOnceThatTheDiskIsFullAndGoesOnWhenThereIsRoom) {
    ClockScope clock;
    RecoveryScope scope;
    std::vector<std::string> problems;
    scope.journal->setProblemHandler([&](NSString* problem) { problems.push_back(problem->toUTF8()); });
    scope.type(u"one"_ns);
    ASSERT_TRUE(scope.journal->writeNow());
    const std::uintmax_t size = std::filesystem::file_size(pathOfFile(scope));
    const auto before = signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit full{size + 4, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    for (NSString* word : {u", two"_ns, u", three"_ns}) {
        scope.type(word);
        EXPECT_FALSE(scope.journal->writeNow());
        EXPECT_EQ(std::filesystem::file_size(pathOfFile(scope)), size);
    }
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, before);
    EXPECT_THAT(problems, ElementsAre(StartsWith("_What is typed is not kept for the case of a crash: ")));
    waitForFile(scope, size + 1);
    std::filesystem::remove_all(scope.store.folder());  // somebody clears up
    scope.type(u", four"_ns);
    scope.journal->leave();
    EXPECT_THAT(scope.found(), ElementsAre("Dear Anna,\none, two, three, four"));
}

TEST(WRRecoveryJournal, TakesOverAnAbandonedDocumentAndRemovesWhatIsSavedOrClosed) {
    RecoveryScope scope;
    scope.type(u"one"_ns);
    scope.journal->leave();
    for (int crash = 0; crash < 2; ++crash) {
        auto documents = scope.store.abandonedDocuments();
        ASSERT_EQ(documents.size(), 1u);
        EXPECT_THAT(scope.found(), IsEmpty());
        scope.storage = NSTextStorage::initWithAttributedString(documents[0].text);
        scope.begin(RecoveryOrigin::of(u"/letter"_ns, nullptr, nullptr), documents[0].file,
                    documents[0].place);
        if (crash == 0) {
            EXPECT_EQ(documents[0].place, 14u);
            scope.type(u", two"_ns);
            ASSERT_TRUE(scope.journal->writeNow());
            scope.storage->replaceCharactersInRange_withString({2, 0}, u"!"_ns);
            scope.storage->deleteCharactersInRange({2, 1});
        }
        scope.journal->leave();
    }
    auto documents = scope.store.abandonedDocuments();
    ASSERT_EQ(documents.size(), 1u);
    EXPECT_EQ(documents[0].text->string()->toUTF8(), "Dear Anna,\none, two");
    EXPECT_EQ(documents[0].origin.path->toUTF8(), "/letter");
    EXPECT_EQ(documents[0].place, 2u) << "also where the whole text was written, and twice";
    documents[0].discard();
    EXPECT_THAT(scope.names(), IsEmpty());
    for (const bool isClosed : {false, true}) {
        scope.begin({}, scope.store.newFile());
        scope.type(u"more"_ns);
        ASSERT_TRUE(scope.journal->writeNow() && !scope.names().empty());
        isClosed ? scope.journal->close() : scope.journal->documentIsInFile({});
        EXPECT_THAT(scope.names(), IsEmpty());
        scope.journal->close();
    }
}

TEST(WRRecoveryJournal, KeepsEveryTextOfARandomSession) {
    std::mt19937 random(7);
    RecoveryScope scope;
    for (int step = 0; step < randomSteps(600); ++step) {
        const bool isBracketed = random() % 4 == 0;
        if (isBracketed) scope.storage->beginEditing();
        for (unsigned edits = 1 + random() % 3; edits > 0; --edits) {
            changeRandomly(scope.storage, random);
            if (isBracketed) scope.journal->writeChanges(nullptr);  // must not write half of an edit
        }
        if (isBracketed) scope.storage->endEditing();
        if (random() % 3 == 0) scope.journal->writeChanges(nullptr);
        if (random() % 50 != 0) continue;
        scope.journal->leave();
        auto documents = scope.store.abandonedDocuments();
        ASSERT_EQ(documents.size(), 1u);
        ASSERT_TRUE(documents[0].text->isEqualToAttributedString(scope.storage)) << step;
        scope.begin({}, documents[0].file);
    }
}

// The child tells the number of each change that it knows to be on the disk, until it is killed.
TEST(WRRecoveryJournal, LosesOnlyWhatWasNotOnTheDiskWhenKilled) {
    for (unsigned seed = 0; seed < static_cast<unsigned>(randomSteps(12)); ++seed) {
        RecoveryScope scope;
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            std::mt19937 random(seed);
            for (unsigned change = 1;; ++change) {
                changeRandomly(scope.storage, random);
                scope.journal->writeChanges(nullptr);
                if (change % 3 == 0 && scope.journal->writeNow())
                    (void)!write(ends[1], &change, sizeof change);
            }
        }
        close(ends[1]);
        unsigned told = 0;
        while (read(ends[0], &told, sizeof told) == sizeof told)
            if (told >= 3 + seed * 7) kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(ends[0]);
        auto documents = scope.store.abandonedDocuments();
        ASSERT_EQ(documents.size(), 1u);
        std::mt19937 random(seed);
        auto model = scope.storage->mutableCopy();
        for (unsigned change = 0; change < told; ++change) changeRandomly(model, random);
        unsigned unknown = 0;  // changes that were on the disk before the child could tell
        for (; unknown < 10 && !documents[0].text->isEqualToAttributedString(model); ++unknown)
            changeRandomly(model, random);
        EXPECT_LE(unknown, 3u) << "seed " << seed << ", after change " << told;
    }
}

}  // namespace
