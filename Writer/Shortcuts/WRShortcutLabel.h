// SPDX-License-Identifier: Apache-2.0
// WRShortcutLabel: shows the keys that were pressed while more are waited for.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

class NSWindow;

/// A line of text in a small window.
class WRShortcutLabel final : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRShortcutLabel, NSView);
    PELVOR_CREATORS();

  public:
    // C++ only
    /// A window, not shown yet, in the lower left corner of the other one, above a status line.
    static Retained<NSWindow> windowWithText(NSString* text, NSWindow* over);

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;

  protected:
    WRShortcutLabel() = default;
    ~WRShortcutLabel() = default;

  private:
    Retained<NSString> _text;
};

}  // namespace pelvor
