// SPDX-License-Identifier: Apache-2.0
// WRZoomView: shows another view larger or smaller.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

/// The document view of a scroll view that shows a view at a zoom factor, in the middle where there is more
/// room than it needs. Views inside ask for the factor by `zoom`. Main thread.
class WRZoomView : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRZoomView, NSView);

  public:
    // C++ only
    static Retained<WRZoomView> create(NSView* content);

    double zoom() { return _zoom; }
    /// What is seen in the middle stays there; of content that is seen whole, the top. The factor is moved
    /// into 0.1 to 8.
    void setZoom(double zoom);
    NSView* content() { return _content; }
    /// Follows the sizes of the content and of the clip view.
    void fitToContent();

    bool isFlipped() override { return true; }
    void contentDidChange(id notification);
    void viewDidMoveToSuperview() override;
    /// With Ctrl, sends zoomIn: or zoomOut: along the chain of responders, and keeps the place under the
    /// pointer.
    void scrollWheel(NSEvent* event) override;

  protected:
    WRZoomView() = default;
    ~WRZoomView();

  private:
    void fitToRoom(NSSize room);

    Retained<NSView> _content;
    double _zoom = 1;
    bool _isFitting = false;
};

}  // namespace pelvor
