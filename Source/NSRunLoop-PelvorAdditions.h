// SPDX-License-Identifier: Apache-2.0
// An addition to run loops.
#pragma once

#include "Foundation/NSRunLoop.h"

namespace pelvor {

struct Category;

/// Class operations of the run loop:
///
///     using Additions = NSRunLoop_PelvorAdditions;
///     Additions::performSelector_target_argument_order("layOut:"_sel, view, page, 10);
///     Additions::performSelector_target_argument_order("draw:"_sel, view, page, 20);  // after the layout
struct PELVOR_EXPORT NSRunLoop_PelvorAdditions {
    /// Asks the current run loop to send the message to the target at the beginning of its next turn in the
    /// default mode. Messages of a lower `order` are sent first. Target and argument are retained until then;
    /// the argument may be null. Raises NSInvalidArgumentException if the target or the selector is null.
    static void performSelector_target_argument_order(SEL selector, id target, id argument,
                                                      std::uint32_t order);
};

extern const Category NSRunLoop_PelvorAdditions_category;

}  // namespace pelvor
