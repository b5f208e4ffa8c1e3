// SPDX-License-Identifier: Apache-2.0
// NSTimer: a message to be sent at a moment, once or again and again.
#pragma once

#include "Foundation/NSDate.h"
#include "Runtime/Selector.h"

namespace pelvor {

class NSTimer;
class TimerHeap;

/// The place of a timer in the heap of a run loop's mode. A timer has one place for each mode, chained by
/// `next`.
struct TimerPlace {
    Unretained<NSTimer> timer;  // retained by the heap
    TimerHeap* heap;
    std::size_t index;
    TimerPlace* next;
};

/// Sends a message, with itself as the argument, when its fire date has come and its run loop runs in one of
/// its modes:
///
///     // void View::blink(NSTimer* timer), bound as "blink:", twice a second until `invalidate`
///     NSTimer* timer = NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
///         0.5, view, "blink:"_sel, nullptr, true);
///
/// The loop retains the timer, and the timer retains its target and its user information; all are released
/// when the timer is invalidated. A timer that fires once is invalidated before its message is sent. A
/// repeating timer keeps to the beat of its first fire date and leaves out the beats that were missed.
///
/// When a fire date is set, the timer converts the date to a moment of a steady clock, which nobody can set.
/// A later change of the system's clock therefore neither hurries nor delays the timer. All operations are
/// for the thread of the run loop.
class PELVOR_EXPORT NSTimer : public NSObject {
    PELVOR_CLASS(NSTimer, NSObject);
    PELVOR_CREATORS(timerWithTimeInterval_target_selector_userInfo_repeats,
                    scheduledTimerWithTimeInterval_target_selector_userInfo_repeats,
                    initWithFireDate_interval_target_selector_userInfo_repeats);

  public:
    /// Returns a timer, borrowed, that first fires `seconds` seconds from now. It has to be added to a run
    /// loop. A repeating timer fires again at this interval, but at most every tenth of a millisecond. All
    /// creators raise NSInvalidArgumentException if target or selector is null or the time is not a number.
    static NSTimer* timerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds, id target,
                                                                           SEL selector, id userInfo,
                                                                           bool repeats);
    /// Makes a timer as `timerWithTimeInterval…` does, and adds it to the current run loop in the default
    /// mode.
    static NSTimer* scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds,
                                                                                    id target, SEL selector,
                                                                                    id userInfo,
                                                                                    bool repeats);
    /// Returns a timer that first fires at the date; a null date stands for now.
    static Retained<NSTimer> initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate* date, NSTimeInterval seconds, id target, SEL selector, id userInfo, bool repeats);

    /// Sends the message now, if the timer is valid. A timer that fires once is invalidated; the schedule of
    /// a repeating timer stays as it is.
    void fire();
    /// Takes the timer out of its run loop, so that it never fires again, and releases its target and its
    /// user information.
    void invalidate();
    bool isValid() { return _target != nullptr; }

    NSDate* fireDate();
    /// Sets when the timer fires next; a null date stands for now. Does nothing if the timer is invalid.
    void setFireDate(NSDate* date);
    /// Returns the interval in seconds; 0 for a timer that fires once.
    NSTimeInterval timeInterval() { return _interval; }
    /// Returns the user information; null if the timer is invalid.
    id userInfo() { return _userInfo; }

    /// "<NSTimer 0x…: sends blink: to <View 0x…> in 0.250 s, then every 0.5 s>", or "<NSTimer 0x…: invalid>".
    NSString* description() override;

  protected:
    NSTimer() = default;
    ~NSTimer();

  private:
    friend class TimerHeap;

    static Retained<NSTimer> unscheduled(NSString* operation, NSTimeInterval interval, id target,
                                         SEL selector, id userInfo, bool repeats);
    static NSTimer* timer(NSString* operation, NSTimeInterval seconds, id target, SEL selector, id userInfo,
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
