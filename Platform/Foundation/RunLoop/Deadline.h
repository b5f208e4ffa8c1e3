// SPDX-License-Identifier: Apache-2.0
// Dates as moments of the clock by which threads wait, which nobody sets; for the platform's own sources.
#pragma once

#include <chrono>

#include "Foundation/NSDate.h"

namespace pelvor {

/// Returns the seconds on a clock that only goes forward, or on the thread's ClockScope. The clock began as
/// the time since the reference date, so that a ClockScope of today agrees with the clock.
PELVOR_EXPORT NSTimeInterval steadyTime() noexcept;
/// Returns the moment on that clock at which the date comes if nobody sets the system's clock before.
NSTimeInterval steadyMoment(NSDate* date);

/// Returns the date as a moment for the waiting operations of the standard library, as far as their clock
/// reaches; for a null date, a moment that is long past.
std::chrono::steady_clock::time_point deadline(NSDate* date);

}  // namespace pelvor
