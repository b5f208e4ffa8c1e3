// SPDX-License-Identifier: Apache-2.0
// NSTimer: a message to be sent at a moment, once or again and again.
#pragma once

#include "Foundation/NSDate.h"
#include "Runtime/Selector.h"

namespace pelvor {

class NSTimer;
class TimerHeap;

/// The place of a timer in a heap of a run loop. A timer has one a mode, chained by `next`.
struct TimerPlace {
    NSTimer* timer;
    TimerHeap* heap;
    std::size_t index;
    TimerPlace* next;
};

/// Sends a message, with itself as the argument, when its fire date has come and its run loop runs in one of
/// its modes. A fire date is turned into a moment when it is set; from then on the timer goes by a clock that
/// nobody sets, so that setting the system's clock neither hurries nor holds it. The loop retains the timer
/// and the timer its target and user information, all until it is invalidated. A timer that fires once is
/// invalidated before its message is sent. A repeating one keeps to the beat of its first fire date and
/// leaves out the beats that were missed; intervals below a tenth of a millisecond count as that.
///
///     NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(0.5, view, "blink:"_sel,
///                                                                              nullptr, true);
///
/// For one thread: that of its run loop.
class PELVOR_EXPORT NSTimer : public NSObject {
    PELVOR_CLASS(NSTimer, NSObject);

  public:
    /// A timer that fires at the interval, in seconds from now, once a run loop has it. All creators raise
    /// NSInvalidArgumentException for no target or selector.
    static NSTimer* timerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds, id target,
                                                                           SEL selector, id userInfo,
                                                                           bool repeats);
    /// The same, and the current run loop has it in its default mode.
    static NSTimer* scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds,
                                                                                    id target, SEL selector,
                                                                                    id userInfo,
                                                                                    bool repeats);
    static Retained<NSTimer> initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate* date, NSTimeInterval seconds, id target, SEL selector, id userInfo, bool repeats);

    /// Sends the message now. The schedule of a repeating timer stays; the other is invalidated.
    void fire();
    /// The timer never fires again; its run loop, its target and its user information are let go.
    void invalidate();
    bool isValid() { return _target != nullptr; }

    NSDate* fireDate();
    /// Moves the next firing; nothing for an invalid timer. None stands for at once.
    void setFireDate(NSDate* date);
    /// 0 for a timer that fires once.
    NSTimeInterval timeInterval() { return _interval; }
    id userInfo() { return _userInfo; }

  protected:
    NSTimer() = default;
    ~NSTimer();

  private:
    friend class TimerHeap;

    static Retained<NSTimer> unscheduled(NSTimeInterval interval, id target, SEL selector, id userInfo,
                                         bool repeats);
    TimerPlace* placeIn(TimerHeap* heap);
    void schedule(NSTimeInterval moment, NSTimeInterval date);
    void sendMessage();

    Retained<Object> _target;
    Retained<Object> _userInfo;
    SEL _selector;
    NSTimeInterval _moment = 0;  // of the clock that nobody sets
    NSTimeInterval _date = 0;    // what that is by the system's clock as it was when the date was set
    NSTimeInterval _interval = 0;
    TimerPlace* _places = nullptr;
    TimerPlace _firstPlace{};  // for the one mode that most have; free without a heap

    friend class NSRunLoop;
    void addTo(TimerHeap& heap);
    void fireOnTime(NSTimeInterval now);
};

}  // namespace pelvor
