// SPDX-License-Identifier: Apache-2.0
// ClockScope: a clock that stands still until it is moved.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

/// Gives the thread that makes it a clock of its own for the time of a scope, so that a test need not sleep:
///
///     ClockScope clock;
///     scheduleTimer(60);                                            // with NSTimer
///     loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);      // at once: the loop moves the clock
///     EXPECT_EQ(clock.now(), 60);
///
/// `NSDate`, timers and run loops of the thread go by this clock. The clock stands still until it is moved; a
/// run loop that would sleep until a moment moves the clock there instead. Scopes nest.
class PELVOR_EXPORT ClockScope {
  public:
    /// The clock begins at `start`, in seconds since the reference date.
    explicit ClockScope(NSTimeInterval start = 0) noexcept;
    ~ClockScope();
    ClockScope(const ClockScope&) = delete;
    ClockScope& operator=(const ClockScope&) = delete;

    /// Returns the thread's innermost scope; null while the thread goes by the system's clock.
    static ClockScope* current() noexcept;

    NSTimeInterval now() const noexcept { return _steadyTime + _setAhead; }
    void advance(NSTimeInterval seconds) noexcept { _steadyTime += seconds; }
    /// Moves the clock forward, never back.
    void advanceTo(NSTimeInterval moment) noexcept {
        if (moment > now()) _steadyTime = moment - _setAhead;
    }

    /// Sets the clock to another time although no time passes, as somebody may set the system's clock.
    void set(NSTimeInterval moment) noexcept { _setAhead = moment - _steadyTime; }
    /// Returns the time that the clock would show if it had never been set.
    NSTimeInterval steadyTime() const noexcept { return _steadyTime; }

  private:
    NSTimeInterval _steadyTime;
    NSTimeInterval _setAhead = 0;
    ClockScope* _outer;
};

}  // namespace pelvor
