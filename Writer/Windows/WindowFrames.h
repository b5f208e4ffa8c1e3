// SPDX-License-Identifier: Apache-2.0
// Where the windows of documents stood, for the next time.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSWindow;

/// User defaults: a dictionary from the paths of documents to the frames of their windows as strings, and the
/// paths as an array, the one that was noted last at the end.
inline constexpr NSString* WRWindowFramesKey = u"WRWindowFrames"_ns;
inline constexpr NSString* WRWindowFrameOrderKey = u"WRWindowFrameOrder"_ns;

/// Notes the frame of the document's window. The last hundred documents are remembered.
void noteWindowFrame(NSString* path, NSRect frame);
/// Where the document's window stood, moved and made smaller so that it can be seen on a screen that there is
/// now; an empty rectangle for a document that is not remembered.
NSRect notedWindowFrame(NSString* path);

/// Moves a window that is not seen yet beside the other one, or to the edge of the screen for null.
void placeBeside(NSWindow* window, NSWindow* other);

/// Moves the window, if it covers the rectangle of the screen, below the rectangle, above it or to a side.
void uncover(NSRect rect, NSWindow* window);

}  // namespace pelvor
