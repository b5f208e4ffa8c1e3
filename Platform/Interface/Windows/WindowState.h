// SPDX-License-Identifier: Apache-2.0
// WindowState: what a window is made of.
#pragma once

#include <optional>

#include "Foundation/NSUndoManager.h"
#include "Interface/Backend/Backend.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/WindowPainter.h"
#include "Interface/Windows/WindowTracking.h"
#include "Runtime/WeakHandle.h"
#include "Text/NSColor.h"

namespace pelvor {

/// What the back end says has become of a window.
struct ReportedFrame {
    PixelRect frame;
    bool isMinimized;
    bool isZoomed;
};

/// The view that fills a window and draws its background. Its subviews are a bar at the top, if there is one,
/// and the content view below.
class WindowRootView : public NSView {
    PELVOR_CLASS(WindowRootView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;
    void resizeSubviewsWithOldSize(NSSize oldSize) override;

  protected:
    WindowRootView() = default;
    ~WindowRootView() = default;
};

struct WindowState {
    explicit WindowState(NSWindow* owner) : window(owner), painter(owner), tracking(owner) {}

    Unretained<NSWindow> window;
    WindowPainter painter;
    WindowTracking tracking;

    NSUInteger styleMask = 0;
    NSInteger number = 0;
    NSInteger level = NSNormalWindowLevel;
    NSRect content;  // with the bar, in screen coordinates
    BackendWindow backendWindow = 0;
    std::optional<PixelRect> extents;
    std::optional<ReportedFrame> reported;  // and not yet taken over
    NSSize minSize, maxSize;

    Retained<NSView> root, contentView, bar;
    Retained<NSString> title, representedFilename, autosaveName;
    Retained<NSColor> backgroundColor;
    Retained<NSUndoManager> undoManager;
    Retained<NSView> fieldEditor;  // an NSText, once somebody has asked for it
    WeakHandle delegate;
    WeakHandle firstResponder;  // empty: the window
    WeakHandle initialFirstResponder;
    WeakHandle mouseTargets[3];  // what took the press of the main, second and other buttons
    WeakHandle parent;
    std::vector<Retained<NSWindow>> children;

    BackendCursor shownCursor = BackendCursor::arrow;
    bool isVisible = false;
    bool isMinimized = false;
    bool isZoomed = false;
    bool isFullScreen = false;
    bool isDocumentEdited = false;
    bool isReleasedWhenClosed = false;
    bool hidesOnDeactivate = false;
    bool isHiddenByDeactivation = false;
    bool acceptsMouseMovedEvents = false;
    bool ignoresMouseEvents = false;
    bool recalculatesKeyViewLoop = true;
    bool isClosed = false;
    bool wasShown = false;
    bool keepsFrame = false;  // until the first showing: the saved frame included the bar
    bool isPanel = false;
    bool showsMenuBar = true;
    int flushDisabled = 0;

    void createBackendWindow();
    void setContent(NSRect content);
    void takeFrame(NSRect content);  // the backend has it already
    void applyReport();
    bool differsFromReport();
    PixelRect frameExtents();
    /// The frame of a window whose contents with the bar fill the rectangle.
    NSRect frameAround(NSRect inside);
    float barHeight() const { return bar ? bar->frame().size.height : 0; }
    void setLimits();
    void layOut();
    /// Puts a view above the content view, as high as the view's frame; null takes it away. The window grows
    /// by the bar, so that the content view keeps its size, unless the window is zoomed, in full screen or of
    /// a saved size.
    void setBar(NSView* view);
    /// Shows the titles of the application's main menu, if there is one and the window is to have them.
    void updateMenuBar();
    void show(bool isShown, bool raises, bool takesFocus);
    /// The view leaves the window, or is hidden, with what is inside it.
    void forgetResponders(NSView* view);
    void notify(NSString* name, SEL selector);
    NSResponder* responder();
    NSView* keyViewOfResponder();
    NSView* hit(NSPoint place) { return root->hitTest(place); }
    void sendMouse(NSEvent* event);
    void sendKey(NSEvent* event);
};

}  // namespace pelvor
