// SPDX-License-Identifier: Apache-2.0
// PBSnapFrame: windows that keep to the edges of the screen.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Runtime/Export.h"

namespace pelvor {

/// The window frame `wrect`, in screen coordinates, moved to the edges of the visible frame of its screen
/// that it is at most `screenEdgeSnapDistance` points away from, and into the visible frame. The size stays.
/// Of a window that is too large, the upper and the right edge are in sight.
///
///     window->setFrame_display(PBSnapFrame(proposed, 10), true);
///
/// The window's screen is the last one that contains the middle of its upper edge, give or take a point; the
/// main screen if none does. Main thread.
PELVOR_EXPORT NSRect PBSnapFrame(NSRect wrect, int screenEdgeSnapDistance);

}  // namespace pelvor
