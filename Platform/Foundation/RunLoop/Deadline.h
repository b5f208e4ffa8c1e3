// SPDX-License-Identifier: Apache-2.0
// Dates as moments of the clock by which threads wait, which nobody sets; for Foundation's own sources.
#pragma once

#include <chrono>

#include "Foundation/NSDate.h"

namespace pelvor {

/// Returns the seconds on a clock that only goes forward, or on the thread's ClockScope. The clock began as
/// the time since the reference date, so that a ClockScope of today agrees with the clock.
NSTimeInterval steadyTime() noexcept;
/// Returns when the date comes, on that clock, if nobody sets the system's clock until then.
NSTimeInterval steadyMoment(NSDate* date);

/// Returns the date as the standard library waits for it, as far as its clock reaches; for a null date, a
/// moment long past.
std::chrono::steady_clock::time_point deadline(NSDate* date);

}  // namespace pelvor
