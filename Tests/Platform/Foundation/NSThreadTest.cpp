// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSThread.h"

#include <future>

#include "Prelude.h"

namespace {

/// Does what it was told, and says when it goes.
class Worker : public NSObject {
    PELVOR_CLASS(Worker, NSObject);

  public:
    std::function<void(id)> task;
    std::promise<void> end;

    void work(id argument) { task(argument); }

  protected:
    ~Worker() { end.set_value(); }
};

extern Library threadTestLibrary;
PELVOR_DEFINE_CLASS(Worker, threadTestLibrary) { methods.instance<"work:", &Worker::work>(); }
constinit Library threadTestLibrary{"ThreadTest", {}, kClassesOf<Worker>, {}};

// Runs the task on a thread of its own and waits until the thread has let go of its target.
void runOnThread(std::function<void(id)> task, id argument = nullptr) {
    auto worker = make<Worker>();
    worker->task = std::move(task);
    auto end = worker->end.get_future();
    NSThread::detachNewThreadSelector_toTarget_withObject("work:"_sel, worker, argument);
    worker = nullptr;
    end.wait();
}

TEST(NSThreadTest, AMessageIsSentOnAThreadOfItsOwn) {
    bool isOther = false, hasPool = false;
    id heard = nullptr;
    runOnThread(
        [&](id argument) {
            isOther = NSThread::currentThread() != NSThread::mainThread() && !NSThread::isMainThread();
            hasPool = AutoreleasePool::pendingCount() == 0;
            make<NSObject>().autorelease();
            heard = argument;
        },
        u"hello"_ns);
    EXPECT_EQ(shown(isOther, hasPool, heard, NSThread::isMultiThreaded()), "1 1 hello 1");
}

TEST(NSThreadTest, TheThreadThatRunsMainIsTheMainThread) {
    EXPECT_TRUE(NSThread::isMainThread() && NSThread::currentThread() == NSThread::mainThread());
    NSThread* main = nullptr;
    std::thread([&] { main = NSThread::mainThread(); }).join();
    EXPECT_EQ(main, NSThread::mainThread());
}

TEST(NSThreadTest, EveryThreadHasItsDictionaryWhichGoesWithIt) {
    auto tenant = make<Worker>();
    auto end = tenant->end.get_future();
    NSThread::currentThread()->threadDictionary()->setObject_forKey(u"main"_ns, u"key"_ns);
    onThreads(1, [&](int) {  // not one of NSThread's
        auto* dictionary = NSThread::currentThread()->threadDictionary();
        EXPECT_EQ(dictionary->objectForKey(u"key"_ns), nullptr);
        dictionary->setObject_forKey(tenant, u"key"_ns);
        tenant = nullptr;
    });
    EXPECT_EQ(end.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    EXPECT_EQ(shown(NSThread::currentThread()->threadDictionary()), "{\n    key = main;\n}");
}

TEST(NSThreadTest, ObjectsThatGoWithTheThreadMayStillAskForIt) {
    std::promise<bool> asked;
    NSThread::detach([&asked] {
        AutoreleasePool pool;
        auto tenant = make<Worker>();
        tenant->end.set_value();
        tenant->end = {};
        struct AskAtEnd {
            std::promise<bool>& asked;
            NSThread* thread;
            ~AskAtEnd() { asked.set_value(NSThread::currentThread() == thread); }
        };
        tenant->task = [ask = std::shared_ptr<AskAtEnd>(new AskAtEnd{asked, NSThread::currentThread()})](id) {
        };
        NSThread::currentThread()->threadDictionary()->setObject_forKey(tenant, u"key"_ns);
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

TEST(NSThreadTest, MistakesAreRaised) {
    auto detach = &NSThread::detachNewThreadSelector_toTarget_withObject;
    EXPECT_THROW(detach(SEL(), u""_ns, nullptr), NSException);
    EXPECT_THROW(detach("work:"_sel, nullptr, nullptr), NSException);
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
        auto watcher = make<Worker>();
        int announcements = 0;
        bool isRight = !NSThread::isMultiThreaded();
        std::atomic<bool> hasRun{false};
        watcher->task = [&](id notification) {
            ++announcements;
            isRight = isRight && NSThread::isMainThread() && !hasRun && !NSThread::isMultiThreaded() &&
                      !cast<NSNotification>(notification)->object();
            runOnThread([](id) {});  // does not announce again
            throw NSException("Ignored", "and logged");
        };
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            watcher, "work:"_sel, NSWillBecomeMultiThreadedNotification, nullptr);
        for (int i = 0; i < 3; ++i) runOnThread([&](id) { hasRun = true; });
        std::exit(isRight && announcements == 1 && hasRun && NSThread::isMultiThreaded() ? 0 : 1);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(announce(), ::testing::ExitedWithCode(0), "Ignored: and logged");
}

}  // namespace
