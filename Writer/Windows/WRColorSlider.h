// SPDX-License-Identifier: Apache-2.0
// WRColorSlider: a strip of colours with a knob.
#pragma once

#include <functional>

#include "Interface/NSView.h"
#include "Writer/Windows/ColorParts.h"

namespace pelvor {

/// Sets one part of a colour; a strip shows what that part is about. The hue of a grey gives it saturation,
/// and black becomes brighter with either, so that something is seen of them. The knob is dragged, or moved
/// by the arrow keys, in larger steps with Shift, and to the ends by Home and End. Main thread.
class WRColorSlider : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRColorSlider, NSView);

  public:
    // C++ only
    using Part = float ColorParts::*;
    /// The functions hear of each change by the user, and that a key or the mouse has been let go.
    static Retained<WRColorSlider> create(Part part, std::function<void(ColorParts)> changed,
                                          std::function<void()> released);

    void setColorParts(ColorParts parts);

    bool isFlipped() override { return true; }
    bool acceptsFirstResponder() override { return true; }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void mouseDragged(NSEvent* event) override;
    void mouseUp(NSEvent* event) override;
    void keyDown(NSEvent* event) override;
    void keyUp(NSEvent* event) override;

  protected:
    WRColorSlider() = default;
    ~WRColorSlider() = default;

  private:
    NSRect strip();
    void change(float value);

    Part _part = &ColorParts::hue;
    ColorParts _parts;
    std::function<void(ColorParts)> _changed;
    std::function<void()> _released;
};

}  // namespace pelvor
