// SPDX-License-Identifier: Apache-2.0
// WRPreferencesPanel: the settings that the user can change.
#pragma once

#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSButton;
class NSNotification;
class NSPopUpButton;
class WRPalette;

/// A panel with the settings of Preferences.h. What is chosen is in the user defaults at once, and so in use
/// in all windows; what others set there is shown. Main thread.
class WRPreferencesPanel : public NSObject {
    PELVOR_CLASS(WRPreferencesPanel, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRPreferencesPanel> init(Class* cls = classObject());

    WRPalette* window() { return _panel; }

    /// The senders are boxes and pop-up buttons of the panel.
    void takeBox(id sender);
    void takePopUp(id sender);
    void defaultsDidChange(NSNotification* notification);

  protected:
    WRPreferencesPanel() = default;
    ~WRPreferencesPanel();

  private:
    struct Box {
        NSString* key;
        Retained<NSButton> button;
    };
    /// Each item of the menu represents a value.
    struct Choice {
        NSString* key;
        Retained<NSPopUpButton> button;
    };
    void makePanel();
    void showValues();

    Retained<WRPalette> _panel;
    std::vector<Box> _boxes;
    std::vector<Choice> _choices;
};

}  // namespace pelvor
