// SPDX-License-Identifier: Apache-2.0
// NSView: a rectangle of a window that draws itself and takes events.
#pragma once

#include <vector>

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"
#include "Interface/NSResponder.h"

namespace pelvor {

class NSCursor;
class NSScrollView;
class NSMenu;
class NSWindow;
class WindowPainter;
class WindowTracking;
struct ViewRect;
struct ViewTransform;

/// Posted after the frame or the bounds of a view have changed, if the view posts such notifications; the
/// sender is the view.
inline constexpr NSString* NSViewFrameDidChangeNotification = u"NSViewFrameDidChangeNotification"_ns;
inline constexpr NSString* NSViewBoundsDidChangeNotification = u"NSViewBoundsDidChangeNotification"_ns;
/// Posted after `lockFocus` has made another view the one that is drawn in, and after a scroll has moved
/// what is drawn; the sender is the view.
inline constexpr NSString* NSViewFocusDidChangeNotification = u"NSViewFocusDidChangeNotification"_ns;

/// What of a view follows the size of its superview, joined by "|". The part of a change goes in equal shares
/// to the parts that follow; if none does, the view keeps its place from the superview's lower left corner
/// (the upper left one if it is flipped).
enum : NSUInteger {
    NSViewNotSizable = 0,
    NSViewMinXMargin = 1,
    NSViewWidthSizable = 2,
    NSViewMaxXMargin = 4,
    NSViewMinYMargin = 8,
    NSViewHeightSizable = 16,
    NSViewMaxYMargin = 32,
};

/// Where something goes among its siblings.
enum NSWindowOrderingMode : int {
    NSWindowAbove = 1,
    NSWindowBelow = -1,
    NSWindowOut = 0,
};

using NSTrackingRectTag = NSInteger;

/// A rectangle of a window. Views form a tree; a view is drawn over its superview and before the siblings
/// that follow it, and clipped to all views around it.
///
///     class Canvas : public NSView {
///         PELVOR_CLASS(Canvas, NSView);
///         PELVOR_INHERITED_CREATORS(initWithFrame);
///
///       public:
///         bool isFlipped() override { return true; }                     // y grows downwards
///         void drawRect(NSRect dirty) override {
///             NSColor::whiteColor()->set();
///             NSRectFill(dirty);
///         }
///         …
///     window->contentView()->addSubview(canvas);
///
/// **Coordinates.** The frame is in the coordinates of the superview, the bounds in those of the view itself;
/// drawing, subviews and cursor rectangles use the latter. They start as {{0, 0}, size of the frame}. Bounds
/// that are larger than the frame show things smaller. Without `isFlipped`, y grows upwards.
///
/// **Drawing.** What has to be drawn again is marked by `setNeedsDisplay…`; once a turn of the run loop the
/// window draws it by `drawRect`. While that runs, `NSGraphicsContext::currentContext()` has the view's
/// coordinates and is clipped to the dirty rectangle.
///
/// **Lifetime.** A view keeps its subviews; superview and window are not kept. Views may be removed, moved
/// and ended at any time, also by what they do in an event, in drawing or in notifications. Main thread.
class PELVOR_EXPORT NSView : public NSResponder {
    PELVOR_CLASS(NSView, NSResponder);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// A view outside all windows. An infinite number or NaN in the frame counts as 0, a size below 0 as 0.
    static Retained<NSView> initWithFrame(NSRect frame, Class* cls = classObject());

    // The tree. Borrowed views, or null.

    NSView* superview() { return _superview; }
    NSWindow* window() { return _window; }
    /// An array that later changes leave alone.
    NSArray* subviews();
    /// Whether the receiver is the view, or inside it at any depth.
    bool isDescendantOf(NSView* view);
    /// The nearest view that both are inside of or are; null if there is none.
    NSView* ancestorSharedWithView(NSView* view);
    /// The nearest scroll view around the receiver; null if there is none.
    NSScrollView* enclosingScrollView();
    /// The receiver or the nearest view around it that is opaque; the outermost view if none is.
    NSView* opaqueAncestor();
    /// The first view with the tag, the receiver first, then each subview with those inside it; or null.
    virtual NSView* viewWithTag(NSInteger tag);
    /// -1; subclasses with a tag return theirs.
    virtual NSInteger tag() { return -1; }

    /// These take the view out of its superview first, and raise NSInvalidArgumentException if the view is
    /// null or contains the receiver. `addSubview` puts the view in front of all its siblings.
    virtual void addSubview(NSView* view);
    /// In front of (NSWindowAbove) or behind (NSWindowBelow) the sibling; of all siblings if that is null or
    /// no subview.
    virtual void addSubview_positioned_relativeTo(NSView* view, NSWindowOrderingMode place, NSView* sibling);
    /// Puts the new view where the old one was. Does nothing if the old view is no subview; null as the new
    /// view removes the old one.
    virtual void replaceSubview_with(NSView* oldView, NSView* newView);
    virtual void removeFromSuperview();
    void removeFromSuperviewWithoutNeedingDisplay();
    /// Takes out the subviews that are not in the array, and adds its views in their order; for interface
    /// files. Raises NSInvalidArgumentException for an object that is no view. Null stands for no views.
    void setSubviews(NSArray* views);
    /// Orders the subviews by a function that returns below 0, 0 or above 0 for two views and the context.
    void sortSubviewsUsingFunction_context(NSCompareFunction compare, void* context);

    // Override points around changes of the tree; the base does nothing.

    virtual void viewWillMoveToSuperview(NSView* superview);
    virtual void viewDidMoveToSuperview();
    virtual void viewWillMoveToWindow(NSWindow* window);
    virtual void viewDidMoveToWindow();
    virtual void didAddSubview(NSView* view);
    virtual void willRemoveSubview(NSView* view);

    // Frame and bounds. What is not finite counts as 0, and a size below 0 as 0.

    NSRect frame() { return _frame; }
    /// Calls `setFrameOrigin` and `setFrameSize`, where they change something.
    virtual void setFrame(NSRect frame);
    virtual void setFrameOrigin(NSPoint origin);
    /// Bounds that have been set by themselves keep their proportion to the frame; others follow it.
    virtual void setFrameSize(NSSize size);
    NSRect bounds();
    virtual void setBounds(NSRect bounds);
    virtual void setBoundsOrigin(NSPoint origin);
    virtual void setBoundsSize(NSSize size);
    /// Makes one unit of the view so much larger; a factor that is not above 0 raises
    /// NSInvalidArgumentException.
    void scaleUnitSquareToSize(NSSize factors);
    /// Moves the origin of the coordinates to the place.
    void translateOriginToPoint(NSPoint place);
    /// Whether y grows downwards in the view's coordinates. The base returns false. It must not change while
    /// the view has a superview.
    virtual bool isFlipped() { return false; }

    /// Both are true at first.
    bool postsFrameChangedNotifications() { return _postsFrameChanges; }
    void setPostsFrameChangedNotifications(bool posts) { _postsFrameChanges = posts; }
    bool postsBoundsChangedNotifications() { return _postsBoundsChanges; }
    void setPostsBoundsChangedNotifications(bool posts) { _postsBoundsChanges = posts; }

    // Resizing with the superview

    /// Whether changes of the size go to the subviews; true at first.
    bool autoresizesSubviews() { return _autoresizesSubviews; }
    void setAutoresizesSubviews(bool autoresizes) { _autoresizesSubviews = autoresizes; }
    /// NSView…Margin and NSView…Sizable joined by "|"; NSViewNotSizable at first.
    NSUInteger autoresizingMask() { return _autoresizingMask; }
    void setAutoresizingMask(NSUInteger mask) { _autoresizingMask = static_cast<std::uint8_t>(mask & 63); }
    /// Called when the size of the frame has changed from `oldSize`; the base calls the next operation of
    /// each subview. Override it to lay out subviews.
    virtual void resizeSubviewsWithOldSize(NSSize oldSize);
    /// Fits the view into its superview, whose bounds had the size `oldSize`.
    virtual void resizeWithOldSuperviewSize(NSSize oldSize);

    // Conversion. A null view stands for the base coordinates of the window; without a window, for those of
    // the outermost view's superview. Views without a common window are taken to be in one whose base they
    // share.

    NSPoint convertPoint_fromView(NSPoint point, NSView* view);
    NSPoint convertPoint_toView(NSPoint point, NSView* view);
    /// Sizes keep their sign.
    NSSize convertSize_fromView(NSSize size, NSView* view);
    NSSize convertSize_toView(NSSize size, NSView* view);
    NSRect convertRect_fromView(NSRect rect, NSView* view);
    NSRect convertRect_toView(NSRect rect, NSView* view);
    /// The rectangle moved to whole pixels of the screen.
    NSRect centerScanRect(NSRect rect);
    /// What of the bounds is not outside a view around it; NSZeroRect if the view is hidden.
    NSRect visibleRect();

    // Showing

    /// Whether the view itself is hidden; views inside a hidden view are not seen either.
    bool isHidden() { return _isHidden; }
    virtual void setHidden(bool isHidden);
    bool isHiddenOrHasHiddenAncestor();
    /// Whether `drawRect` covers every pixel of the view; what is behind is not drawn then. The base returns
    /// false.
    virtual bool isOpaque() { return false; }
    /// Draws the part of the view inside the rectangle, in the view's coordinates. The base draws nothing.
    /// What this changes of the context's state is restored afterwards.
    virtual void drawRect(NSRect dirty);
    /// Called before the view is drawn, when it may still mark more of itself.
    virtual void viewWillDraw();
    /// Has `viewWillDraw` called before the window is drawn next, also if nothing of the view is marked.
    void setNeedsViewWillDraw();

    void setNeedsDisplay(bool needsDisplay);
    void setNeedsDisplayInRect(NSRect rect);
    bool needsDisplay();
    /// Inside `drawRect`: whether what is drawn in the rectangle would be seen.
    bool needsToDrawRect(NSRect rect);
    // These draw at once, instead of before the run loop waits. Programs seldom need them.

    /// Marks and draws the whole view.
    void display();
    /// Marks and draws the part of the view inside the rectangle.
    void displayRect(NSRect rect);
    /// Draws what is marked in the view's window.
    void displayIfNeeded();

    /// Makes the view the one that is drawn in, also outside `drawRect`; each call needs an `unlockFocus`,
    /// which shows what was drawn. Raises NSInternalInconsistencyException if the view cannot be drawn in
    /// now.
    void lockFocus();
    /// The same, but returns false if the view cannot be drawn in now, such as one outside all windows.
    bool lockFocusIfCanDraw();
    void unlockFocus();
    /// The view that is drawn in, or null.
    static NSView* focusView();
    /// Whether the view is in a window that can show it.
    bool canDraw();

    // Scrolling

    /// Has the enclosing clip view bring the point to its upper left corner (lower left if not flipped).
    virtual void scrollPoint(NSPoint point);
    /// Has the views around it scroll as little as shows the rectangle. Returns whether anything moved.
    virtual bool scrollRectToVisible(NSRect rect);
    /// Moves what is drawn inside the rectangle, and marks what comes into it.
    void scrollRect_by(NSRect rect, NSSize delta);
    /// While a drag is outside the visible part: scrolls towards it. Returns whether anything moved.
    bool autoscroll(NSEvent* event);
    /// Lets a subclass correct where a scroll ends; the base returns the rectangle.
    virtual NSRect adjustScroll(NSRect proposed);

    // Events

    /// The view in front at the point, which is in the superview's coordinates: the receiver, one inside it,
    /// or null. Override it to take the events of subviews, or none; a view is asked only about points in its
    /// frame.
    virtual NSView* hitTest(NSPoint point);
    /// Whether the rectangle contains the point, both in the view's coordinates.
    bool mouse_inRect(NSPoint point, NSRect rect);
    /// Whether a press that makes its window key is also a press for the view. True.
    virtual bool acceptsFirstMouse(NSEvent* event);
    /// Asks the subviews, the front one first.
    bool performKeyEquivalent(NSEvent* event) override;

    // The context menu

    /// What the button for context menus opens in the view; null for nothing.
    virtual NSMenu* menu();
    virtual void setMenu(NSMenu* menu);
    /// The menu for this press of the button, or of the key for context menus; the base returns `menu`. Null
    /// hands the event to the next responder.
    virtual NSMenu* menuForEvent(NSEvent* event);
    /// Where a menu opens that a key has asked for, in the view's coordinates; the base returns the middle of
    /// what is seen.
    virtual NSPoint contextMenuPlace();
    /// Opens the menu.
    void rightMouseDown(NSEvent* event) override;

    // Cursor and tracking rectangles, in the view's coordinates.

    /// Override point: calls `addCursorRect_cursor` for each rectangle. Called after changes of place or
    /// size, and after `NSWindow::invalidateCursorRectsForView`.
    virtual void resetCursorRects();
    void addCursorRect_cursor(NSRect rect, NSCursor* cursor);
    void removeCursorRect_cursor(NSRect rect, NSCursor* cursor);
    void discardCursorRects();
    /// From now on the owner, which is not kept alive, gets `mouseEntered:` and `mouseExited:` when the
    /// pointer enters and leaves the rectangle. Returns a number above 0 by which it is removed.
    NSTrackingRectTag addTrackingRect_owner_userData_assumeInside(NSRect rect, id owner, void* userData,
                                                                  bool isInside);
    void removeTrackingRect(NSTrackingRectTag tag);

    // Dragging; NSDraggingInfo says what a view hears of it.

    /// The types of what may be dropped on the view; null and an empty array for none.
    void registerForDraggedTypes(NSArray* types);
    void unregisterDraggedTypes();
    /// Never null.
    NSArray* registeredDraggedTypes();

    // The order in which Tab goes from view to view

    NSView* nextKeyView();
    NSView* previousKeyView();
    /// The views do not keep each other; one that ends is taken out of the order.
    void setNextKeyView(NSView* next);
    NSView* nextValidKeyView();
    NSView* previousValidKeyView();
    /// Whether the view accepts the keys and can be seen.
    virtual bool canBecomeKeyView();

    /// The text shown when the pointer rests over the view; null for none.
    NSString* toolTip();
    void setToolTip(NSString* text);

    /// "<Canvas 0x…: frame {{0, 0}, {100, 20}}>".
    NSString* description() override;

  protected:
    NSView();
    ~NSView();

    /// For clip views: moves the origin of the bounds, and what is drawn with it; what comes into sight is
    /// marked.
    void scrollBoundsOrigin(NSPoint origin);
    /// The size of the frame has changed: marks what has to be drawn again, all of both frames.
    virtual void markResize(NSRect oldFrame);

  private:
    friend class NSWindow;
    friend class WindowPainter;
    friend struct WindowState;
    friend class WindowTracking;
    struct Extras;
    struct SubviewBlocks;

    Extras& extras();
    std::size_t indexOfSubview(NSView* view);
    void insertSubview(NSView* view, std::size_t index, const char* operation);
    void remove(bool marks);
    void setWindow(NSWindow* window);
    void noteListChange();
    void noteGeometryChange();
    void noteFrameChange();
    void noteBoundsChange();
    void postBoundsChange();
    void placeOrigin(NSPoint origin);
    void placeSize(NSSize size);
    void markFrame();
    void linkKeyView(NSView* next);
    NSView* validKeyView(NSView* (NSView::*step)());
    ViewTransform transformToSuperview();
    ViewTransform transformToBase();
    ViewTransform transformFrom(NSView* view);
    template <class Visit>
    void eachSubviewIn(const ViewRect& rect, bool frontFirst, const Visit& visit);

    Unretained<NSView> _superview = nullptr;
    Unretained<NSWindow> _window = nullptr;
    std::vector<Retained<NSView>> _subviews;
    NSRect _frame;
    NSPoint _boundsOrigin;
    double _scaleX = 1;  // points of the superview a unit
    double _scaleY = 1;
    std::unique_ptr<Extras> _extras;
    std::unique_ptr<SubviewBlocks> _blocks;
    std::uint8_t _autoresizingMask = 0;
    bool _isHidden : 1;
    bool _autoresizesSubviews : 1;
    bool _postsFrameChanges : 1;
    bool _postsBoundsChanges : 1;
    bool _delaysFrameNotice : 1;
};

// Drawing with the current graphics context and its colour.

/// Fills the rectangle.
PELVOR_EXPORT void NSRectFill(NSRect rect);
/// Fills so many rectangles.
PELVOR_EXPORT void NSRectFillList(const NSRect* rects, NSInteger count);
/// Draws a line of that thickness along the inside of the rectangle's edges.
PELVOR_EXPORT void NSFrameRectWithWidth(NSRect rect, float width);
/// The same, one point thick.
PELVOR_EXPORT void NSFrameRect(NSRect rect);
/// Clips further drawing to the rectangle.
PELVOR_EXPORT void NSRectClip(NSRect rect);
/// The system's sound for what cannot be done.
PELVOR_EXPORT void NSBeep();

}  // namespace pelvor
