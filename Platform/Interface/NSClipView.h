// SPDX-License-Identifier: Apache-2.0
// NSClipView: shows a part of a larger view.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

class NSColor;

/// Shows the part of its document view that lies inside its bounds; to scroll is to move the origin of the
/// bounds. A clip view is as flipped as its document view. Scroll views have a clip view for their document;
/// whoever scrolls for the user goes through `NSScrollView::scrollClipView_toPoint`. Main thread.
class PELVOR_EXPORT NSClipView : public NSView {
    PELVOR_CLASS(NSClipView, NSView);
    PELVOR_CREATORS(initWithFrame);

  public:
    static Retained<NSClipView> initWithFrame(NSRect frame, Class* cls = classObject());

    /// The view of which a part is shown, or null.
    NSView* documentView() { return _documentView; }
    /// Takes the place of the old document view, and shows the beginning of the new one.
    virtual void setDocumentView(NSView* view);
    /// The document's frame, made large enough to fill the clip view.
    NSRect documentRect();
    /// What can be seen, in the coordinates of the document view.
    NSRect documentVisibleRect();

    /// Moves the origin of the bounds to the point, as it stands. What was seen before is moved on the
    /// screen, and what comes into sight is drawn.
    void scrollToPoint(NSPoint point);
    /// The nearest point to which may be scrolled: the document fills the clip view, or else begins at the
    /// clip view's beginning.
    virtual NSPoint constrainScrollPoint(NSPoint point);
    /// Scrolls, as the user does, as little as shows the rectangle, which is in the clip view's coordinates;
    /// the upper left part of one that is too large. Has the views around show it too. Returns whether
    /// anything moved.
    bool scrollRectToVisible(NSRect rect) override;
    /// Scrolls, as the user does, so that the clip view's contents begin at the point.
    void scrollPoint(NSPoint point) override;
    /// Whether a scroll moves what is on the screen, true at first; else all is drawn again.
    bool copiesOnScroll() { return _copiesOnScroll; }
    void setCopiesOnScroll(bool copies) { _copiesOnScroll = copies; }

    bool drawsBackground() { return _drawsBackground; }
    void setDrawsBackground(bool draws);
    /// Null stands for the colour behind controls.
    NSColor* backgroundColor() { return _backgroundColor; }
    void setBackgroundColor(NSColor* color);

    // Of the superclass

    bool isFlipped() override;
    bool isOpaque() override;
    void drawRect(NSRect dirty) override;
    void setFrameSize(NSSize size) override;
    void willRemoveSubview(NSView* view) override;

  protected:
    NSClipView() = default;
    ~NSClipView();

  private:
    void documentDidChange(id notification);
    void watchDocument(bool watches);
    void scrollAsUser(NSPoint point);

    Unretained<NSView> _documentView = nullptr;  // a subview
    Retained<NSColor> _backgroundColor;
    bool _drawsBackground = true;
    bool _copiesOnScroll = true;
    bool _isCorrecting = false;
};

}  // namespace pelvor
