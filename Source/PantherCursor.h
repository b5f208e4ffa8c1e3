// SPDX-License-Identifier: Apache-2.0
// PantherCursor: the cursor class with more cursors, for older platforms.
#pragma once

#include "Interface/NSCursor.h"

namespace pelvor {

/// Gives NSCursor class operations on platforms that lack them; see PantherCompatibility.h. Each returns a
/// cursor that those platforms have.
class PELVOR_EXPORT PantherCursor : public NSCursor {
    PELVOR_CLASS(PantherCursor, NSCursor);

  public:
    /// Takes the place of NSCursor on old platforms.
    static void performPosing();

    static NSCursor* closedHandCursor();
    static NSCursor* crosshairCursor();
    static NSCursor* openHandCursor();
    static NSCursor* resizeLeftCursor();
    static NSCursor* resizeRightCursor();
    static NSCursor* resizeLeftRightCursor();
    // One cursor for the three.
    static NSCursor* resizeUpCursor();
    static NSCursor* resizeDownCursor();
    static NSCursor* resizeUpDownCursor();
    /// The arrow.
    static NSCursor* pointingHandCursor();

  protected:
    PantherCursor() = default;
    ~PantherCursor() = default;
};

}  // namespace pelvor
