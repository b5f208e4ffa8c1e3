// SPDX-License-Identifier: Apache-2.0
// An addition to run loops.
#pragma once

#include "Foundation/NSRunLoop.h"

namespace pelvor {

struct Category;

/// Class operations of the run loop.
struct PELVOR_EXPORT NSRunLoop_PelvorAdditions {
    /// Has the current run loop send the message at the beginning of its next turn in the default mode, those
    /// of lower order first. Target and argument are retained until then. Raises NSInvalidArgumentException
    /// for no target or selector.
    static void performSelector_target_argument_order(SEL selector, id target, id argument,
                                                      std::uint32_t order);
};

extern const Category NSRunLoop_PelvorAdditions_category;

}  // namespace pelvor
