// SPDX-License-Identifier: Apache-2.0
// The classes of Interface, for headers that only name them: the floor's table of contents.
#pragma once

#include "Text/Forward.h"

namespace pelvor {

// Events
class NSEvent;  ///< what the user does, and which modifier keys are down

}  // namespace pelvor
