// SPDX-License-Identifier: Apache-2.0
// AlertView: the contents of an alert panel.
#pragma once

#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSAlert;
class NSWindow;

/// Shows an alert's texts and picture, with the buttons below, from the language's leading edge; the first
/// button stands at the trailing edge. Escape presses an only button, and a first
/// one that cancels.
class AlertView final : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(AlertView, NSView);
    PELVOR_CREATORS();

  public:
    /// A panel in the middle of the screen that is as high as the texts need.
    static Retained<NSWindow> windowFor(NSAlert* alert);

    bool isFlipped() override { return true; }
    void drawRect(NSRect dirty) override;
    bool performKeyEquivalent(NSEvent* event) override;

  protected:
    AlertView() = default;
    ~AlertView() = default;

  private:
    void layOut(NSAlert* alert);
    Retained<NSAlert> alert();

    WeakHandle _alert;  // somebody may hold the window longer than the alert runs
    NSRect _iconRect, _messageRect, _informativeRect;
};

}  // namespace pelvor
