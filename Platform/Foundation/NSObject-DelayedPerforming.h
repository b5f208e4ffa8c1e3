// SPDX-License-Identifier: Apache-2.0
// Having an object do something after a delay.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

struct Category;
class NSArray;

/// Sends the message to the target once, after a delay in seconds:
///
///     performSelector_withObject_afterDelay(view, "hideTip:"_sel, tip, 2.5);
///
/// The run loop of the calling thread sends the message as soon as the delay is over and the loop runs in one
/// of the modes, but never before this call returns. The message has `argument` as its argument if the method
/// takes one. Target and argument are retained until the message was sent or cancelled. A null or empty list
/// of modes stands for the default mode. Does nothing if the target is null. Raises
/// NSInvalidArgumentException if the selector is null or the delay is not a number.
PELVOR_EXPORT void performSelector_withObject_afterDelay_inModes(id target, SEL selector, id argument,
                                                                 NSTimeInterval delay, NSArray* modes);
/// Like `performSelector_withObject_afterDelay_inModes` with the default mode as the only mode.
PELVOR_EXPORT void performSelector_withObject_afterDelay(id target, SEL selector, id argument,
                                                         NSTimeInterval delay);

/// Class operations of every class. They cancel only messages that were requested on the calling thread.
struct PELVOR_EXPORT NSObject_DelayedPerforming {
    /// Cancels all messages that are to be sent to the target after a delay.
    static void cancelPreviousPerformRequestsWithTarget(id target);
    /// Cancels the messages to the target that have this selector and an equal argument; a null argument
    /// equals only null.
    static void cancelPreviousPerformRequestsWithTarget_selector_object(id target, SEL selector, id argument);
};

extern const Category NSObject_DelayedPerforming_category;
extern const Category NSProxy_DelayedPerforming_category;

}  // namespace pelvor
