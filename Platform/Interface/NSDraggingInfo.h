// SPDX-License-Identifier: Apache-2.0
// NSDraggingInfo: what is dragged over a view.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSWindow.h"

namespace pelvor {

struct BackendDrag;

/// What becomes of dragged content, joined by "|".
enum : NSUInteger {
    NSDragOperationNone = 0,
    NSDragOperationCopy = 1,
    NSDragOperationMove = 16,
};

/// Content that the user drags over a view, here from or from another program. A view that said by
/// `registerForDraggedTypes` what it takes may have these operations, and gets the last one if somebody drops
/// the content there:
///
///     NSUInteger draggingEntered:(NSDraggingInfo*)     what would become of it; none refuses a drop
///     NSUInteger draggingUpdated:(NSDraggingInfo*)
///     void draggingExited:(NSDraggingInfo*)
///     bool performDragOperation:(NSDraggingInfo*)      whether the content was taken
///
/// Main thread.
class PELVOR_EXPORT NSDraggingInfo final : public NSObject {
    PELVOR_CLASS(NSDraggingInfo, NSObject);

  public:
    NSPasteboard* draggingPasteboard();
    /// In base coordinates of the window.
    NSPoint draggingLocation() { return _place; }
    NSWindow* draggingDestinationWindow() { return _window; }
    /// Who drags; null if that is another program.
    id draggingSource();

    // C++ only
    /// Has the view that is dragged over hear of it a moment later. Returns whether there is one that takes
    /// something of what is dragged.
    static bool handle(NSWindow* window, const BackendDrag& drag);
    /// Drags what the drag pasteboard holds, while the button is down. The source, which is not kept alive,
    /// gets `draggingEnded:` with whether the content was taken, if it has that operation. Returns false if
    /// another drag goes on or the button is up.
    static bool drag(NSWindow* window, id source);

  private:
    NSDraggingInfo() = default;
    ~NSDraggingInfo() = default;
    static void tell(NSWindow* window, NSView* view, NSPoint place, int kind);

    Retained<NSWindow> _window;
    NSPoint _place;
};

}  // namespace pelvor
