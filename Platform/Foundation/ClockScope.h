// SPDX-License-Identifier: Apache-2.0
// ClockScope: a clock that stands still until it is moved.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

/// While it lives, the thread that made it has this clock for its time: `NSDate`, timers and run loops go by
/// it. It stands still until it is moved; a run loop that would sleep until a moment moves it there instead.
/// Scopes nest.
class PELVOR_EXPORT ClockScope {
  public:
    /// `start` is in seconds since the reference date.
    explicit ClockScope(NSTimeInterval start = 0) noexcept;
    ~ClockScope();
    ClockScope(const ClockScope&) = delete;
    ClockScope& operator=(const ClockScope&) = delete;

    /// The thread's innermost; none while it goes by the system's clock.
    static ClockScope* current() noexcept;

    NSTimeInterval now() const noexcept { return _steadyTime + _setAhead; }
    void advance(NSTimeInterval seconds) noexcept { _steadyTime += seconds; }
    /// Moves the clock forward, never back.
    void advanceTo(NSTimeInterval moment) noexcept {
        if (moment > now()) _steadyTime = moment - _setAhead;
    }

    /// Sets the clock to another time without any passing, as somebody may set the system's.
    void set(NSTimeInterval moment) noexcept { _setAhead = moment - _steadyTime; }
    /// The time of the clock if it had never been set.
    NSTimeInterval steadyTime() const noexcept { return _steadyTime; }

  private:
    NSTimeInterval _steadyTime;
    NSTimeInterval _setAhead = 0;
    ClockScope* _outer;
};

}  // namespace pelvor
