// SPDX-License-Identifier: Apache-2.0
// WRPageSetupPanel: the paper and the margins of a document.
#pragma once

#include <functional>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class NSPanel;
class NSPopUpButton;
class NSTextField;

/// A panel in which the user chooses the size of the paper, which way round it is, and the margins, in
/// millimetres. Main thread.
class WRPageSetupPanel : public NSObject {
    PELVOR_CLASS(WRPageSetupPanel, NSObject);

  public:
    // C++ only
    /// Shows the settings, which are those of PlugInProtocol.h. The function is given the settings that the
    /// panel has fields for; it returns whether they leave room for text.
    static Retained<WRPageSetupPanel> create(NSDictionary* settings,
                                             std::function<bool(NSDictionary*)> apply);

    /// Until the user accepts settings that can be applied, or cancels.
    void runModal();
    NSPanel* window() { return _panel; }
    /// The tag of the pop-up button with the orientations.
    static constexpr int kOrientationTag = 1;
    void accept(id sender);
    void cancel(id sender);

  protected:
    WRPageSetupPanel() = default;
    ~WRPageSetupPanel();

  private:
    struct Margin {
        NSString* key;
        Retained<NSTextField> field;
    };

    void makePanel(NSDictionary* settings);
    NSDictionary* chosenSettings();

    std::function<bool(NSDictionary*)> _apply;
    float _width = 0, _height = 0;  // of the paper as it was
    Retained<NSPanel> _panel;
    Retained<NSPopUpButton> _paper, _orientation;
    Margin _margins[4];
    Retained<NSTextField> _message;
};

}  // namespace pelvor
