// SPDX-License-Identifier: Apache-2.0
// Tests of run loops with their timers, descriptors, performs and queued notifications.
#include "Foundation/NSRunLoop.h"

#include <sys/resource.h>
#include <unistd.h>

#include "Foundation/ClockScope.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimer.h"
#include "Prelude.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/NSProxy.h"

namespace {

/// Notes what it is sent.
class LoopRecorder : public NSObject {
    PELVOR_CLASS(LoopRecorder, NSObject);

  public:
    std::vector<std::string> heard;
    std::function<void()> reaction;

    void note(const std::string& text) {
        heard.push_back(text);
        if (reaction) reaction();
    }
    void hear(id what) {
        if (auto* notification = cast<NSNotification>(what)) what = notification->name();
        note(cast<NSTimer>(what) ? "beat" : shown(what));
    }
    void read(int descriptor) {
        char byte = 0;
        note(::read(descriptor, &byte, 1) == 1 ? std::string(1, byte) : "end");
    }
};

/// Stands in for a recorder.
class RecorderProxy : public NSProxy {
    PELVOR_CLASS(RecorderProxy, NSProxy);

  public:
    LoopRecorder* target = nullptr;

    NSMethodSignature* methodSignatureForSelector(SEL selector) override {
        return target->methodSignatureForSelector(selector);
    }
    void forwardInvocation(NSInvocation* invocation) override { invocation->invokeWithTarget(target); }
};

extern Library runLoopTestLibrary;
PELVOR_DEFINE_CLASS(LoopRecorder, runLoopTestLibrary) {
    methods.instance<"hear:", &LoopRecorder::hear>();
    methods.instance<"read:", &LoopRecorder::read>();
}
PELVOR_DEFINE_CLASS(RecorderProxy, runLoopTestLibrary) {}
constinit Library runLoopTestLibrary{"RunLoopTest", {}, kClassesOf<LoopRecorder, RecorderProxy>, {}};

constexpr NSString* kTracking = u"Tracking"_ns;

constexpr auto at = &NSDate::dateWithTimeIntervalSinceReferenceDate;
constexpr auto in = &NSDate::dateWithTimeIntervalSinceNow;

/// By the system's clock.
class RunLoopTest : public ::testing::Test {
  protected:
    ~RunLoopTest() {
        if (ends[0] >= 0) endListening();
        NSNotificationCenter::defaultCenter()->removeObserver(recorder);
        loop->cancelPerformSelectorsWithTarget(recorder);
    }
    /// What is heard in a turn, which says whether there was something to do.
    std::string turn(NSString* mode = NSDefaultRunLoopMode) {
        heard.clear();
        const bool wasBusy = loop->performReadyWorkForMode(mode);
        EXPECT_NE(wasBusy, heard.empty());
        return joined(heard);
    }
    void expectTurns(std::initializer_list<const char*> expected) {
        for (const char* each : expected) EXPECT_EQ(turn(), each);
    }
    void listenTo(int descriptor) {
        loop->addDescriptor_events_target_selector_forMode(descriptor, NSDescriptorReadable, recorder,
                                                           "read:"_sel, NSDefaultRunLoopMode);
    }
    /// The pipe's end to write to; what arrives at the other is read in the default mode.
    int listenToPipe() {
        EXPECT_EQ(pipe(ends), 0);
        listenTo(ends[0]);
        return ends[1];
    }
    void endListening() {
        loop->removeDescriptor_forMode(ends[0], NSDefaultRunLoopMode);
        for (int& end : ends) close(std::exchange(end, -1));
    }
    void performOnMain(NSString* text, bool waits) {
        performSelectorOnMainThread_withObject_waitUntilDone(recorder, "hear:"_sel, text, waits);
    }

    int ends[2] = {-1, -1};
    NSRunLoop* loop = NSRunLoop::currentRunLoop();
    Retained<LoopRecorder> recorder = make<LoopRecorder>();
    std::vector<std::string>& heard = recorder->heard;
};

class NSRunLoopTest : public RunLoopTest {
  protected:
    NSTimer* timer(NSTimeInterval seconds, bool repeats = false) {
        return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
            seconds, recorder, "hear:"_sel, nullptr, repeats);
    }
    void perform(NSString* text, std::uint32_t order = 0, NSString* mode = NSDefaultRunLoopMode) {
        loop->performSelector_target_argument_order_modes("hear:"_sel, recorder, text, order,
                                                          NSArray::of({mode}));
    }
    void performLater(NSString* text, NSTimeInterval delay) {
        performSelector_withObject_afterDelay(recorder, "hear:"_sel, text, delay);
    }
    void enqueue(NSString* name, NSPostingStyle style, std::uint32_t mask = 3, id sender = nullptr,
                 NSArray* modes = nullptr) {
        auto* center = NSNotificationCenter::defaultCenter();
        center->removeObserver_name_object(recorder, name, nullptr);
        center->addObserver_selector_name_object(recorder, "hear:"_sel, name, nullptr);
        enqueueIn(NSNotificationQueue::defaultQueue(), name, style, mask, sender, modes);
    }
    static void enqueueIn(NSNotificationQueue* queue, NSString* name, NSPostingStyle style,
                          std::uint32_t mask, id sender, NSArray* modes = nullptr) {
        queue->enqueueNotification_postingStyle_coalesceMask_forModes(
            NSNotification::notificationWithName_object(name, sender), style, mask, modes);
    }
    static void dequeueFrom(NSNotificationQueue* queue, NSString* name, id sender, std::uint32_t mask) {
        AutoreleasePool pool;
        queue->dequeueNotificationsMatching_coalesceMask(
            NSNotification::notificationWithName_object(name, sender), mask);
    }
    bool run(NSDate* limit, NSString* mode = NSDefaultRunLoopMode) {
        return loop->runMode_beforeDate(mode, limit);
    }
    /// When the default mode has something to do.
    NSTimeInterval deadline() {
        return loop->limitDateForMode(NSDefaultRunLoopMode)->timeIntervalSinceReferenceDate();
    }
    void expectRaisingTurns(int count) {
        for (int i = 0; i < count; ++i) EXPECT_THROW(turn(), NSException);
        EXPECT_EQ(turn(), "");
    }

    ClockScope clock{1000};
};

TEST_F(NSRunLoopTest, PerformsComeInTheirOrderAndOnlyInTheirModes) {
    perform(u"late"_ns, 9);
    perform(u"elsewhere"_ns, 0, kTracking);
    for (NSString* text : {u"early"_ns, u"gone"_ns, u"early too"_ns}) perform(text, 1);
    loop->cancelPerformSelector_target_argument("hear:"_sel, recorder, u"gone"_ns);
    expectTurns({"early, early too, late", ""});
    EXPECT_EQ(turn(kTracking), "elsewhere");
    recorder->reaction = [this] { perform(u"again"_ns); };  // in the next turn
    perform(u"first"_ns, 5);
    expectTurns({"first", "again", "again"});
}

TEST_F(NSRunLoopTest, ATimerFiresOnceAndLetsGoOfItsTarget) {
    NSTimer* once = timer(1);
    clock.advance(0.9);
    EXPECT_EQ(turn(), "");
    EXPECT_EQ(recorder->retainCount(), 2u);
    clock.advance(0.2);
    EXPECT_EQ(turn(kTracking), "");
    recorder->reaction = [this] { Retained<Object>(recorder).autorelease(); };  // until the turn is over
    EXPECT_EQ(turn(), "beat");
    EXPECT_TRUE(!once->isValid() && recorder->retainCount() == 1);
    EXPECT_EQ(turn(), "");
}

TEST_F(NSRunLoopTest, ARepeatingTimerKeepsItsBeatAndLeavesOutWhatWasMissed) {
    NSTimer* beat = timer(10, true);
    for (auto [step, expected] : {std::pair{10.0, "beat"}, {3.0, ""}, {30.0, "beat"}}) {
        clock.advance(step);
        EXPECT_EQ(turn(), expected) << step;
    }
    EXPECT_TRUE(beat->fireDate()->isEqualToDate(at(1050)));
    beat->invalidate();
    clock.advance(100);
    EXPECT_EQ(turn(), "");
    EXPECT_FALSE(loop->hasWorkForMode(NSDefaultRunLoopMode));
}

TEST_F(NSRunLoopTest, CommonModesTakeInThoseThatAreNamedLater) {
    auto makeTimer = &NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats;
    loop->addTimer_forMode(makeTimer(0, recorder, "hear:"_sel, nullptr, false), NSRunLoopCommonModes);
    performOnMain(u"later"_ns, false);
    performOnMain(u"at once"_ns, true);
    EXPECT_THAT(heard, ElementsAre("at once"));
    EXPECT_EQ(turn(u"Panel"_ns), "");
    loop->addCommonMode(u"Panel"_ns);
    EXPECT_EQ(turn(u"Panel"_ns), "beat, later");
    EXPECT_EQ(turn(), "");
}

TEST_F(NSRunLoopTest, ADescriptorIsServedWhileItIsReadyAndOnlyInItsMode) {
    int end = listenToPipe();
    EXPECT_EQ(turn(), "");
    ASSERT_EQ(write(end, "ab", 2), 2);
    EXPECT_EQ(turn(kTracking), "");
    expectTurns({"a", "b", ""});
    close(std::exchange(ends[1], -1));
    EXPECT_EQ(turn(), "end");
    endListening();
    EXPECT_EQ(turn(), "");
    EXPECT_EQ(recorder->retainCount(), 1u);
}

TEST_F(NSRunLoopTest, IdleNotificationsWaitUntilNothingElseIsReady) {
    for (NSString* name : {u"Idle"_ns, u"Idle too"_ns}) enqueue(name, NSPostWhenIdle);
    enqueue(u"Soon"_ns, NSPostASAP);
    enqueue(u"Now"_ns, NSPostNow);
    EXPECT_THAT(heard, ElementsAre("Now"));
    perform(u"work"_ns);
    timer(0);
    expectTurns({"work, beat, Soon", "Idle"});
    EXPECT_EQ(turn(kTracking), "");
    expectTurns({"Idle too", ""});
}

TEST_F(NSRunLoopTest, QueuedNotificationsCoalesceByWhatTheMaskSays) {
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "A, A, B, B, B"},
                                                          {NSNotificationCoalescingOnName, "A, B"},
                                                          {NSNotificationCoalescingOnSender, "B, B"},
                                                          {3, "A, A, B, B"}};
    for (auto [mask, posts] : rows) {
        for (NSString* name : {u"A"_ns, u"B"_ns})
            for (id sender : {id(recorder), id(loop)}) enqueue(name, NSPostASAP, mask, sender);
        enqueue(u"B"_ns, NSPostASAP, mask, loop);
        EXPECT_EQ(turn(), posts) << mask;
    }
    enqueue(u"A"_ns, NSPostWhenIdle, 3, nullptr, NSArray::of({kTracking}));
    EXPECT_EQ(turn(), "");
    dequeueFrom(NSNotificationQueue::defaultQueue(), u"A"_ns, loop, NSNotificationCoalescingOnName);
    EXPECT_EQ(turn(kTracking), "");
}

TEST_F(NSRunLoopTest, DescriptionsTellWhatWaits) {
    using ::testing::MatchesRegex;
    NSTimer* beat = timer(2.5, true);
    perform(u"x"_ns, 7, kTracking);
    listenToPipe();
    EXPECT_THAT(
        shown(loop),
        MatchesRegex("<NSRunLoop 0x.*: runs in no mode, common modes NSDefaultRunLoopMode.*\n"
                     "  <NSTimer 0x.*: sends hear: to <LoopRecorder 0x.*> in 2.500 s, then every 2.5 s> "
                     "in NSDefaultRunLoopMode\n"
                     "  .* readable: sends read: to <LoopRecorder 0x.*\n"
                     "  perform of order 7: sends hear: to <LoopRecorder 0x.*> in Tracking>"));
    beat->invalidate();
    EXPECT_THAT(shown(beat), EndsWith(": invalid>"));
    auto queue = NSNotificationQueue::init();
    enqueueIn(queue, u"News"_ns, NSPostWhenIdle, 0, nullptr, NSArray::of({kTracking, u"Panel"_ns}));
    enqueueIn(queue, u"News"_ns, NSPostASAP, 0, nullptr, nullptr);
    EXPECT_THAT(shown(queue),
                MatchesRegex("<NSNotificationQueue 0x.*:\n"
                             "  as soon as possible in NSDefaultRunLoopMode: <NSNotification .*\n"
                             "  when idle in Tracking, Panel: <NSNotification .*>"));
}

TEST_F(NSRunLoopTest, WhatCannotBeWaitedForIsRefused) {
    EXPECT_THAT(RAISED(timer(NAN)), EndsWith("repeats: the interval is not a number"));
    EXPECT_THAT(RAISED(listenTo(-1)), EndsWith("descriptor -1 cannot be watched: Bad file descriptor"));
    EXPECT_FALSE(loop->hasWorkForMode(NSDefaultRunLoopMode));
}

// MARK: What ends

TEST_F(NSRunLoopTest, AnEndThatDropsOtherQueuedNotificationsHarmsNothing) {
    auto queue = NSNotificationQueue::init();
    auto drop = [&](id sender, std::uint32_t mask) { dequeueFrom(queue, u"News"_ns, sender, mask); };
    auto enqueueFrom = [&](id sender) { enqueueIn(queue, u"News"_ns, NSPostASAP, 0, sender); };
    int ended = 0;
    {
        AutoreleasePool pool;
        auto dropAll = [&] { drop(nullptr, NSNotificationCoalescingOnName), ++ended; };
        for (int i = 0; i < 3; ++i) enqueueFrom(Listener::doing([end = atEnd(dropAll)](id) {}).get());
        enqueueFrom(recorder);
    }
    drop(recorder, NSNotificationCoalescingOnSender);
    EXPECT_EQ(ended, 0);
    drop(nullptr, NSNotificationCoalescingOnName);
    EXPECT_EQ(ended, 3);
}

TEST_F(RunLoopTest, ReceiversThatEndWithTheLoopOfTheirThreadCancelWhatIsGone) {
    std::atomic<int> ended{0};
    std::thread([&] {
        AutoreleasePool pool;
        for (int i = 0; i < 3; ++i) {
            auto receiver = make<Listener>();
            receiver->task = [end = atEnd([&ended, own = receiver.get()] {
                                  NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget(own);
                                  ++ended;
                              })](id) {};
            for (NSTimeInterval delay : {1, 2})
                performSelector_withObject_afterDelay(receiver, "hear:"_sel, nullptr, delay);
        }
    }).join();
    EXPECT_EQ(ended, 3);
}

// MARK: What is raised

TEST_F(NSRunLoopTest, WhatACallRaisesLeavesTheLoopFitToGoOn) {
    std::vector<std::string> all;
    recorder->reaction = [&] {
        all.push_back(heard.back());
        throw NSException("Broken", "by a call");
    };
    perform(u"one"_ns);
    perform(u"two"_ns, 1);
    timer(0);
    enqueue(u"Idle"_ns, NSPostWhenIdle);
    expectRaisingTurns(4);
    EXPECT_EQ(loop->currentMode(), nullptr);
    EXPECT_THAT(all, ElementsAre("one", "two", "beat", "Idle"));
}

TEST_F(NSRunLoopTest, WhatADescriptorsCallRaisesLosesNoSignalOfOtherThreads) {
    recorder->reaction = [] { throw NSException("Broken", "by a call"); };
    std::vector<std::string> posted;
    auto post = [&](NSString* text) {
        auto hear = [&, text] {
            posted.push_back(shown(text));
            recorder->hear(text);
        };
        loop->perform(hear, nullptr);
    };
    ASSERT_EQ(write(listenToPipe(), "d", 1), 1);
    for (NSString* text : {u"one"_ns, u"two"_ns}) post(text);
    EXPECT_LT(deadline(), clock.now());
    expectRaisingTurns(3);
    recorder->reaction = nullptr;
    post(u"three"_ns);
    EXPECT_TRUE(run(nullptr));
    EXPECT_THAT(posted, ElementsAre("one", "two", "three"));
}

// MARK: Time

TEST_F(NSRunLoopTest, SettingTheSystemsClockNeitherHurriesNorHoldsATimer) {
    for (double set : {5000.0, -5000.0}) {
        NSTimer *once = timer(10), *beat = timer(4, true);
        NSDate* fireDate = once->fireDate();
        clock.set(set);
        EXPECT_EQ(turn(), "");
        EXPECT_EQ(deadline(), set + 4);
        EXPECT_TRUE(once->fireDate()->isEqualToDate(fireDate));
        loop->runUntilDate(at(set + 9));
        EXPECT_EQ(shown(heard.size(), clock.now()), shown(2, set + 9));
        beat->setFireDate(at(set + 12));
        once->setFireDate(at(set + 11));
        EXPECT_TRUE(run(nullptr));
        EXPECT_EQ(shown(once->isValid(), beat->isValid(), clock.now()), shown(false, true, set + 11));
        beat->invalidate();
    }
}

TEST_F(NSRunLoopTest, DelayedPerformsComeInTimeAndOnlyInTheirModes) {
    performLater(u"late"_ns, 2);
    send(recorder, "performSelector:withObject:afterDelay:inModes:"_sel, "hear:"_sel, id(u"tracking"_ns), 1.0,
         NSArray::of({kTracking, u"Panel"_ns}));
    performLater(u"soon"_ns, 0);
    EXPECT_TRUE(heard.empty() && recorder->retainCount() == 4);
    EXPECT_EQ(turn(), "soon");
    clock.advance(1);
    EXPECT_EQ(turn(), "");
    EXPECT_EQ(turn(u"Panel"_ns), "tracking");
    EXPECT_EQ(turn(kTracking), "");
    clock.advance(1);
    EXPECT_EQ(turn(), "late");
    EXPECT_EQ(recorder->retainCount(), 1u);
}

TEST_F(NSRunLoopTest, CancelledDelayedPerformsAreForgotten) {
    for (NSString* text : {u"a"_ns, u"b"_ns, u"c"_ns, u"b"_ns}) performLater(text, 1);
    auto cancel = &NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget_selector_object;
    cancel(recorder, "hear:"_sel, NSString::ofUTF8("b"));
    cancel(recorder, "read:"_sel, u"a"_ns);
    EXPECT_EQ(recorder->retainCount(), 3u);
    recorder->reaction = [&] {
        send(LoopRecorder::classObject(), "cancelPreviousPerformRequestsWithTarget:"_sel, id(recorder));
        if (heard.size() == 1) performLater(u"again"_ns, 1);
    };
    loop->runUntilDate(in(5));
    EXPECT_THAT(heard, ElementsAre("a", "again"));
    EXPECT_FALSE(loop->hasWorkForMode(NSDefaultRunLoopMode));
    EXPECT_EQ(recorder->retainCount(), 1u);
}

// The kernel counts how often the thread has gone to sleep.
TEST_F(RunLoopTest, ALoopWithNothingToDoSleepsThroughAndWakesOnceForManyTimers) {
    auto sleeps = [] {
        rusage usage;
        getrusage(RUSAGE_THREAD, &usage);
        return usage.ru_nvcsw;
    };
    listenToPipe();
    NSDate* together = in(0.02);
    for (int i = 0; i < 100; ++i)
        loop->addTimer_forMode(NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
                                   together, 0, recorder, "hear:"_sel, nullptr, false)
                                   .get(),
                               NSDefaultRunLoopMode);
    const long before = sleeps();
    loop->runUntilDate(in(0.04));
    EXPECT_EQ(heard.size(), 100u);
    EXPECT_LE(sleeps() - before, 4);  // two, and what a busy machine adds
}

// MARK: Runs

TEST_F(NSRunLoopTest, ARunInsideACallServesItsOwnModeAlone) {
    std::vector<std::string> modes;
    timer(1);
    perform(u"tracked"_ns, 0, kTracking);
    loop->perform([this] { recorder->hear(u"posted"_ns); }, nullptr);
    recorder->reaction = [&] {
        modes.push_back(shown(loop->currentMode()));
        if (heard.size() > 1) return;
        while (run(in(2), kTracking)) {
        }
    };
    perform(u"outer"_ns);
    EXPECT_EQ(turn(), "outer, tracked, beat, posted");
    const std::string usual = NSDefaultRunLoopMode->toUTF8();
    EXPECT_THAT(modes, ElementsAre(usual, "Tracking", usual, usual));
    EXPECT_EQ(loop->currentMode(), nullptr);
}

TEST_F(NSRunLoopTest, StopEndsTheInnermostRunAndDoesNotReachOneToCome) {
    loop->stop();
    recorder->reaction = [this] {
        if (heard.back() != "outer") return loop->stop();
        perform(u"inner"_ns);
        loop->run();
        heard.push_back("inner has ended");
        perform(u"last"_ns);
    };
    perform(u"outer"_ns);
    loop->run();
    EXPECT_THAT(heard, ElementsAre("outer", "inner", "inner has ended", "last"));
}

TEST_F(NSRunLoopTest, RunsEndByAWakeUpWhichIsNotLostBeforeThemOrAfterTheirTime) {
    loop->wakeUp();
    EXPECT_TRUE(run(nullptr, kTracking));
    EXPECT_FALSE(run(in(9), kTracking));
    EXPECT_EQ(clock.now(), 1009);
    recorder->reaction = [this] { clock.set(90000); };  // the run goes on for its time
    perform(u"set"_ns);
    loop->runUntilDate(in(3));
    EXPECT_EQ(clock.now(), 90003);
}

// MARK: The main thread's

TEST_F(RunLoopTest, ThreadsThatPostAndWaitAreServedOneByOne) {
    constexpr int kThreads = 16, kPosts = 200;
    recorder->reaction = [&] {
        if (!NSThread::isMainThread()) ADD_FAILURE() << "on another thread";
        if (heard.size() % 10 == 0) throw NSException("Tenth", "call");
    };
    std::atomic<int> caught{0}, running{kThreads};
    for (int thread = 0; thread < kThreads; ++thread)
        NSThread::detach([&, served = &*loop] {
            for (int i = 0; i < kPosts; ++i) caught += RAISED(performOnMain(u"x"_ns, true)) == "Tenth: call";
            --running;  // the last one lets the test end
            served->wakeUp();
        });
    while (running > 0) loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    EXPECT_EQ(heard.size(), static_cast<std::size_t>(kThreads * kPosts));
    EXPECT_EQ(caught, kThreads * kPosts / 10);
}

TEST_F(RunLoopTest, AProxyIsPerformedOnAndForwardsOnlyWhatIsPerformed) {
    auto proxy = make<RecorderProxy>();
    proxy->target = recorder;
    send(proxy, "performSelectorOnMainThread:withObject:waitUntilDone:"_sel, "hear:"_sel, id(u"later"_ns),
         false);
    EXPECT_EQ(proxy->retainCount(), 2u);
    EXPECT_EQ(recorder->retainCount(), 1u);
    EXPECT_EQ(turn(), "later");
}

}  // namespace
