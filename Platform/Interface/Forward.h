// SPDX-License-Identifier: Apache-2.0
// The classes of Interface, for headers that only name them: the floor's table of contents.
#pragma once

#include "Text/Forward.h"

namespace pelvor {

// Events
class NSApplication;  ///< the program's events, windows and end
class NSCursor;       ///< the picture of the pointer
class NSEvent;        ///< what the user does, and which modifier keys are down
class NSResponder;    ///< what takes events or hands them to the next responder

// Windows and views
class NSScreen;  ///< a monitor
class NSView;    ///< a rectangle that draws itself and takes events
class NSWindow;  ///< a window with a tree of views

// Pictures
class NSImage;  ///< a picture to draw

}  // namespace pelvor
