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

    NSTimeInterval now() const noexcept { return _now; }
    void advance(NSTimeInterval seconds) noexcept { _now += seconds; }
    /// Moves the clock forward, never back.
    void advanceTo(NSTimeInterval moment) noexcept {
        if (moment > _now) _now = moment;
    }

  private:
    NSTimeInterval _now;
    ClockScope* _outer;
};

}  // namespace pelvor
