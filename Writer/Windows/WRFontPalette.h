// SPDX-License-Identifier: Apache-2.0
// WRFontPalette: a panel with the machine's fonts.
#pragma once

#include <optional>

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSFont;
class NSTableColumn;
class NSTableView;
class NSTextField;
class NSView;
class WRPalette;

/// A panel with tables of font families, of the faces of a family, and of sizes. It shows the font of the
/// selection in the document in front, and what the user selects, by a click or by typing the first letters,
/// the text gets at once: the family alone, the face or the size, so that the rest of a text in several fonts
/// stays. While keys are pressed, it waits until they pause, so that a typed name is one step to undo. Sends
/// `changeFont:` along the chain of responders. Main thread.
class WRFontPalette : public NSObject {
    PELVOR_CLASS(WRFontPalette, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRFontPalette> init(Class* cls = classObject());

    WRPalette* window() { return _window; }

    /// The font with what the user has selected last.
    NSFont* convertFont(NSFont* font);
    /// The sender's value is a size in points.
    void takeSizeFrom(id sender);
    /// The selection or its formats may have changed.
    void formatsDidChange(id notification);

    // The tables' data source and delegate
    int numberOfRowsInTableView(NSTableView* table);
    id tableView_objectValueForTableColumn_row(NSTableView* table, NSTableColumn* column, NSInteger row);
    void tableViewSelectionDidChange(id notification);
    /// Does what waits for a pause.
    void applyPending();
    void windowDidBecomeKey(id notification);
    void windowDidResignKey(id notification);

  protected:
    WRFontPalette();
    ~WRFontPalette();

  private:
    enum class Change { family, face, size };

    void makeWindow();
    Retained<NSTableView> addTable(NSRect frame, NSString* title, NSUInteger autoresizing);
    Retained<NSTextField> addField(NSRect frame, bool isEditable);
    void selectRow(NSTableView* table, NSInteger row);
    void showFont(NSFont* font);
    void send(Change change);
    void sendSoon(Change change);

    Retained<WRPalette> _window;
    Retained<NSTableView> _families, _faces, _sizes;
    Retained<NSTextField> _size, _sample, _message;
    Retained<NSArray> _familyNames;
    Retained<NSArray> _members;  // of the family that is shown: names, weights and traits
    Retained<NSFont> _shown;
    Change _change = Change::family;
    std::optional<Change> _pending;
    float _wantedSize = 12;
    bool _isShowing = false;  // rows are selected to show a font
};

}  // namespace pelvor
