// SPDX-License-Identifier: Apache-2.0
// Having an object do something after a delay.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

struct Category;
class NSArray;

/// Sends the message, with `argument` if it takes one, once the delay in seconds is over and the current run
/// loop runs in one of the modes; never before the call returns. Target and argument are retained until then.
/// No modes stand for the default mode. Raises NSInvalidArgumentException for no selector.
PELVOR_EXPORT void performSelector_withObject_afterDelay_inModes(id target, SEL selector, id argument,
                                                                 NSTimeInterval delay, NSArray* modes);
/// The same in the default mode.
PELVOR_EXPORT void performSelector_withObject_afterDelay(id target, SEL selector, id argument,
                                                         NSTimeInterval delay);

/// Class operations of every class. They reach what was asked for on the thread that calls them.
struct PELVOR_EXPORT NSObject_DelayedPerforming {
    /// Forgets all that the target was to perform after a delay.
    static void cancelPreviousPerformRequestsWithTarget(id target);
    /// Forgets what has the same selector and an identical or equal argument.
    static void cancelPreviousPerformRequestsWithTarget_selector_object(id target, SEL selector, id argument);
};

extern const Category NSObject_DelayedPerforming_category;
extern const Category NSProxy_DelayedPerforming_category;

}  // namespace pelvor
