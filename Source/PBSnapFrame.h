// SPDX-License-Identifier: Apache-2.0
// PBSnapFrame: windows that keep to the edges of the screen.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Runtime/Export.h"

namespace pelvor {

/// Returns where a window with the frame `wrect`, in screen coordinates, is to be instead. An edge of the
/// window that is at most `screenEdgeSnapDistance` points away from the edge of the visible frame of its
/// screen is moved onto that edge; a window that is partly outside the visible frame is moved inside. The
/// size stays. Of a window that is too large, the upper and the right edge are in sight.
///
///     window->setFrame_display(PBSnapFrame(proposed, 10), true);
///
/// The window's screen is the last one that contains the middle of its upper edge, give or take a point; the
/// main screen if none does. Main thread.
PELVOR_EXPORT NSRect PBSnapFrame(NSRect wrect, int screenEdgeSnapDistance);

}  // namespace pelvor
