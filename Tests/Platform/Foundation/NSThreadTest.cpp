// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSThread.h"

#include <future>

#include "Prelude.h"

namespace {

// Runs the task on a thread of its own and waits until the thread has let go of its target.
void runOnThread(std::function<void(id)> task, id argument = nullptr) {
    std::promise<void> ended;
    auto worker = Listener::doing([task, end = atEnd([&] { ended.set_value(); })](id what) { task(what); });
    NSThread::detachNewThreadSelector_toTarget_withObject("hear:"_sel, worker, argument);
    worker = nullptr;
    ended.get_future().wait();
}

TEST(NSThreadTest, AMessageIsSentOnAThreadOfItsOwn) {
    std::string heard;
    auto tell = [&heard, main = NSThread::mainThread()](id argument) {
        heard = shown(argument, NSThread::isMainThread(), NSThread::currentThread() == main,
                      NSThread::mainThread() == main, AutoreleasePool::pendingCount());
        make<NSObject>().autorelease();
    };
    tell(u"main"_ns);
    EXPECT_THAT(heard, StartsWith("main 1 1 1 "));
    runOnThread(tell, u"other"_ns);
    EXPECT_EQ(heard, "other 0 0 1 0");
    EXPECT_TRUE(NSThread::isMultiThreaded());
}

TEST(NSThreadTest, EveryThreadHasItsDictionaryWhichGoesWithIt) {
    bool hasEnded = false;
    auto tenant = Listener::doing([end = atEnd([&] { hasEnded = true; })](id) {});
    NSThread::currentThread()->threadDictionary()->setObject_forKey(u"main"_ns, u"key"_ns);
    onThreads(1, [&](int) {  // not one of NSThread's
        auto* dictionary = NSThread::currentThread()->threadDictionary();
        EXPECT_EQ(dictionary->objectForKey(u"key"_ns), nullptr);
        dictionary->setObject_forKey(tenant, u"key"_ns);
        tenant = nullptr;
    });
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(shown(NSThread::currentThread()->threadDictionary()), "{\n    key = main;\n}");
    // What goes with it may still ask for the thread.
    std::promise<bool> asked;
    NSThread::detach([&asked] {
        AutoreleasePool pool;
        NSThread* thread = NSThread::currentThread();
        auto end = atEnd([&asked, thread] { asked.set_value(NSThread::currentThread() == thread); });
        thread->threadDictionary()->setObject_forKey(Listener::doing([end](id) {}).get(), u"key"_ns);
    });
    EXPECT_TRUE(asked.get_future().get());
}

TEST(NSThreadTest, WhatAThreadRaisesIsLoggedAndEndsIt) {
    LogLines log;
    runOnThread([](id) { throw NSException("BadThing", "it broke"); });
    runOnThread([](id) { throw std::runtime_error("it snapped"); });
    runOnThread([](id) { throw 1; });
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("BadThing: it broke"), HasSubstr("it snapped"),
                                       HasSubstr("unknown exception")));
}

TEST(NSThreadTest, SleepingUntilAMomentThatIsOverReturns) {
    NSThread::sleepUntilDate(NSDate::distantPast());
    NSThread::sleepForTimeInterval(-1);
    auto start = std::chrono::steady_clock::now();
    NSThread::sleepForTimeInterval(0.002);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2));
}

// In a process of their own, where no thread was started before.
TEST(NSThreadDeathTest, TheFirstFurtherThreadIsAnnouncedOnceBeforeItRuns) {
    auto announce = [] {
        int announcements = 0;
        bool isRight = !NSThread::isMultiThreaded();
        std::atomic<bool> hasRun{false};
        auto watcher = Listener::doing([&](id notification) {
            ++announcements;
            isRight = isRight && NSThread::isMainThread() && !hasRun && !NSThread::isMultiThreaded() &&
                      !cast<NSNotification>(notification)->object();
            runOnThread([](id) {});  // does not announce again
            throw NSException("Ignored", "and logged");
        });
        watcher->listen(NSWillBecomeMultiThreadedNotification, nullptr);
        for (int i = 0; i < 3; ++i) runOnThread([&](id) { hasRun = true; });
        std::exit(isRight && announcements == 1 && hasRun && NSThread::isMultiThreaded() ? 0 : 1);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(announce(), ::testing::ExitedWithCode(0), "Ignored: and logged");
}

}  // namespace
