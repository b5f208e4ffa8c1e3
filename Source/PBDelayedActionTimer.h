// SPDX-License-Identifier: Apache-2.0
// PBDelayedActionTimer: an action a moment after a burst of requests.
#pragma once

#include "Foundation/NSTimer.h"

namespace pelvor {

/// Sends an action once, a fixed delay after the last of a burst of requests, or after the first:
///
///     auto saver = PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
///         2.0, false, document, "saveSoon:"_sel);
///     saver->schedule();  // at every edit
///
/// The action comes in the default mode of the run loop that `schedule` was called on, with the timer as its
/// argument. The target is retained until `invalidate`; a pending timer stays alive by itself. For one
/// thread.
class PELVOR_EXPORT PBDelayedActionTimer : public NSObject {
    PELVOR_CLASS(PBDelayedActionTimer, NSObject);

  public:
    /// `delay` is in seconds. With `fromFirst` the delay counts from the first request, else every request
    /// starts it anew. Not scheduled.
    static Retained<PBDelayedActionTimer> initWithTimeInterval_fromFirst_target_selector(
        double delay, bool fromFirst, id target, SEL action, Class* cls = classObject());

    /// Does nothing after `invalidate`.
    void schedule();
    /// The pending action is not sent.
    void unschedule();
    /// Whether an action is pending; not any more while it is sent.
    bool isScheduled() { return static_cast<bool>(_timer); }
    /// Ends it for good: unscheduled, and the target let go.
    void invalidate();
    /// The platform timer's message.
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
