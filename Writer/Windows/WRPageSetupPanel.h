// SPDX-License-Identifier: Apache-2.0
// WRPageSetupPanel: the paper, the margins, the header and the footer of a document.
#pragma once

#include <functional>

#include "Foundation/NSString.h"

namespace pelvor {

class NSAttributedString;
class NSButton;
class NSDictionary;
class NSMutableDictionary;
class NSPopUpButton;
class NSTextField;
class StyleSheet;
class WRFormView;
class WRPalette;

/// A panel in which the user chooses the size of the paper, which way round it is, the margins, in
/// millimetres, a header, and whether the footer has the number of the page. Main thread.
class WRPageSetupPanel : public NSObject {
    PELVOR_CLASS(WRPageSetupPanel, NSObject);

  public:
    // C++ only
    /// Shows the settings, which are those of PlugInProtocol.h. The function is given the settings that the
    /// user has changed; it returns whether they leave room for text. New headers and
    /// footers are in the styles "header" and "footer" of the sheet; those switched off are empty.
    static Retained<WRPageSetupPanel> create(NSDictionary* settings, const StyleSheet& sheet,
                                             std::function<bool(NSDictionary*)> apply);

    /// Until the user accepts settings that can be applied, or cancels.
    void runModal();
    WRPalette* window() { return _panel; }
    NSButton* headerBox() { return _hasHeader; }
    NSTextField* headerField() { return _headerText; }
    NSButton* pageNumberBox() { return _hasPageNumber; }
    /// The tag of the pop-up button with the orientations.
    static constexpr int kOrientationTag = 1;
    /// What the box for the header does.
    void headerDidChange(id sender);
    void accept(id sender);
    void cancel(id sender);

  protected:
    WRPageSetupPanel() = default;
    ~WRPageSetupPanel();

  private:
    struct Margin {
        NSString* key;
        Retained<NSTextField> field;
        Retained<NSString> shown;  // at first
    };

    void makePanel();
    void addLines(WRFormView* form);
    NSDictionary* chosenSettings();
    NSInteger shownOrientation() { return _width > _height; }
    void setLines(NSMutableDictionary* settings);
    NSAttributedString* shownLine(NSString* key);

    std::function<bool(NSDictionary*)> _apply;
    Retained<NSDictionary> _settings;         // as they were
    Retained<NSDictionary> _header, _footer;  // attributes of new ones
    float _width = 0, _height = 0;            // of the paper as it was
    NSInteger _shownPaper = 0;
    Retained<WRPalette> _panel;
    Retained<NSPopUpButton> _paper, _orientation;
    Margin _margins[4];
    Retained<NSButton> _hasHeader, _hasPageNumber;
    Retained<NSTextField> _headerText;
    Retained<NSTextField> _message;
};

}  // namespace pelvor
