// SPDX-License-Identifier: Apache-2.0
// What the post-loader does once in a process: each of these tests has a process of its own.
#include "Foundation/NSThread.h"
#include "HookedClasses.h"
#include "PBPostLoader.h"
#include "PBUtil.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

using ::testing::ExitedWithCode;

class PostLoaderProcess : public ::testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void noteWhetherMultiThreaded() { note(PBPostLoader::isMultiThreaded() ? "multi-threaded" : "one thread"); }

TEST_F(PostLoaderProcess, RunsThePosingPhaseWithTheFirstMessage) {
    EXPECT_EXIT(
        {
            classWithHook("EarlyPoser", "performPosing",
                          [](Object*, SEL) { note(_pbLettersCharacterSet ? "sets" : "no sets"); });
            classWithHook("EarlyLoader", "didLoad", [](Object*, SEL) { note("loading"); });
            send<bool>(&PBPostLoader::classRecord, "isMultiThreaded"_sel);
            note("first message sent");
            PBPostLoader::processClasses();
            exitWithJournal();
        },
        ExitedWithCode(0), journalOf({"no sets", "first message sent", "loading"}));
}

TEST_F(PostLoaderProcess, RunsTheThreadPhaseWithTheFirstFurtherThreadAndThenInEveryCycle) {
    EXPECT_EXIT(
        {
            classWithHook("Early", "becomingMultiThreaded", [](Object*, SEL) { note("early"); });
            PBPostLoader::processClasses();
            noteWhetherMultiThreaded();
            NSThread::detach([] {});
            noteWhetherMultiThreaded();
            Class* late = classWithHook("Late", "becomingMultiThreaded", [](Object*, SEL) { note("late"); });
            addHook(late, "activateToolkit", hookOf([](Object*, SEL) { note("late activateToolkit"); }));
            PBPostLoader::processClassesStartingRegistry(false);
            exitWithJournal();
        },
        ExitedWithCode(0),
        journalOf({"one thread", "early", "multi-threaded", "late activateToolkit", "late"}));
}

TEST_F(PostLoaderProcess, RunsNoThreadPhaseInsideAThreadPhase) {
    EXPECT_EXIT(
        {
            classWithHook("Outer", "becomingMultiThreaded", [](Object*, SEL) {
                classWithHook("Inner", "becomingMultiThreaded", [](Object*, SEL) { note("inner"); });
                send(&PBPostLoader::classRecord, "_becomingMultiThreaded:"_sel, nullptr);
                noteWhetherMultiThreaded();
            });
            NSThread::detach([] {});
            note("nobody listens yet");
            PBPostLoader::processClasses();
            noteWhetherMultiThreaded();
            exitWithJournal();
        },
        ExitedWithCode(0), journalOf({"nobody listens yet", "one thread", "inner", "multi-threaded"}));
}

}  // namespace
}  // namespace pelvor::testing
