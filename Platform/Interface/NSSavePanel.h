// SPDX-License-Identifier: Apache-2.0
// NSSavePanel: asks the user where to save a file, and under which name.
#pragma once

#include <vector>

#include "Interface/NSPanel.h"

namespace pelvor {

class FilePanelView;
class NSArray;

/// What `runModal` of the two panels for files returns.
enum : NSInteger {
    NSCancelButton = 0,
    NSOKButton = 1,
    NSFileHandlingPanelCancelButton = NSCancelButton,
    NSFileHandlingPanelOKButton = NSOKButton,
};

/// The user default that keeps the folder in which the user chose a file last; both panels begin there.
inline constexpr NSString* PelvorPanelFolder = u"PelvorPanelFolder"_ns;

/// Asks the user where to save a file, and under which name:
///
///     NSSavePanel* panel = NSSavePanel::savePanel();
///     panel->setAllowedFileTypes(NSArray::of({u"rtf"_ns}));
///     if (panel->runModalForDirectory_file(nullptr, u"Letter.rtf"_ns) == NSOKButton)
///         save(panel->filename());                       // "/home/anna/Documents/Letter.rtf"
///
/// A pop-up button names the folder, those around it, and other places; a table shows what is in the folder.
/// The user opens folders by a double click or Return, goes up with Backspace, finds names by typing, shows
/// hidden files with Ctrl+H, and goes to any folder by typing a path that begins with "/" or "~". A folder
/// that is on show is read again when the panel becomes the key window and the folder has changed.
///
/// The panel tells the user why a name or a folder cannot be used, and asks before a file is replaced. So a
/// path that it returns has a name that the file system can have, in a folder that the user may write to,
/// and what it names may be replaced.
///
/// **The delegate** may have, besides the messages of a window's delegate:
///
///     (bool)panel:(id) shouldShowFilename:(NSString*)        // for each entry of a folder, by its path
///     (NSString*)panel:(id) nameForTypedName:(NSString*)     // what a typed name stands for; may set the
///     types (bool)panel:(id) isValidFilename:(NSString*)           // for each chosen path; says itself why
///     not (void)panel:(id) directoryDidChange:(NSString*) (void)panelSelectionDidChange:(id)
///
/// All properties keep their values from run to run; those that are shown can be changed during a run. Null
/// as a text stands for the first one, in the user's language. Main thread.
class PELVOR_EXPORT NSSavePanel : public NSPanel {
    PELVOR_CLASS(NSSavePanel, NSPanel);
    PELVOR_CREATORS(savePanel, initWithContentRect_styleMask_backing_defer);

  public:
    /// A new panel. Borrowed.
    static NSSavePanel* savePanel(Class* cls = classObject());
    /// The same, with another size. A panel for files always has a title bar and can be resized.
    static Retained<NSSavePanel> initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                             NSUInteger styleMask,
                                                                             NSBackingStoreType backing,
                                                                             bool defer,
                                                                             Class* cls = classObject());

    // Running

    /// Shows the panel until the user has chosen a file or cancels. Returns NSOKButton or NSCancelButton.
    /// Where nobody can choose a file, in a program without a display outside NSApplication's `run`, it logs
    /// the title and returns NSCancelButton.
    NSInteger runModal();
    /// The same with a folder to begin with and a name to save under. A null folder leaves the choice as
    /// `setDirectory` does, a null name the name as it is.
    NSInteger runModalForDirectory_file(NSString* directory, NSString* name);
    /// What the two buttons do. They do nothing while the panel does not run.
    void ok(id sender);
    void cancel(id sender);
    /// Cancels in the place of closing.
    bool windowShouldClose(id sender);

    /// The path that the user chose in the last run; null unless that returned NSOKButton.
    NSString* filename();
    /// The folder on show, or the one to begin with. Null if nothing was set and the panel has not run.
    NSString* directory();
    /// The folder to begin with, or to show now. Null, and a folder that cannot be read, stand for the folder
    /// in which the user chose a file last, or else the user's documents.
    void setDirectory(NSString* path);
    /// The name in the field, "" at first.
    NSString* nameFieldStringValue();
    void setNameFieldStringValue(NSString* name);

    // Texts

    /// Of the button that accepts: "Save", or "Open".
    NSString* prompt();
    void setPrompt(NSString* prompt);
    /// Explains what is to be chosen, above all else; "" at first.
    NSString* message();
    void setMessage(NSString* message);
    /// In front of the name field: "Save as:".
    NSString* nameFieldLabel();
    void setNameFieldLabel(NSString* label);
    /// Of the window: "Save", or "Open". Null stands for that one.
    void setTitle(NSString* title) override;

    // What can be chosen

    /// Extensions without the dot, in any case of letters. Other files are shown in grey and cannot be
    /// chosen. A name to save under gets the first extension unless it has one of them. Null, as at first,
    /// and an empty array allow all files.
    NSArray* allowedFileTypes() { return _types; }
    void setAllowedFileTypes(NSArray* types);
    /// The first of the allowed types, or null; sets the only one. A panel that runs replaces the former
    /// type in the name field.
    NSString* requiredFileType();
    void setRequiredFileType(NSString* type);
    /// Whether a name with another extension keeps it; false at first.
    bool allowsOtherFileTypes() { return _allowsOtherTypes; }
    void setAllowsOtherFileTypes(bool allows) { _allowsOtherTypes = allows; }
    /// Whether there is a button that makes a folder; true at first.
    bool canCreateDirectories() { return _canCreateDirectories; }
    void setCanCreateDirectories(bool can);
    /// Whether names that begin with a dot are shown; false at first.
    bool showsHiddenFiles() { return _showsHiddenFiles; }
    void setShowsHiddenFiles(bool shows);
    /// Reads the folder on show again and asks the delegate about each entry.
    void validateVisibleColumns();

    /// A view of the program below the table, such as a choice of formats, or null. It keeps its height
    /// and is as wide as the panel if its autoresizing mask says so.
    NSView* accessoryView() { return _accessoryView; }
    void setAccessoryView(NSView* view);

    void becomeKeyWindow() override;

    // C++ only

    /// Whether the panel asks for a name to save under.
    virtual bool isSaving() { return true; }
    virtual bool choosesFiles() { return true; }
    virtual bool choosesDirectories() { return false; }
    virtual bool choosesSeveral() { return false; }
    /// Whether a file of that name has one of the allowed types.
    bool allowsName(NSString* name);
    /// The name with the extension that it is to have.
    NSString* completedName(NSString* name);
    /// Ends the run with these paths, unless the delegate finds one of them not valid.
    void accept(NSArray* paths);

  protected:
    NSSavePanel();
    ~NSSavePanel();

    /// The paths that the user chose in the last run.
    NSArray* chosenPaths() { return _paths; }

  private:
    void endRun();
    std::vector<NSString*> foldersToBeginWith();
    void refresh();

    Retained<FilePanelView> _view;  // while the panel runs
    Retained<NSArray> _types, _paths;
    Retained<NSString> _directory, _name, _prompt, _message, _nameLabel;
    Retained<NSView> _accessoryView;
    bool _allowsOtherTypes = false, _canCreateDirectories = true, _showsHiddenFiles = false;
};

}  // namespace pelvor
