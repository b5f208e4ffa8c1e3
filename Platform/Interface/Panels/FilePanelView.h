// SPDX-License-Identifier: Apache-2.0
// FilePanelView: the contents of a panel for files.
#pragma once

#include "Interface/NSPopUpButton.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTableView.h"
#include "Interface/NSTextField.h"
#include "Interface/Panels/FolderListing.h"

namespace pelvor {

class NSSavePanel;

/// What a panel for files shows while it runs, and what the user can do there. It is the data source and the
/// delegate of its table, and the delegate of the field for a name or a path.
class FilePanelView final : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(FilePanelView, NSView);
    PELVOR_CREATORS();

  public:
    // C++ only

    static Retained<FilePanelView> viewFor(NSSavePanel* panel);
    /// Shows the first of the folders that can be read.
    void begin(const std::vector<NSString*>& folders, NSString* name);
    /// The panel runs no longer.
    void end() { _panel = nullptr; }

    NSString* folder() { return _listing.folder(); }
    /// The name in the field, without a path that is being typed.
    NSString* name();
    void setName(NSString* name);
    /// Shows the folder. Returns false, and tells the user why if `complains`, if it cannot be read.
    bool showFolder(NSString* path, bool complains);
    /// Reads the folder again, and goes up if it has gone. The same entries stay selected.
    void readAgain();
    void readAgainIfChanged();
    /// Texts, buttons or the accessory view of the panel have changed.
    void refresh();
    /// What the button that accepts does.
    void accept();

    // What the parts of the view send

    NSInteger numberOfRowsInTableView(id table);
    id tableView_objectValueForTableColumn_row(id table, NSTableColumn* column, NSInteger row);
    void tableView_setObjectValue_forTableColumn_row(id table, id value, id column, NSInteger row);
    void tableView_willDisplayCell_forTableColumn_row(id table, NSCell* cell, id column, NSInteger row);
    bool tableView_shouldSelectRow(id table, NSInteger row);
    void tableViewSelectionDidChange(id notification);
    void controlTextDidChange(id notification);
    void controlTextDidEndEditing(id notification);
    void openRow(id sender);
    void choosePlace(id sender);
    void makeFolder(id sender);

    bool isFlipped() override { return true; }
    void setFrameSize(NSSize size) override;
    void keyDown(NSEvent* event) override;
    bool performKeyEquivalent(NSEvent* event) override;

  protected:
    FilePanelView() = default;
    ~FilePanelView() = default;

  private:
    void makeParts();
    void makeTable();
    Retained<NSButton> button(NSString* title, id target, SEL action, NSString* key);
    void layOut();
    void place(NSView* view, NSRect rect);
    void fillPlaces();
    void selectionChanged();
    void selectNames(NSArray* names);
    NSArray* selectedNames();
    bool canChoose(const FolderListing::Row& row);
    /// The selected folder if nothing else is selected, else null.
    NSString* selectedFolder();

    bool isPath(NSString* text);
    NSString* typedText();
    void typePath(NSString* text);
    void leavePath();
    void selectStem();
    void typeSelect(NSString* characters);
    void goUp();

    void acceptTyped(NSString* text);
    void acceptSelection();
    void acceptName(NSString* name);
    bool mayReplace(NSString* path);
    bool mayOpen(NSString* path);
    void accept(NSArray* paths);

    Unretained<NSSavePanel> _panel = nullptr;  // it keeps the view as long as it runs
    FolderListing _listing;
    Retained<NSTableView> _table;
    Retained<NSScrollView> _scrollView;
    Retained<NSPopUpButton> _places;
    Retained<NSTextField> _message, _label, _field;
    Retained<NSButton> _newFolder, _cancel, _accept;
    Retained<NSView> _accessory;
    Retained<NSString> _name;  // in the field before a path was typed there
    std::u16string _typed;
    double _typeTime = 0;
    bool _isNamingFolder = false;  // the first row is a folder that does not exist yet
    bool _showsField = false;
};

}  // namespace pelvor
