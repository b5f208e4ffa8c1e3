// SPDX-License-Identifier: Apache-2.0
// ToolTipView: the text that is shown when the pointer rests over a view.
#pragma once

#include "Foundation/NSTimer.h"
#include "Interface/NSWindow.h"

namespace pelvor {

/// The contents of the one window with a tip; it waits, shows itself and goes.
class ToolTipView final : public NSView {
    PELVOR_CLASS(ToolTipView, NSView);

  public:
    /// The pointer has moved to that place on the screen, over the view or over one inside it; null for none.
    static void follow(NSView* view, NSPoint place);
    static void hide();

    void show(NSTimer* timer);
    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;

  private:
    ToolTipView() = default;
    ~ToolTipView() = default;
    static Retained<ToolTipView>& current();

    WeakHandle _view;
    Retained<NSTimer> _timer;
    Retained<NSWindow> _tip;
    Retained<NSString> _text;
    NSPoint _place;
};

}  // namespace pelvor
