// SPDX-License-Identifier: Apache-2.0
// Whether modifier keys are held down, asked at any time.
#pragma once

#include "Interface/NSEvent.h"

namespace pelvor {

struct Category;

/// Class operations of NSEvent: whether the key is down at this moment, also while no event is handled. False
/// in a program without a screen.
struct PELVOR_EXPORT NSEvent_PelvorAdditions {
    static bool isCommandKeyDown();
    static bool isShiftKeyDown();
    static bool isOptionKeyDown();
};

extern const Category NSEvent_PelvorAdditions_category;

}  // namespace pelvor
