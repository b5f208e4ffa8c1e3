// SPDX-License-Identifier: Apache-2.0
// WRRulerGuide: the line that shows a place of the ruler in the pages.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

class NSColor;

/// A view that is filled with the colour of the ruler's marks. Main thread.
class WRRulerGuide : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRRulerGuide, NSView);

  public:
    // C++ only
    static Retained<WRRulerGuide> create();
    /// Borrowed.
    static NSColor* color();

    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;

  protected:
    WRRulerGuide() = default;
    ~WRRulerGuide() = default;
};

}  // namespace pelvor
