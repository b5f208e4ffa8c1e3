// SPDX-License-Identifier: Apache-2.0
// Tests of run loops with their timers, descriptors, performs and queued notifications.
#include "Foundation/NSRunLoop.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "Foundation/ClockScope.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimer.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/NSProxy.h"
#include "Runtime/Registry.h"

namespace pelvor::testing {

using ::testing::ElementsAre;

extern Library runLoopTestLibrary;

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
    void hear(id argument) { note(argument ? argument->description()->toUTF8() : "none"); }
    void beat(NSTimer*) { note("beat"); }
    void observe(NSNotification* notification) { note(notification->name()->toUTF8()); }
    void read(int descriptor) {
        char byte = 0;
        note(::read(descriptor, &byte, 1) == 1 ? std::string(1, byte) : "end");
    }

  protected:
    LoopRecorder() = default;
    ~LoopRecorder() = default;
};

/// Stands in for a recorder.
class RecorderProxy : public NSProxy {
    PELVOR_CLASS(RecorderProxy, NSProxy);

  public:
    LoopRecorder* target = nullptr;

    NSMethodSignature* methodSignatureForSelector(SEL selector) override {
        if (NSMethodSignature* own = NSProxy::methodSignatureForSelector(selector)) return own;
        return target->methodSignatureForSelector(selector);
    }
    void forwardInvocation(NSInvocation* invocation) override { invocation->invokeWithTarget(target); }

  protected:
    RecorderProxy() = default;
    ~RecorderProxy() = default;
};

namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&LoopRecorder::classRecord, &RecorderProxy::classRecord};

}  // namespace

constinit Library runLoopTestLibrary{"RunLoopTest", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(LoopRecorder, runLoopTestLibrary) {
    methods.instance<"hear:", &LoopRecorder::hear>();
    methods.instance<"beat:", &LoopRecorder::beat>();
    methods.instance<"observe:", &LoopRecorder::observe>();
    methods.instance<"read:", &LoopRecorder::read>();
}

PELVOR_DEFINE_CLASS(RecorderProxy, runLoopTestLibrary) {}

namespace {

constexpr NSString* kTracking = u"Tracking"_ns;

class NSRunLoopTest : public ::testing::Test {
  protected:
    ~NSRunLoopTest() {
        NSNotificationCenter::defaultCenter()->removeObserver(recorder);
        loop->cancelPerformSelectorsWithTarget(recorder);
    }
    bool turn(NSString* mode = NSDefaultRunLoopMode) { return loop->performReadyWorkForMode(mode); }
    NSTimer* timer(NSTimeInterval seconds, bool repeats) {
        return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
            seconds, recorder, "beat:"_sel, nullptr, repeats);
    }
    void perform(NSString* text, std::uint32_t order, NSString* mode = NSDefaultRunLoopMode) {
        loop->performSelector_target_argument_order_modes("hear:"_sel, recorder, text, order,
                                                          NSArray::of({mode}));
    }
    void enqueue(NSString* name, NSPostingStyle style, std::uint32_t mask = 3, id sender = nullptr,
                 NSArray* modes = nullptr) {
        NSNotificationCenter::defaultCenter()->removeObserver_name_object(recorder, name, nullptr);
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(recorder, "observe:"_sel,
                                                                                name, nullptr);
        NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle_coalesceMask_forModes(
            NSNotification::notificationWithName_object(name, sender), style, mask, modes);
    }

    AutoreleasePool pool;
    ClockScope clock{1000};
    NSRunLoop* loop = NSRunLoop::currentRunLoop();
    Retained<LoopRecorder> recorder = make<LoopRecorder>();
    std::vector<std::string>& heard = recorder->heard;
};

TEST_F(NSRunLoopTest, PerformsComeInTheirOrderAndOnlyInTheirModes) {
    perform(u"late"_ns, 9);
    perform(u"elsewhere"_ns, 0, kTracking);
    perform(u"early"_ns, 1);
    perform(u"early too"_ns, 1);
    perform(u"gone"_ns, 2);
    loop->cancelPerformSelector_target_argument("hear:"_sel, recorder, u"gone"_ns);
    EXPECT_TRUE(turn());
    EXPECT_THAT(heard, ElementsAre("early", "early too", "late"));
    EXPECT_FALSE(turn());
    EXPECT_TRUE(turn(kTracking));
    EXPECT_EQ(heard.back(), "elsewhere");
}

TEST_F(NSRunLoopTest, APerformThatAsksForAnotherHasItInTheNextTurn) {
    recorder->reaction = [this] {
        if (heard.size() < 2) perform(u"again"_ns, 0);
    };
    perform(u"first"_ns, 5);
    turn();
    EXPECT_THAT(heard, ElementsAre("first"));
    turn();
    EXPECT_THAT(heard, ElementsAre("first", "again"));
}

TEST_F(NSRunLoopTest, ATimerFiresOnceAndLetsGoOfItsTarget) {
    NSTimer* once = timer(1, false);
    clock.advance(0.9);
    EXPECT_FALSE(turn());
    EXPECT_EQ(recorder->retainCount(), 2u);
    clock.advance(0.2);
    EXPECT_FALSE(turn(kTracking));
    recorder->reaction = [this] { Retained<Object>(recorder).autorelease(); };  // until the turn is over
    EXPECT_TRUE(turn());
    EXPECT_FALSE(once->isValid());
    EXPECT_EQ(recorder->retainCount(), 1u);
    EXPECT_FALSE(turn());
}

TEST_F(NSRunLoopTest, ARepeatingTimerKeepsItsBeatAndLeavesOutWhatWasMissed) {
    NSTimer* beat = timer(10, true);
    for (double step : {10.0, 3.0, 30.0}) {
        clock.advance(step);
        turn();
    }
    EXPECT_EQ(heard.size(), 2u);
    EXPECT_EQ(beat->fireDate()->timeIntervalSinceReferenceDate(), 1050);
    beat->invalidate();
    clock.advance(100);
    EXPECT_FALSE(turn());
    EXPECT_FALSE(loop->hasWorkForMode(NSDefaultRunLoopMode));
}

TEST_F(NSRunLoopTest, AMovedFireDateIsTheOneThatCounts) {
    NSTimer* late = timer(5, false);
    NSTimer* early = timer(6, false);
    early->setFireDate(NSDate::dateWithTimeIntervalSinceReferenceDate(1001));
    late->setFireDate(NSDate::dateWithTimeIntervalSinceReferenceDate(1003));
    EXPECT_EQ(loop->limitDateForMode(NSDefaultRunLoopMode)->timeIntervalSinceReferenceDate(), 1001);
    EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode, NSDate::distantFuture()));
    EXPECT_EQ(clock.now(), 1001);
    EXPECT_FALSE(early->isValid());
    EXPECT_TRUE(late->isValid());
    late->invalidate();
}

TEST_F(NSRunLoopTest, CommonModesTakeInThoseThatAreNamedLater) {
    loop->addTimer_forMode(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
                               0, recorder, "beat:"_sel, nullptr, false),
                           NSRunLoopCommonModes);
    EXPECT_FALSE(turn(u"Panel"_ns));
    loop->addCommonMode(u"Panel"_ns);
    EXPECT_TRUE(turn(u"Panel"_ns));
    EXPECT_FALSE(turn());
}

TEST_F(NSRunLoopTest, ADescriptorIsServedWhileItIsReadyAndOnlyInItsMode) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    loop->addDescriptor_events_target_selector_forMode(ends[0], NSDescriptorReadable, recorder, "read:"_sel,
                                                       NSDefaultRunLoopMode);
    EXPECT_FALSE(turn());
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    EXPECT_FALSE(turn(kTracking));
    EXPECT_TRUE(turn() && turn());
    EXPECT_FALSE(turn());
    close(ends[1]);
    EXPECT_TRUE(turn());
    EXPECT_THAT(heard, ElementsAre("a", "b", "end"));
    loop->removeDescriptor_forMode(ends[0], NSDefaultRunLoopMode);
    EXPECT_FALSE(turn());
    EXPECT_EQ(recorder->retainCount(), 1u);
    close(ends[0]);
    EXPECT_THROW(loop->addDescriptor_events_target_selector_forMode(-1, 1, recorder, "read:"_sel, kTracking),
                 NSException);
}

TEST_F(NSRunLoopTest, IdleNotificationsWaitUntilNothingElseIsReady) {
    enqueue(u"Idle"_ns, NSPostWhenIdle);
    enqueue(u"Idle too"_ns, NSPostWhenIdle);
    enqueue(u"Soon"_ns, NSPostASAP);
    enqueue(u"Now"_ns, NSPostNow);
    EXPECT_THAT(heard, ElementsAre("Now"));
    perform(u"work"_ns, 0);
    timer(0, false);
    EXPECT_TRUE(turn());
    EXPECT_THAT(heard, ElementsAre("Now", "work", "beat", "Soon"));
    EXPECT_TRUE(turn());
    EXPECT_EQ(heard.back(), "Idle");
    EXPECT_FALSE(turn(kTracking));
    EXPECT_TRUE(turn());
    EXPECT_EQ(heard.back(), "Idle too");
    EXPECT_FALSE(turn());
}

TEST_F(NSRunLoopTest, QueuedNotificationsCoalesceByWhatTheMaskSays) {
    const struct {
        std::uint32_t mask;
        std::size_t posts;
    } rows[] = {{0, 5}, {NSNotificationCoalescingOnName, 2}, {NSNotificationCoalescingOnSender, 2}, {3, 4}};
    for (auto [mask, posts] : rows) {
        heard.clear();
        for (NSString* name : {u"A"_ns, u"B"_ns})
            for (id sender : {static_cast<id>(recorder), static_cast<id>(loop)})
                enqueue(name, NSPostASAP, mask, sender);
        enqueue(u"B"_ns, NSPostASAP, mask, loop);
        turn();
        EXPECT_EQ(heard.size(), posts) << mask;
    }
    enqueue(u"A"_ns, NSPostWhenIdle, 3, nullptr, NSArray::of({kTracking}));
    EXPECT_FALSE(turn());
    NSNotificationQueue::defaultQueue()->dequeueNotificationsMatching_coalesceMask(
        NSNotification::notificationWithName_object(u"A"_ns, loop), NSNotificationCoalescingOnName);
    EXPECT_FALSE(turn(kTracking));
}

TEST_F(NSRunLoopTest, WhatACallRaisesLeavesTheLoopFitToGoOn) {
    recorder->reaction = [] { throw NSException("Broken", "by a call"); };
    perform(u"one"_ns, 0);
    perform(u"two"_ns, 1);
    timer(0, false);
    enqueue(u"Idle"_ns, NSPostWhenIdle);
    for (int i = 0; i < 4; ++i) EXPECT_THROW(turn(), NSException);
    EXPECT_EQ(loop->currentMode(), nullptr);
    EXPECT_FALSE(turn());
    EXPECT_THAT(heard, ElementsAre("one", "two", "beat", "Idle"));
}

TEST_F(NSRunLoopTest, WhatADescriptorsCallRaisesLosesNoSignalOfOtherThreads) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    loop->addDescriptor_events_target_selector_forMode(ends[0], NSDescriptorReadable, recorder, "read:"_sel,
                                                       NSDefaultRunLoopMode);
    recorder->reaction = [] { throw NSException("Broken", "by a call"); };
    auto post = [this](NSString* text) { loop->perform([=, this] { recorder->hear(text); }, nullptr); };
    ASSERT_EQ(write(ends[1], "d", 1), 1);
    post(u"one"_ns);
    post(u"two"_ns);
    EXPECT_LT(loop->limitDateForMode(NSDefaultRunLoopMode)->timeIntervalSinceNow(), 0);
    for (int i = 0; i < 3; ++i) EXPECT_THROW(turn(), NSException);
    EXPECT_FALSE(turn());
    recorder->reaction = nullptr;
    post(u"three"_ns);
    EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr));
    EXPECT_THAT(heard, ElementsAre("d", "one", "two", "three"));
    loop->removeDescriptor_forMode(ends[0], NSDefaultRunLoopMode);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(NSRunLoopTest, SettingTheSystemsClockNeitherHurriesNorHoldsATimer) {
    for (double set : {5000.0, -5000.0}) {
        heard.clear();
        NSTimer* once = timer(10, false);
        NSTimer* beat = timer(4, true);
        NSDate* fireDate = once->fireDate();
        clock.set(set);
        EXPECT_FALSE(turn());
        EXPECT_EQ(loop->limitDateForMode(NSDefaultRunLoopMode)->timeIntervalSinceReferenceDate(), set + 4);
        EXPECT_TRUE(once->fireDate()->isEqualToDate(fireDate));
        loop->runUntilDate(NSDate::dateWithTimeIntervalSinceReferenceDate(set + 9));
        EXPECT_EQ(heard.size(), 2u);
        EXPECT_EQ(clock.now(), set + 9);
        once->setFireDate(NSDate::dateWithTimeIntervalSinceReferenceDate(set + 11));
        beat->invalidate();
        EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr));
        EXPECT_EQ(clock.now(), set + 11);
    }
}

TEST_F(NSRunLoopTest, ARunGoesOnForItsTimeWhenTheSystemsClockIsSetMeanwhile) {
    recorder->reaction = [this] { clock.set(90000); };
    perform(u"set"_ns, 0);
    loop->runUntilDate(NSDate::dateWithTimeIntervalSinceNow(3));
    EXPECT_EQ(clock.now(), 90003);
}

TEST_F(NSRunLoopTest, DelayedPerformsComeInTimeAndOnlyInTheirModes) {
    performSelector_withObject_afterDelay(recorder, "hear:"_sel, u"late"_ns, 2);
    send(recorder, "performSelector:withObject:afterDelay:inModes:"_sel, "hear:"_sel,
         static_cast<id>(u"tracking"_ns), 1.0, NSArray::of({kTracking, u"Panel"_ns}));
    performSelector_withObject_afterDelay(recorder, "hear:"_sel, u"soon"_ns, 0);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(recorder->retainCount(), 4u);
    EXPECT_TRUE(turn());
    clock.advance(1);
    EXPECT_FALSE(turn());
    EXPECT_TRUE(turn(u"Panel"_ns));
    EXPECT_FALSE(turn(kTracking));
    clock.advance(1);
    EXPECT_TRUE(turn());
    EXPECT_THAT(heard, ElementsAre("soon", "tracking", "late"));
    EXPECT_EQ(recorder->retainCount(), 1u);
}

TEST_F(NSRunLoopTest, CancelledDelayedPerformsAreForgotten) {
    auto later = [this](NSString* text) {
        performSelector_withObject_afterDelay(recorder, "hear:"_sel, text, 1);
    };
    for (NSString* text : {u"a"_ns, u"b"_ns, u"c"_ns, u"b"_ns}) later(text);
    using Delayed = NSObject_DelayedPerforming;
    Delayed::cancelPreviousPerformRequestsWithTarget_selector_object(recorder, "hear:"_sel,
                                                                     NSString::ofUTF8("b"));
    Delayed::cancelPreviousPerformRequestsWithTarget_selector_object(recorder, "beat:"_sel, u"a"_ns);
    EXPECT_EQ(recorder->retainCount(), 3u);
    recorder->reaction = [&] {
        send(LoopRecorder::classObject(), "cancelPreviousPerformRequestsWithTarget:"_sel,
             static_cast<id>(recorder));
        if (heard.size() == 1) later(u"again"_ns);
    };
    loop->runUntilDate(NSDate::dateWithTimeIntervalSinceNow(5));
    EXPECT_THAT(heard, ElementsAre("a", "again"));
    EXPECT_FALSE(loop->hasWorkForMode(NSDefaultRunLoopMode));
    EXPECT_EQ(recorder->retainCount(), 1u);
}

TEST_F(NSRunLoopTest, ARunInsideACallServesItsOwnModeAlone) {
    std::vector<std::string> modes;
    timer(1, false);
    perform(u"tracked"_ns, 0, kTracking);
    loop->perform([this] { recorder->hear(u"posted"_ns); }, nullptr);
    recorder->reaction = [&] {
        modes.push_back(loop->currentMode()->toUTF8());
        if (heard.size() > 1) return;
        while (loop->runMode_beforeDate(kTracking, NSDate::dateWithTimeIntervalSinceNow(2))) {
        }
    };
    perform(u"outer"_ns, 0);
    turn();
    EXPECT_THAT(heard, ElementsAre("outer", "tracked", "beat", "posted"));
    EXPECT_THAT(modes, ElementsAre("NSDefaultRunLoopMode", "Tracking", "NSDefaultRunLoopMode",
                                   "NSDefaultRunLoopMode"));
    EXPECT_EQ(loop->currentMode(), nullptr);
}

long sleepsOfThisThread() {
    rusage usage;
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

// By the system's clock: the kernel counts how often the thread has gone to sleep.
TEST(NSRunLoopSleepTest, ALoopWithNothingToDoSleepsThroughAndWakesOnceForManyTimers) {
    AutoreleasePool pool;
    auto recorder = make<LoopRecorder>();
    NSRunLoop* loop = NSRunLoop::currentRunLoop();
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    loop->addDescriptor_events_target_selector_forMode(ends[0], NSDescriptorReadable, recorder, "read:"_sel,
                                                       NSDefaultRunLoopMode);
    NSDate* together = NSDate::dateWithTimeIntervalSinceNow(0.02);
    for (int i = 0; i < 100; ++i)
        loop->addTimer_forMode(NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
                                   together, 0, recorder, "beat:"_sel, nullptr, false)
                                   .get(),
                               NSDefaultRunLoopMode);
    long before = sleepsOfThisThread();
    loop->runUntilDate(NSDate::dateWithTimeIntervalSinceNow(0.04));
    EXPECT_EQ(recorder->heard.size(), 100u);
    EXPECT_LE(sleepsOfThisThread() - before, 4);  // two, and what a busy machine adds
    loop->removeDescriptor_forMode(ends[0], NSDefaultRunLoopMode);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(NSRunLoopTest, StopEndsTheInnermostRunAndDoesNotReachOneToCome) {
    loop->stop();
    recorder->reaction = [this] {
        if (heard.back() != "outer") return loop->stop();
        perform(u"inner"_ns, 0);
        loop->run();
        heard.push_back("inner has ended");
        perform(u"last"_ns, 0);
    };
    perform(u"outer"_ns, 0);
    loop->run();
    EXPECT_THAT(heard, ElementsAre("outer", "inner", "inner has ended", "last"));
}

TEST_F(NSRunLoopTest, ARunUntilADateTakesWhatComesBeforeIt) {
    NSTimer* beat = timer(1, true);
    loop->runUntilDate(NSDate::dateWithTimeIntervalSinceNow(3.5));
    EXPECT_EQ(heard.size(), 3u);
    EXPECT_EQ(clock.now(), 1003.5);
    beat->invalidate();
}

TEST_F(NSRunLoopTest, AWakeUpEndsOneWaitAndIsNotLostBeforeIt) {
    loop->wakeUp();
    EXPECT_TRUE(loop->runMode_beforeDate(kTracking, nullptr));
    EXPECT_FALSE(loop->runMode_beforeDate(kTracking, NSDate::dateWithTimeIntervalSinceNow(9)));
    EXPECT_EQ(clock.now(), 1009);
}

TEST(NSObjectMainThreadTest, ThreadsThatPostAndWaitAreServedOneByOne) {
    constexpr int kThreads = 16, kPosts = 200;
    AutoreleasePool pool;
    auto recorder = make<LoopRecorder>();
    recorder->reaction = [&] {
        if (!NSThread::isMainThread()) ADD_FAILURE() << "on another thread";
        if (recorder->heard.size() % 10 == 0) throw NSException("Tenth", "call");
    };
    std::atomic<int> caught{0}, running{kThreads};
    for (int thread = 0; thread < kThreads; ++thread)
        NSThread::detach([&] {
            for (int i = 0; i < kPosts; ++i) try {
                    performSelectorOnMainThread_withObject_waitUntilDone(recorder, "hear:"_sel, u"x"_ns,
                                                                         true);
                } catch (const NSException&) {
                    ++caught;
                }
            --running;
            NSRunLoop::mainRunLoop()->wakeUp();
        });
    while (running > 0) NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    EXPECT_EQ(recorder->heard.size(), static_cast<std::size_t>(kThreads * kPosts));
    EXPECT_EQ(caught, kThreads * kPosts / 10);
}

TEST(NSObjectMainThreadTest, OnTheMainThreadAWaitedCallRunsAtOnceAndAnotherInTheNextTurn) {
    AutoreleasePool pool;
    auto recorder = make<LoopRecorder>();
    performSelectorOnMainThread_withObject_waitUntilDone(recorder, "hear:"_sel, u"later"_ns, false);
    performSelectorOnMainThread_withObject_waitUntilDone(recorder, "hear:"_sel, u"now"_ns, true);
    EXPECT_THAT(recorder->heard, ElementsAre("now"));
    NSRunLoop::mainRunLoop()->performReadyWorkForMode(u"Sheet"_ns);
    EXPECT_THAT(recorder->heard, ElementsAre("now"));
    NSRunLoop::mainRunLoop()->addCommonMode(u"Sheet"_ns);
    NSRunLoop::mainRunLoop()->performReadyWorkForMode(u"Sheet"_ns);
    EXPECT_THAT(recorder->heard, ElementsAre("now", "later"));
}

TEST(NSObjectMainThreadTest, AProxyIsPerformedOnAndForwardsOnlyWhatIsPerformed) {
    AutoreleasePool pool;
    auto recorder = make<LoopRecorder>();
    auto proxy = make<RecorderProxy>();
    proxy->target = recorder;
    send(proxy, "performSelectorOnMainThread:withObject:waitUntilDone:"_sel, "hear:"_sel,
         static_cast<id>(u"later"_ns), false);
    EXPECT_EQ(proxy->retainCount(), 2u);
    EXPECT_EQ(recorder->retainCount(), 1u);
    NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    EXPECT_THAT(recorder->heard, ElementsAre("later"));
}

}  // namespace
}  // namespace pelvor::testing
