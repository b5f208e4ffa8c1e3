// SPDX-License-Identifier: Apache-2.0
// A date as the moment that waits of the standard library take; for Foundation's own sources.
#pragma once

#include <algorithm>
#include <chrono>

#include "Foundation/NSDate.h"

namespace pelvor {

/// The date on the system's clock, as far as that clock reaches; none is a moment long past.
inline std::chrono::system_clock::time_point deadline(NSDate* date) {
    using namespace std::chrono;
    if (!date) return system_clock::time_point();
    constexpr double kReach = 200.0 * 366 * 86400;  // seconds from 1970 on; the clock's range is 292 years
    duration<double> seconds(std::clamp(date->timeIntervalSince1970(), 0.0, kReach));
    return system_clock::time_point(duration_cast<system_clock::duration>(seconds));
}

}  // namespace pelvor
