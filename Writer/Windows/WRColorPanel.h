// SPDX-License-Identifier: Apache-2.0
// WRColorPanel: a panel in which the user mixes a colour for text.
#pragma once

#include <optional>
#include <vector>

#include "Runtime/WeakHandle.h"
#include "Writer/Windows/ColorParts.h"

namespace pelvor {

class NSButton;
class NSTextField;
class WRColorSlider;
class WRPalette;

/// A panel with a field for a colour's digits, sliders, and the colours that were used last. It shows the
/// colour of the selection in the document in front, which takes on each change at once; all changes of one
/// selection are one step to undo. Main thread.
class WRColorPanel : public NSObject {
    PELVOR_CLASS(WRColorPanel, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRColorPanel> init(Class* cls = classObject());

    WRPalette* window() { return _window; }

    /// The sender's value are the digits of a colour.
    void takeDigitsFrom(id sender);
    /// Digits are typed.
    void controlTextDidChange(id notification);
    /// The sender's tag is the place of a colour that was used last.
    void takeRecentColorFrom(id sender);
    /// The selection or its formats may have changed.
    void formatsDidChange(id notification);
    void windowDidBecomeKey(id notification);
    void windowDidResignKey(id notification);
    void windowWillClose(id notification);

  protected:
    WRColorPanel() = default;
    ~WRColorPanel();

  private:
    void makeWindow();
    void show(ColorParts parts);
    void apply(ColorParts parts);
    void showUsedColor();
    void endStep();
    void showRecentColors();

    Retained<WRPalette> _window;
    Retained<NSTextField> _digits, _message;
    std::vector<Retained<WRColorSlider>> _sliders;
    std::vector<Retained<NSButton>> _recent;
    ColorParts _parts;
    std::optional<WeakHandle> _changed;   // whose text has the colour of the step that goes on
    Retained<NSArray> _recentBeforeStep;  // the digits of the colours that were used last
    bool _isApplying = false;
};

}  // namespace pelvor
