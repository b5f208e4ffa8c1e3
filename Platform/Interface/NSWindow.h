// SPDX-License-Identifier: Apache-2.0
// NSWindow: a window on the screen, with a tree of views.
#pragma once

#include <memory>

#include "Foundation/NSDate.h"
#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSColor;
class NSNotification;
class NSScreen;
class NSText;
class WindowServer;
struct WindowState;
enum NSEventType : int;

/// What is around the contents, and what the user can do, joined by "|".
enum : NSUInteger {
    NSBorderlessWindowMask = 0,
    NSTitledWindowMask = 1,
    NSClosableWindowMask = 2,
    NSMiniaturizableWindowMask = 4,
    NSResizableWindowMask = 8,
    NSUtilityWindowMask = 16,  ///< a panel
};

enum NSBackingStoreType : int {
    NSBackingStoreRetained = 0,
    NSBackingStoreNonretained = 1,
    NSBackingStoreBuffered = 2,
};

/// Windows of a higher level stand in front of those of a lower one.
enum : NSInteger {
    NSNormalWindowLevel = 0,
    NSFloatingWindowLevel = 3,
    NSModalPanelWindowLevel = 8,
    NSPopUpMenuWindowLevel = 101,  ///< menus: no window manager touches them
    NSToolTipWindowLevel = 102,
};

// Posted by windows, which are the sender. The delegate gets the same as a message, `windowDidResize:` and so
// on, if it has a method for it.

inline constexpr NSString* NSWindowDidBecomeKeyNotification = u"NSWindowDidBecomeKeyNotification"_ns;
inline constexpr NSString* NSWindowDidResignKeyNotification = u"NSWindowDidResignKeyNotification"_ns;
inline constexpr NSString* NSWindowDidBecomeMainNotification = u"NSWindowDidBecomeMainNotification"_ns;
inline constexpr NSString* NSWindowDidResignMainNotification = u"NSWindowDidResignMainNotification"_ns;
inline constexpr NSString* NSWindowDidMoveNotification = u"NSWindowDidMoveNotification"_ns;
inline constexpr NSString* NSWindowDidResizeNotification = u"NSWindowDidResizeNotification"_ns;
inline constexpr NSString* NSWindowDidMiniaturizeNotification = u"NSWindowDidMiniaturizeNotification"_ns;
inline constexpr NSString* NSWindowDidDeminiaturizeNotification = u"NSWindowDidDeminiaturizeNotification"_ns;
inline constexpr NSString* NSWindowDidUpdateNotification = u"NSWindowDidUpdateNotification"_ns;
inline constexpr NSString* NSWindowWillCloseNotification = u"NSWindowWillCloseNotification"_ns;

/// A window with a tree of views.
///
///     auto window = NSWindow::initWithContentRect_styleMask_backing_defer(
///         {{100, 100}, {480, 320}}, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask,
///         NSBackingStoreBuffered, true);
///     window->setTitle(u"Letter"_ns);
///     window->contentView()->addSubview(canvas);
///     window->makeKeyAndOrderFront(nullptr);
///     NSApplication::sharedApplication()->run();
///
/// Base coordinates are points, y upwards, from the lower left corner of the contents; the content view fills
/// the contents. The frame, in screen coordinates, includes the menu bar above the contents and what the
/// window manager puts around the window.
///
/// **Key and main.** The key window gets the keys; its first responder gets them first. The main window is
/// the document that panels and menus work on.
///
/// **Lifetime.** A window that is on the screen is kept alive, and `close` lets go of it. The window keeps
/// its content view; delegate, first responder and views outside the tree are not kept. Without a display,
/// windows work the same and nobody sees them. Main thread.
///
/// The delegate may have: `windowShouldClose:` (the sender; returns whether), `windowWillResize:toSize:`
/// (returns the size to take), `windowWillReturnUndoManager:`, `windowWillReturnFieldEditor:toObject:`, and
/// the messages of the notifications above.
class PELVOR_EXPORT NSWindow : public NSResponder {
    PELVOR_CLASS(NSWindow, NSResponder);
    PELVOR_CREATORS(initWithContentRect_styleMask_backing_defer);

  public:
    /// A window that is not shown yet. The rectangle of its contents, without a menu bar, is in screen
    /// coordinates. Backing and `defer` make no difference: windows are drawn into memory, and take part in
    /// the display from their first showing.
    static Retained<NSWindow> initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                          NSUInteger styleMask,
                                                                          NSBackingStoreType backing,
                                                                          bool defer,
                                                                          Class* cls = classObject());

    // Frame and contents

    NSUInteger styleMask();
    NSRect frame();
    /// These two convert between a frame and the contents inside it, with the menu bar that the window has
    /// now.
    NSRect contentRectForFrameRect(NSRect frame);
    NSRect frameRectForContentRect(NSRect contentRect);
    virtual void setFrame_display(NSRect frame, bool display);
    void setFrameOrigin(NSPoint origin);
    void setFrameTopLeftPoint(NSPoint corner);
    void setContentSize(NSSize size);
    /// Puts the window somewhat above the middle of its screen; a new panel over the main window, if any.
    void center();
    /// Puts the upper left corner of the frame at the point, or leaves the window where it is for
    /// NSZeroPoint. Returns where the next window goes.
    NSPoint cascadeTopLeftFromPoint(NSPoint corner);
    /// The frame moved, and made lower if need be, so that its upper edge lies in the visible frame of the
    /// screen.
    virtual NSRect constrainFrameRect_toScreen(NSRect frame, NSScreen* screen);
    /// Of the contents; {0, 0} as the greatest size stands for any.
    NSSize contentMinSize();
    void setContentMinSize(NSSize size);
    NSSize contentMaxSize();
    void setContentMaxSize(NSSize size);
    /// The screen with the largest part of the window; null if it is on none.
    NSScreen* screen();
    /// Pixels a point.
    float userSpaceScaleFactor();

    NSView* contentView();
    /// Null takes an empty view. The view is given the size of the contents.
    virtual void setContentView(NSView* view);
    NSPoint convertBaseToScreen(NSPoint point);
    NSPoint convertScreenToBase(NSPoint point);

    /// A place and size as text, for the user defaults, and a window's place from such a text.
    NSString* stringWithSavedFrame();
    void setFrameFromString(NSString* text);
    /// Keeps the frame in the user defaults under the name, and takes it from there. The first returns false
    /// if nothing is kept under the name.
    bool setFrameUsingName(NSString* name);
    void saveFrameUsingName(NSString* name);
    /// Uses the name now, and from now on keeps each change of the frame. Returns false for null.
    bool setFrameAutosaveName(NSString* name);
    NSString* frameAutosaveName();

    // Title and looks

    NSString* title();
    virtual void setTitle(NSString* title);
    /// The file's name with its folder, as a title.
    void setTitleWithRepresentedFilename(NSString* path);
    NSString* representedFilename();
    void setRepresentedFilename(NSString* path);
    bool isDocumentEdited();
    void setDocumentEdited(bool isEdited);  ///< shown by a "*" before the title
    /// What stands behind the views.
    NSColor* backgroundColor();
    void setBackgroundColor(NSColor* color);

    /// Whether a window with a title bar that can become main shows the application's main menu above its
    /// content view; true at first. The window grows by the menu bar, so that the contents keep their size: a
    /// window that was never shown upwards, another one downwards. The frame of a zoomed window or one in
    /// full screen stays, and so does a saved frame that was set before the first showing.
    bool showsMenuBar();
    void setShowsMenuBar(bool shows);

    // On the screen

    NSInteger windowNumber();
    NSInteger level();
    /// Set it before the first showing: the window manager is told then what kind of window it is, and is not
    /// told of later changes.
    void setLevel(NSInteger level);
    bool isVisible();
    void orderFront(id sender);
    void orderBack(id sender);
    /// Takes the window from the screen; it is kept alive no longer.
    virtual void orderOut(id sender);
    void orderFrontRegardless();
    void orderWindow_relativeTo(NSWindowOrderingMode place, NSInteger otherNumber);
    virtual void makeKeyAndOrderFront(id sender);
    /// Posts NSWindowWillCloseNotification and takes the window from the screen. Does not ask the delegate,
    /// as `performClose` does. The program can show the window again if it still keeps it. A modal run of the
    /// window ends with NSRunAbortedResponse.
    virtual void close();
    /// What a click on the close button does: asks the delegate, or else the window itself, by
    /// `windowShouldClose:`, and closes. Beeps for a window that cannot be closed.
    void performClose(id sender);
    /// Whether `close` ends a window that nobody else keeps; it makes no difference here, since a window on
    /// the screen is kept by the application alone.
    bool isReleasedWhenClosed();
    void setReleasedWhenClosed(bool isReleased);
    void miniaturize(id sender);
    void deminiaturize(id sender);
    bool isMiniaturized();
    void performMiniaturize(id sender);
    /// Asks the window manager to make the window as large as its screen, or to give it its former frame
    /// back. `isZoomed` and `frame` change when it has done so, if it does.
    void zoom(id sender);
    void performZoom(id sender);
    bool isZoomed();
    bool isFullScreen();
    void setFullScreen(bool isFullScreen);
    bool hidesOnDeactivate();
    void setHidesOnDeactivate(bool hides);
    /// Windows that stand in front of this one, and come and go with it.
    void addChildWindow_ordered(NSWindow* child, NSWindowOrderingMode place);
    void removeChildWindow(NSWindow* child);
    NSArray* childWindows();
    NSWindow* parentWindow();

    // Key, main and first responder

    bool isKeyWindow();
    bool isMainWindow();
    /// Whether the window may get the keys. The base returns true for windows that have a title bar or can be
    /// resized.
    virtual bool canBecomeKeyWindow();
    /// Whether the window may be the document that menus work on. The base returns what `canBecomeKeyWindow`
    /// does, and false for panels.
    virtual bool canBecomeMainWindow();
    void makeKeyWindow();
    void makeMainWindow();
    /// Called by the application; they post the notifications.
    virtual void becomeKeyWindow();
    virtual void resignKeyWindow();
    virtual void becomeMainWindow();
    virtual void resignMainWindow();
    /// Whether the window takes events while another one runs modally. False.
    virtual bool worksWhenModal() { return false; }

    /// The window itself if nothing else is.
    NSResponder* firstResponder();
    /// Asks the old one to resign and the new one to become it. Returns false, and leaves the old one, if it
    /// refuses. Null stands for the window; so does a new one that refuses.
    virtual bool makeFirstResponder(NSResponder* responder);
    /// What becomes first responder when the window is shown first; not kept alive.
    NSView* initialFirstResponder();
    void setInitialFirstResponder(NSView* view);
    void selectNextKeyView(id sender);
    void selectPreviousKeyView(id sender);
    void selectKeyViewFollowingView(NSView* view);
    void selectKeyViewPrecedingView(NSView* view);
    /// Orders the key views by their places, line by line, as the language is written.
    void recalculateKeyViewLoop();
    /// Whether views that come and go have the above done by themselves; true as long as nobody has set the
    /// next key view of one of the window's views.
    bool autorecalculatesKeyViewLoop();
    void setAutorecalculatesKeyViewLoop(bool recalculates);

    // The text that a control is being edited with

    /// The delegate's, or the window's own; null if there is none and `create` is false.
    NSText* fieldEditor_forObject(bool create, id object);
    /// Takes the field editor from the object that it edits.
    void endEditingFor(id object);

    // Events

    /// Hands the event to the view that it concerns.
    virtual void sendEvent(NSEvent* event);
    void postEvent_atStart(NSEvent* event, bool atStart);
    /// The next event of these kinds, for this or any window, taken from the queue; waits for it.
    NSEvent* nextEventMatchingMask(NSUInteger mask);
    NSEvent* nextEventMatchingMask_untilDate_inMode_dequeue(NSUInteger mask, NSDate* limit, NSString* mode,
                                                            bool dequeue);
    void discardEventsMatchingMask_beforeEvent(NSUInteger mask, NSEvent* last);
    /// The event that the application handles, whatever its window.
    NSEvent* currentEvent();
    /// Where the pointer is, in base coordinates.
    NSPoint mouseLocationOutsideOfEventStream();
    bool acceptsMouseMovedEvents();
    void setAcceptsMouseMovedEvents(bool accepts);
    bool ignoresMouseEvents();
    void setIgnoresMouseEvents(bool ignores);
    /// Asks the content view, for keys that may be a button's.
    bool performKeyEquivalent(NSEvent* event) override;
    /// Tab and the other keys that nobody takes.
    void keyDown(NSEvent* event) override;
    void doCommandBySelector(SEL selector) override;
    bool tryToPerform_with(SEL action, id argument) override;

    // Drawing

    bool viewsNeedDisplay();
    void setViewsNeedDisplay(bool need);
    /// Draws the whole window at once, marked or not.
    void display();
    /// Draws what is marked at once.
    void displayIfNeeded();
    /// Between the two, nothing is drawn but by `display`.
    void disableFlushWindow();
    void enableFlushWindow();
    bool isFlushWindowDisabled();
    /// Called once an event; the base posts NSWindowDidUpdateNotification.
    virtual void update();

    // Cursor rectangles

    bool areCursorRectsEnabled();
    void disableCursorRects();
    void enableCursorRects();
    /// The view's rectangles are asked for again before the next event.
    void invalidateCursorRectsForView(NSView* view);
    void resetCursorRects();
    void discardCursorRects();

    // The delegate and what it gives

    id delegate();
    /// Not kept alive; null once it has ended.
    virtual void setDelegate(id delegate);
    NSUndoManager* undoManager() override;

    /// "<NSWindow 0x…: 3 "Letter" {{100, 100}, {480, 320}}>".
    NSString* description() override;

    // C++ only
    WindowState& state() { return *_state; }

  protected:
    NSWindow();
    ~NSWindow();

  private:
    void selectKeyView(NSView* from, bool forwards);

    std::unique_ptr<WindowState> _state;
};

}  // namespace pelvor
