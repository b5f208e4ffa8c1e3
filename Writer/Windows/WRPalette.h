// SPDX-License-Identifier: Apache-2.0
// WRPalette: a panel that is looked at and put away.
#pragma once

#include "Interface/NSPanel.h"

namespace pelvor {

/// A panel that Escape closes, unless a view in it has another use for the key. Main thread.
class WRPalette : public NSPanel, NSPanel::HiddenCreators {
    PELVOR_CLASS(WRPalette, NSPanel);

  public:
    // C++ only
    static Retained<WRPalette> create(NSRect contentRect, NSUInteger styleMask);

    /// Where it is not seen yet, it comes up beside the other window, or at the edge of the screen for null.
    void showBeside(NSWindow* other);
    /// The command of Escape.
    void cancelOperation(id sender) { performClose(sender); }
    /// A key that no view wanted.
    void keyDown(NSEvent* event) override;

  protected:
    WRPalette() = default;
    ~WRPalette() = default;
};

}  // namespace pelvor
