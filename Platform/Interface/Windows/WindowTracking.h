// SPDX-License-Identifier: Apache-2.0
// WindowTracking: what follows the pointer in a window: tracking rectangles and the cursor.
#pragma once

#include <vector>

#include "Foundation/NSGeometry.h"
#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

/// Cursor rectangles are asked of the view under the pointer and of those around it, and only then.
class WindowTracking {
  public:
    explicit WindowTracking(NSWindow* window) : _window(window) {}

    NSTrackingRectTag add(NSView* view, NSRect rect, id owner, void* userData, bool isInside);
    void remove(NSTrackingRectTag tag);
    /// The view leaves the window.
    void forget(NSView* view);

    /// Views have moved, come or gone; also when cursor rectangles are to be asked for again.
    void noteGeometryChange();
    /// A pointer event; sends what follows from it.
    void pointerMoved(NSEvent* event, bool setsCursor);
    void pointerLeft(NSEvent* event);
    /// At the end of a turn: what is under the pointer may have moved.
    void refresh();
    /// Has all views asked again for their cursor rectangles.
    void discardCursorRects();

    bool areCursorRectsEnabled = true;

  private:
    struct Rect {
        NSTrackingRectTag tag;
        Unretained<NSView> view;
        NSRect rect;
        WeakHandle owner;
        void* userData;
        bool isInside;
    };
    void cross(NSEvent* event, bool isInWindow);
    NSCursor* cursorAt(NSPoint place);
    void setCursorAt(NSPoint place);

    Unretained<NSWindow> _window;
    std::vector<Rect> _rects;
    std::uint64_t _generation = 1;
    NSTrackingRectTag _lastTag = 0;
    NSPoint _place;
    bool _isPointerInside = false;
    bool _isStale = false;
};

}  // namespace pelvor
