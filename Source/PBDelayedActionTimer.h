// SPDX-License-Identifier: Apache-2.0
// PBDelayedActionTimer: sends an action a moment after a burst of requests.
#pragma once

#include "Foundation/NSTimer.h"

namespace pelvor {

/// Sends an action once, a fixed delay after the last of a burst of requests, or after the first:
///
///     auto saver = PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
///         2.0, false, document, "saveSoon:"_sel);
///     saver->schedule();    // at every edit; two seconds after the last one: [document saveSoon: saver]
///     saver->invalidate();  // when the document closes
///
/// The action is sent in the default mode of the run loop of the thread that called `schedule`, with this
/// object as its argument. The target is retained until `invalidate`. An object whose action is pending is
/// retained by the run loop. For one thread.
class PELVOR_EXPORT PBDelayedActionTimer : public NSObject {
    PELVOR_CLASS(PBDelayedActionTimer, NSObject);
    PELVOR_CREATORS(initWithTimeInterval_fromFirst_target_selector);

  public:
    /// Makes a timer that is not scheduled. `delay` is in seconds. With `fromFirst` it counts from the first
    /// request of a burst, else from the last. Raises NSInvalidArgumentException for a delay that is no
    /// number.
    static Retained<PBDelayedActionTimer> initWithTimeInterval_fromFirst_target_selector(
        double delay, bool fromFirst, id target, SEL action, Class* cls = classObject());

    /// Requests the action. Does nothing after `invalidate`.
    void schedule();
    /// Takes all requests back: a pending action is not sent.
    void unschedule();
    /// Whether an action is pending. An action that is being sent is no longer pending, so the action may
    /// call `schedule` again.
    bool isScheduled() { return static_cast<bool>(_timer); }
    /// Takes all requests back and releases the target, for good.
    void invalidate();
    /// "PBDelayedActionTimer<0x…> {saveSoon: to <Document 0x…>, 2 s from the last request, scheduled}".
    NSString* description() override;
    /// Called by the platform's timer.
    void _timerDidFire(NSTimer* timer);

  protected:
    PBDelayedActionTimer() = default;
    ~PBDelayedActionTimer() { invalidate(); }

  private:
    Retained<NSTimer> _timer;
    double _delay = 0;
    bool _isFromFirst = false;
    Retained<Object> _target;
    SEL _action;
};

}  // namespace pelvor
