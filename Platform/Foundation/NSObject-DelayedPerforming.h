// SPDX-License-Identifier: Apache-2.0
// Having an object do something after a delay.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

struct Category;
class NSArray;

/// Sends the message, with `argument` if it takes one, once the delay in seconds is over and the current run
/// loop runs in one of the modes; never before the call returns:
///
///     performSelector_withObject_afterDelay(view, "hideTip:"_sel, tip, 2.5);
///
/// Target and argument are retained until then. A null or empty list of modes stands for the default mode.
/// Does nothing if the target is null. Raises NSInvalidArgumentException if the selector is
/// null or the delay is not a number.
PELVOR_EXPORT void performSelector_withObject_afterDelay_inModes(id target, SEL selector, id argument,
                                                                 NSTimeInterval delay, NSArray* modes);
/// Does the same in the default mode.
PELVOR_EXPORT void performSelector_withObject_afterDelay(id target, SEL selector, id argument,
                                                         NSTimeInterval delay);

/// Class operations of every class. They cancel messages that were requested on the calling thread.
struct PELVOR_EXPORT NSObject_DelayedPerforming {
    /// Cancels all messages that are to be sent to the target after a delay.
    static void cancelPreviousPerformRequestsWithTarget(id target);
    /// Cancels the messages to the target that have this selector and an equal argument.
    static void cancelPreviousPerformRequestsWithTarget_selector_object(id target, SEL selector, id argument);
};

extern const Category NSObject_DelayedPerforming_category;
extern const Category NSProxy_DelayedPerforming_category;

}  // namespace pelvor
