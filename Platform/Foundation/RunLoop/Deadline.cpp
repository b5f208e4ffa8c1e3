// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>

#include "Foundation/ClockScope.h"
#include "Foundation/RunLoop/Deadline.h"

namespace pelvor {
namespace {

using std::chrono::steady_clock;
using std::chrono::system_clock;
using Seconds = std::chrono::duration<double>;

}  // namespace

NSTimeInterval steadyTime() noexcept {
    if (const ClockScope* clock = ClockScope::current()) [[unlikely]]
        return clock->steadyTime();
    static const NSTimeInterval origin = Seconds(system_clock::now().time_since_epoch()).count() -
                                         NSTimeIntervalSince1970 -
                                         Seconds(steady_clock::now().time_since_epoch()).count();
    return origin + Seconds(steady_clock::now().time_since_epoch()).count();
}

NSTimeInterval steadyMoment(NSDate* date) { return steadyTime() + date->timeIntervalSinceNow(); }

steady_clock::time_point deadline(NSDate* date) {
    constexpr double kReach = 100.0 * 366 * 86400;  // the clock's range is 292 years
    if (!date) return steady_clock::time_point();
    Seconds wait(std::clamp(date->timeIntervalSinceNow(), -1.0, kReach));
    return steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(wait);
}

}  // namespace pelvor
