// SPDX-License-Identifier: Apache-2.0
// WRSaveChoices: which kind of file a document is saved as, and in which encoding.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSPopUpButton;
class NSSavePanel;
class NSView;
class PBProfile;
class WRDocument;

/// The part of a save panel that lets the user choose the kind of the file, one for each writer, and, for
/// kinds that are text, the encoding. Main thread.
///
///     auto choices = WRSaveChoices::create(document, nullptr);
///     choices->attachToPanel(panel);
///     if (panel->runModal() == NSOKButton) write(panel->filename(), choices->encodingName());
class WRSaveChoices : public NSObject {
    PELVOR_CLASS(WRSaveChoices, NSObject);

  public:
    // C++ only
    /// Begins with the writer's kind; null stands for the one that fits the document best.
    static Retained<WRSaveChoices> create(WRDocument* document, PBProfile* writer);
    /// A writer that keeps all formats; null if there is none.
    static PBProfile* richWriter();
    /// The names of encodings that users may choose, borrowed.
    static NSArray* usualEncodings();
    /// A view for a panel with so many lines of labels and pop-up buttons, and one of them, counted from
    /// below.
    static Retained<NSView> viewWithLines(int count);
    static Retained<NSPopUpButton> addLine(NSView* view, NSString* label, int line);

    void attachToPanel(NSSavePanel* panel);
    /// The profile of the chosen writer; null if there are no writers.
    PBProfile* writer();
    /// The extension that files of the chosen kind have; null for any.
    NSString* extension();
    /// Null for the document's own encoding, and where the kind has no choice of encodings.
    NSString* encodingName();

    /// What the buttons do.
    void kindDidChange(id sender);
    /// The panel's question. An extension of another kind chooses that kind.
    NSString* panel_nameForTypedName(id panel, NSString* name);

  protected:
    WRSaveChoices() = default;
    ~WRSaveChoices();

  private:
    void makeView();
    void fillEncodings();
    NSInteger indexOfKindForName(NSString* name);

    Retained<WRDocument> _document;
    Retained<NSArray> _writers;
    Retained<NSView> _view;
    Retained<NSPopUpButton> _kinds, _encodings;
    Retained<NSSavePanel> _panel;
};

}  // namespace pelvor
