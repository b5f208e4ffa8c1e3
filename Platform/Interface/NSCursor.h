// SPDX-License-Identifier: Apache-2.0
// NSCursor: the picture of the pointer.
#pragma once

#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

enum class BackendCursor;
class NSEvent;

/// The picture of the pointer, one of those that every desktop has. A view says by `resetCursorRects` which
/// one belongs where:
///
///     void Canvas::resetCursorRects() {
///         addCursorRect_cursor(visibleRect(), NSCursor::crosshairCursor());
///     }
///
/// Operations return borrowed cursors that live as long as the process. Main thread.
class PELVOR_EXPORT NSCursor : public NSObject {
    PELVOR_CLASS(NSCursor, NSObject);

  public:
    static NSCursor* arrowCursor();
    static NSCursor* IBeamCursor();
    static NSCursor* pointingHandCursor();
    static NSCursor* openHandCursor();
    static NSCursor* closedHandCursor();
    static NSCursor* crosshairCursor();
    static NSCursor* resizeLeftCursor();
    static NSCursor* resizeRightCursor();
    static NSCursor* resizeLeftRightCursor();
    static NSCursor* resizeUpCursor();
    static NSCursor* resizeDownCursor();
    static NSCursor* resizeUpDownCursor();
    static NSCursor* operationNotAllowedCursor();

    /// The cursor that was set last, or the arrow.
    static NSCursor* currentCursor();
    /// Shows this cursor until another is set, also by the cursor rectangle under the pointer.
    void set();
    /// Sets the cursor, and remembers the current one for `pop`.
    void push();
    static void popCursor();
    void pop();

    /// Hides the pointer over the program's windows until `unhide` was called as often.
    static void hide();
    static void unhide();
    /// Hides the pointer until it moves, such as while somebody types.
    static void setHiddenUntilMouseMoves(bool isHidden);

    /// "<NSCursor: crosshair>".
    NSString* description() override;

    // C++ only
    BackendCursor shape() { return _shape; }

  protected:
    NSCursor();
    ~NSCursor() = default;
    static NSCursor* cursorOf(BackendCursor shape);

  private:
    BackendCursor _shape;
};

}  // namespace pelvor
