// SPDX-License-Identifier: Apache-2.0
// Tests of delayed actions, of performs in the default mode, and of calls through the main-thread proxy.
#include "PBDelayedActionTimer.h"

#include "BaseLibrary.h"
#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/ClockScope.h"
#include "Foundation/NSThread.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "Prelude.h"

namespace {

// Notes when its action came, and answers calls on the main thread.
class DeferredTarget : public NSObject {
    PELVOR_CLASS(DeferredTarget, NSObject);

  public:
    std::vector<double> moments;
    std::function<void(PBDelayedActionTimer*)> reaction = [](PBDelayedActionTimer*) {};
    int wrongThread = 0;

    void act(PBDelayedActionTimer* timer) {
        moments.push_back(NSDate::currentTimeIntervalSinceReferenceDate());
        reaction(timer);
    }
    void note(id argument) { moments.push_back(cast<NSString>(argument)->length()); }
    id nameOf(NSString* text) {
        wrongThread += !NSThread::isMainThread();
        return NSString::stringWithFormat(u"<%@>"_ns, text);
    }
    void fail() { throw NSException("Proxied", "on purpose"); }
};

constexpr Library* kDependencies[] = {&baseLibrary};
constinit Library deferredTestLibrary{"DeferredTest", kDependencies, kClassesOf<DeferredTarget>, {}};

PELVOR_DEFINE_CLASS(DeferredTarget, deferredTestLibrary) {
    methods.instance<"act:", &DeferredTarget::act>();
    methods.instance<"note:", &DeferredTarget::note>();
    methods.instance<"nameOf:", &DeferredTarget::nameOf>();
    methods.instance<"fail", &DeferredTarget::fail>();
}

struct PBDelayedActionTimerTest : ::testing::Test {
    Retained<PBDelayedActionTimer> timerFrom(bool first) {
        return PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(1, first, target,
                                                                                    "act:"_sel);
    }
    void runUntil(double moment, NSString* mode = NSDefaultRunLoopMode) {
        clock.advanceTo(moment);
        while (NSRunLoop::currentRunLoop()->performReadyWorkForMode(mode)) continue;
    }

    ClockScope clock;
    Retained<DeferredTarget> target = make<DeferredTarget>();
};

TEST_F(PBDelayedActionTimerTest, ABurstGivesOneActionAfterItsLastOrItsFirstRequest) {
    for (double start : {0, 10}) {
        bool first = start > 0;
        auto timer = timerFrom(first);
        for (double moment : {0.0, 0.5, 0.875}) {
            clock.advanceTo(start + moment);
            timer->schedule();
        }
        target->moments.clear();
        for (double moment : {0.9375, 1.0625, 1.8125, 1.9375, 5.0}) runUntil(start + moment);
        EXPECT_THAT(target->moments, ElementsAre(first ? 11.0625 : 1.9375));
        EXPECT_FALSE(timer->isScheduled());
    }
}

TEST_F(PBDelayedActionTimerTest, TheActionMayScheduleAgainAndWaitsForTheDefaultMode) {
    auto timer = timerFrom(false);
    bool wasScheduled = true;
    target->reaction = [&](PBDelayedActionTimer* sender) {
        wasScheduled = sender->isScheduled();
        if (target->moments.size() == 1) sender->schedule();
    };
    timer->schedule();
    runUntil(1.5, u"Tracking"_ns);
    EXPECT_THAT(target->moments, IsEmpty());
    runUntil(2);
    EXPECT_FALSE(wasScheduled);
    EXPECT_TRUE(timer->isScheduled());
    runUntil(3);
    EXPECT_THAT(target->moments, ElementsAre(2, 3));
}

TEST_F(PBDelayedActionTimerTest, UnschedulingAndInvalidatingKeepTheActionFromComing) {
    auto timer = timerFrom(true);
    timer->schedule();
    timer->unschedule();
    EXPECT_EQ(target->retainCount(), 2u);
    timer->schedule();
    const std::string start = "PBDelayedActionTimer<" + addressOf(timer) + "> {act: to ";
    EXPECT_EQ(shown(timer.get()),
              start + "<DeferredTarget " + addressOf(target) + ">, 1 s from the first request, scheduled}");
    timer->invalidate();
    EXPECT_EQ(shown(timer.get()), start + "nobody, 1 s from the first request, not scheduled}");
    EXPECT_EQ(target->retainCount(), 1u);
    timer->schedule();
    EXPECT_FALSE(timer->isScheduled());
    runUntil(9);
    EXPECT_THAT(target->moments, IsEmpty());
    timerFrom(true)->schedule();  // nobody else keeps it
    runUntil(10);
    EXPECT_THAT(target->moments, ElementsAre(10));
    EXPECT_EQ(target->retainCount(), 1u);
}

TEST_F(PBDelayedActionTimerTest, PerformsOfTheRunLoopWaitForTheDefaultMode) {
    NSRunLoop_PelvorAdditions::performSelector_target_argument_order("note:"_sel, target, u"two"_ns, 2);
    send(NSRunLoop::classObject(), "performSelector:target:argument:order:"_sel, "note:"_sel,
         static_cast<id>(target), static_cast<id>(u"first"_ns), 1u);
    runUntil(0, u"Tracking"_ns);
    EXPECT_THAT(target->moments, IsEmpty());
    runUntil(0);
    EXPECT_THAT(target->moments, ElementsAre(5, 3));
}

struct ZWMainThreadProxyTest : ::testing::Test {
    // Runs the work on another thread while the main loop serves it.
    template <class Work>
    void onAnotherThread(Work work) {
        std::atomic<bool> isDone{false};
        NSThread::detach([&] {
            {
                AutoreleasePool inner;  // what is left to it holds targets
                work();
            }
            isDone = true;
            NSRunLoop::mainRunLoop()->wakeUp();
        });
        while (!isDone) NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    }

    Retained<DeferredTarget> target = make<DeferredTarget>();
    Retained<ZWMainThreadProxy> proxy = copyMainThreadProxy(target);
};

TEST_F(ZWMainThreadProxyTest, CallsRunOnTheMainThreadAndComeBackButForPerforms) {
    std::string answer, lost;
    onAnotherThread([&] {
        answer = shown(send<NSString*>(proxy, "nameOf:"_sel, u"x"_ns));
        lost = shown(send<id>(proxy, "performSelector:withObject:"_sel, "nameOf:"_sel, u"x"_ns));
    });
    EXPECT_EQ(shown(answer, lost), "<x> (null)");
    EXPECT_EQ(target->wrongThread, 0);
    EXPECT_EQ(target->retainCount(), 1u);
}

TEST_F(ZWMainThreadProxyTest, ErrorsAreRaisedOnTheCallingThread) {
    onAnotherThread([&] {
        for (std::string fault :
             {RAISED(send(proxy, "fail"_sel)), RAISED(proxy->performSelector("fail"_sel))})
            EXPECT_EQ(fault, "Proxied: on purpose");
        for (std::string fault :
             {RAISED(send(proxy, "noSuchMessage"_sel)), RAISED(proxy->performSelector("noSuchMessage"_sel))})
            EXPECT_THAT(fault, StartsWith(NSInvalidArgumentException));
    });
}

TEST_F(ZWMainThreadProxyTest, AnswersForItsTargetAndIsItsOwnProxy) {
    EXPECT_TRUE(proxy->respondsToSelector("nameOf:"_sel) && !proxy->respondsToSelector("noSuchMessage"_sel));
    ZWMainThreadProxy* borrowed = mainThreadProxy(target);
    EXPECT_EQ(borrowed->performSelector("mainThreadProxy"_sel), borrowed);
    EXPECT_EQ(mainThreadProxy(borrowed), borrowed);
}

}  // namespace
