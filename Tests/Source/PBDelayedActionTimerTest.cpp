// SPDX-License-Identifier: Apache-2.0
// Tests of delayed actions, of performs in the default mode, and of calls through the main-thread proxy.
#include "PBDelayedActionTimer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <vector>

#include "BaseLibrary.h"
#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/ClockScope.h"
#include "Foundation/NSThread.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor::testing {

using ::testing::ElementsAre;

extern Library deferredTestLibrary;

/// Notes when its action came, and answers calls on the main thread.
class DeferredTarget : public NSObject {
    PELVOR_CLASS(DeferredTarget, NSObject);

  public:
    std::vector<double> moments;
    std::function<void(PBDelayedActionTimer*)> reaction;
    int wrongThread = 0;

    void act(PBDelayedActionTimer* timer) {
        moments.push_back(NSDate::currentTimeIntervalSinceReferenceDate());
        if (reaction) reaction(timer);
    }
    void note(id argument) { moments.push_back(cast<NSString>(argument)->length()); }
    id nameOf(NSString* text) {
        wrongThread += !NSThread::isMainThread();
        return NSString::stringWithFormat(u"<%@>"_ns, text);
    }
    void fail() { throw NSException("Proxied", "on purpose"); }

  protected:
    DeferredTarget() = default;
    ~DeferredTarget() = default;
};

namespace {
constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&DeferredTarget::classRecord};
}  // namespace

constinit Library deferredTestLibrary{"DeferredTest", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(DeferredTarget, deferredTestLibrary) {
    methods.instance<"act:", &DeferredTarget::act>();
    methods.instance<"note:", &DeferredTarget::note>();
    methods.instance<"nameOf:", &DeferredTarget::nameOf>();
    methods.instance<"fail", &DeferredTarget::fail>();
}

namespace {

class PBDelayedActionTimerTest : public ::testing::Test {
  protected:
    Retained<PBDelayedActionTimer> timerFrom(bool first) {
        return PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(1, first, target,
                                                                                    "act:"_sel);
    }
    void runUntil(double moment, NSString* mode = NSDefaultRunLoopMode) {
        clock.advanceTo(moment);
        while (NSRunLoop::currentRunLoop()->performReadyWorkForMode(mode)) {
        }
    }

    AutoreleasePool pool;
    ClockScope clock;
    Retained<DeferredTarget> target = make<DeferredTarget>();
};

TEST_F(PBDelayedActionTimerTest, ABurstGivesOneActionAfterItsLastOrItsFirstRequest) {
    for (bool first : {false, true}) {
        ClockScope fresh;
        target->moments.clear();
        auto timer = timerFrom(first);
        for (double moment : {0.0, 0.5, 0.9}) {
            fresh.advanceTo(moment);
            timer->schedule();
        }
        for (double moment : {0.95, 1.05, 1.85, 1.95, 5.0}) {
            fresh.advanceTo(moment);
            while (NSRunLoop::currentRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode)) {
            }
        }
        EXPECT_THAT(target->moments, ElementsAre(first ? 1.05 : 1.95));
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
    EXPECT_TRUE(target->moments.empty());
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
    timer->invalidate();
    EXPECT_EQ(target->retainCount(), 1u);
    timer->schedule();
    EXPECT_FALSE(timer->isScheduled());
    runUntil(9);
    EXPECT_TRUE(target->moments.empty());
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
    EXPECT_TRUE(target->moments.empty());
    runUntil(0);
    EXPECT_THAT(target->moments, ElementsAre(5, 3));
}

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

std::string raisedBy(std::function<void()> call) {
    try {
        call();
    } catch (const NSException& exception) {
        return exception.name();
    }
    return "nothing";
}

TEST(ZWMainThreadProxyTest, CallsRunOnTheMainThreadAndComeBack) {
    AutoreleasePool pool;
    auto target = make<DeferredTarget>();
    auto proxy = copyMainThreadProxy(target);
    std::vector<std::string> answers;
    onAnotherThread([&] {
        answers.push_back(send<NSString*>(proxy, "nameOf:"_sel, u"x"_ns)->toUTF8());
        id lost = send<id>(proxy, "performSelector:withObject:"_sel, "nameOf:"_sel, u"x"_ns);
        answers.push_back(lost ? "kept" : "lost");
    });
    EXPECT_THAT(answers, ElementsAre("<x>", "lost"));
    EXPECT_EQ(target->wrongThread, 0);
    EXPECT_EQ(target->retainCount(), 1u);
}

TEST(ZWMainThreadProxyTest, ErrorsAreRaisedOnTheCallingThread) {
    AutoreleasePool pool;
    auto target = make<DeferredTarget>();
    auto proxy = copyMainThreadProxy(target);
    std::vector<std::string> raised;
    onAnotherThread([&] {
        raised.push_back(raisedBy([&] { send(proxy, "fail"_sel); }));
        raised.push_back(raisedBy([&] { proxy->performSelector("fail"_sel); }));
        raised.push_back(raisedBy([&] { send(proxy, "noSuchMessage"_sel); }));
        raised.push_back(raisedBy([&] { proxy->performSelector("noSuchMessage"_sel); }));
    });
    EXPECT_THAT(raised,
                ElementsAre("Proxied", "Proxied", NSInvalidArgumentException, NSInvalidArgumentException));
}

TEST(ZWMainThreadProxyTest, PerformingLosesTheResultAndAProxyIsItsOwnProxy) {
    AutoreleasePool pool;
    auto target = make<DeferredTarget>();
    ZWMainThreadProxy* proxy = mainThreadProxy(target);
    EXPECT_TRUE(proxy->respondsToSelector("nameOf:"_sel));
    EXPECT_FALSE(proxy->respondsToSelector("noSuchMessage"_sel));
    EXPECT_EQ(static_cast<id>(proxy)->performSelector_withObject("nameOf:"_sel, u"x"_ns), nullptr);
    EXPECT_EQ(proxy->performSelector("mainThreadProxy"_sel), proxy);
    EXPECT_EQ(mainThreadProxy(proxy), proxy);
    EXPECT_EQ(send<id>(proxy, "mainThreadProxy"_sel), proxy);
}

}  // namespace
}  // namespace pelvor::testing
