// SPDX-License-Identifier: Apache-2.0
// Dates as moments of a clock that nobody sets, which is what waiting goes by; for Foundation's own sources.
#pragma once

#include <chrono>

#include "Foundation/NSDate.h"

namespace pelvor {

/// Seconds on a clock that only goes forward, or the thread's ClockScope. It began as the time since the
/// reference date, so that a ClockScope of today agrees with it.
NSTimeInterval steadyTime() noexcept;
/// When the date comes, on that clock, if nobody sets the system's clock until then.
NSTimeInterval steadyMoment(NSDate* date);

/// The date for the waits of the standard library, as far as their clock reaches; none is a moment long past.
std::chrono::steady_clock::time_point deadline(NSDate* date);

}  // namespace pelvor
