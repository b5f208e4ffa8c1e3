// SPDX-License-Identifier: Apache-2.0
// PantherCompatibility: newer platform operations on an older platform.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

// Some classes have operations that platforms below version 743 lack: PantherCursor, PantherFont and
// PantherObject. At load time each takes the place of the platform's class that it derives from, but only on
// such a platform; on newer ones the classes do nothing. Messages to the class that is found by name, and to
// its objects, reach the operations then:
//
//     send<float>(classNamed("NSFont"), "systemFontSizeForControlSize:"_sel, NSMiniControlSize)

/// Lets the class take the place of its superclass if the platform's version is below 743.
PELVOR_EXPORT void poseOnOldPlatforms(Class* cls);

}  // namespace pelvor
