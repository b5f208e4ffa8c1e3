// SPDX-License-Identifier: Apache-2.0
// NSScrollView: a view of which the user sees a part, with scrollers.
#pragma once

#include "Interface/NSClipView.h"
#include "Interface/NSScroller.h"

namespace pelvor {

enum NSBorderType : int {
    NSNoBorder = 0,
    NSLineBorder = 1,
    NSBezelBorder = 2,  ///< looks as NSLineBorder
    NSGrooveBorder = 3,
};

/// Shows a part of a document view, with scrollers that say which:
///
///     auto scrollView = NSScrollView::initWithFrame({{0, 0}, {400, 300}});
///     scrollView->setHasVerticalScroller(true);
///     scrollView->setDocumentView(page);
///     page->scrollPoint({0, 1200});
///
/// A document view with the operation `headerView` has the view that this returns shown above it, moving to
/// the left and right with the document. Main thread.
class PELVOR_EXPORT NSScrollView : public NSView {
    PELVOR_CLASS(NSScrollView, NSView);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// With a clip view and without scrollers.
    static Retained<NSScrollView> initWithFrame(NSRect frame, Class* cls = classObject());

    // Parts. Borrowed, or null.

    NSView* documentView();
    void setDocumentView(NSView* view);
    /// In the coordinates of the document view.
    NSRect documentVisibleRect();
    NSClipView* contentView() { return _clipView; }
    /// Raises NSInvalidArgumentException for null.
    void setContentView(NSClipView* clipView);
    NSScroller* verticalScroller() { return _vertical; }
    NSScroller* horizontalScroller() { return _horizontal; }
    bool hasVerticalScroller() { return _vertical != nullptr; }
    void setHasVerticalScroller(bool has);
    bool hasHorizontalScroller() { return _horizontal != nullptr; }
    void setHasHorizontalScroller(bool has);
    /// Whether a scroller goes away while everything is seen; false at first.
    bool autohidesScrollers() { return _autohides; }
    void setAutohidesScrollers(bool autohides);
    NSBorderType borderType() { return _borderType; }
    void setBorderType(NSBorderType type);
    bool drawsBackground();
    void setDrawsBackground(bool draws);
    NSColor* backgroundColor();
    void setBackgroundColor(NSColor* color);

    // Sizes

    /// What is left for the document.
    NSSize contentSize();
    static NSSize frameSizeForContentSize_hasHorizontalScroller_hasVerticalScroller_borderType(
        NSSize size, bool hasHorizontal, bool hasVertical, NSBorderType border);
    static NSSize contentSizeForFrameSize_hasHorizontalScroller_hasVerticalScroller_borderType(
        NSSize size, bool hasHorizontal, bool hasVertical, NSBorderType border);
    /// How far a line of the mouse wheel goes, 16 points at first, and what of the old page stays in sight
    /// when a page is turned, 16 points at first.
    float lineScroll() { return _lineScroll; }
    void setLineScroll(float length) { _lineScroll = length; }
    float pageScroll() { return _pageScroll; }
    void setPageScroll(float length) { _pageScroll = length; }

    // Scrolling

    /// Every scroll of the user comes through here: moves the clip view's origin to the point, as
    /// `constrainScrollPoint` allows, and has the scrollers follow.
    virtual void scrollClipView_toPoint(NSClipView* clipView, NSPoint point);
    /// The clip view shows another part, or its document has another size: the scrollers follow.
    virtual void reflectScrolledClipView(NSClipView* clipView);
    /// Places the parts; called after changes of the size or of what there is.
    virtual void tile();

    // Of the superclass

    bool isFlipped() override { return true; }
    bool isOpaque() override { return drawsBackground(); }
    void drawRect(NSRect dirty) override;
    void scrollWheel(NSEvent* event) override;
    void setFrameSize(NSSize size) override;
    void resizeSubviewsWithOldSize(NSSize oldSize) override;

  protected:
    NSScrollView() = default;
    ~NSScrollView() = default;

  private:
    void scrollByScroller(NSScroller* scroller);
    void scrollBy(NSSize distance);
    void setHasScroller(Retained<NSScroller>& scroller, bool has, NSSize size);
    struct Scrollers {
        bool vertical, horizontal;
        friend bool operator==(const Scrollers&, const Scrollers&) = default;
    };
    NSRect room();
    float headerHeight();
    Scrollers wantedScrollers();
    Scrollers shownScrollers();
    void takeHeader();

    Retained<NSClipView> _clipView;
    Retained<NSScroller> _vertical, _horizontal;
    Retained<NSClipView> _headerClip;  // while the document view has a header
    NSBorderType _borderType = NSNoBorder;
    float _lineScroll = 16;
    float _pageScroll = 16;
    bool _autohides = false;
    bool _isTiling = false;
};

}  // namespace pelvor
