// SPDX-License-Identifier: Apache-2.0
// NSOpenPanel: asks the user which files or folders to open.
#pragma once

#include "Interface/NSSavePanel.h"

namespace pelvor {

/// Asks the user which files or folders to open:
///
///     NSOpenPanel* panel = NSOpenPanel::openPanel();
///     panel->setAllowsMultipleSelection(true);
///     if (panel->runModalForTypes(NSArray::of({u"rtf"_ns, u"txt"_ns})) == NSOKButton)
///         for (id path : panel->filenames()) open(static_cast<NSString*>(path));
///
/// All that NSSavePanel says holds, but there is no field for a name: a path that the user types appears in a
/// field of its own. Return opens a selected folder; where folders can be chosen, the button chooses it, or
/// the folder on show if nothing is selected. Main thread.
class PELVOR_EXPORT NSOpenPanel : public NSSavePanel, NSSavePanel::HiddenCreators {
    PELVOR_CLASS(NSOpenPanel, NSSavePanel);
    PELVOR_CREATORS(openPanel, initWithContentRect_styleMask_backing_defer);

  public:
    /// A new panel for one file. Borrowed.
    static NSOpenPanel* openPanel(Class* cls = classObject());
    static Retained<NSOpenPanel> initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                             NSUInteger styleMask,
                                                                             NSBackingStoreType backing,
                                                                             bool defer,
                                                                             Class* cls = classObject());

    /// Null types allow all files. A null folder leaves the choice as `setDirectory` does; the file of that
    /// name is selected, null selects no file.
    NSInteger runModalForTypes(NSArray* types);
    NSInteger runModalForDirectory_file_types(NSString* directory, NSString* name, NSArray* types);

    /// The paths that the user chose in the last run, in the order of the table; empty unless that returned
    /// NSOKButton. `filename` is the first.
    NSArray* filenames();

    /// True at first.
    bool canChooseFiles() { return _canChooseFiles; }
    void setCanChooseFiles(bool can);
    /// False at first.
    bool canChooseDirectories() { return _canChooseDirectories; }
    void setCanChooseDirectories(bool can);
    /// False at first.
    bool allowsMultipleSelection() { return _allowsMultipleSelection; }
    void setAllowsMultipleSelection(bool allows);

    bool isSaving() override { return false; }
    bool choosesFiles() override { return _canChooseFiles; }
    bool choosesDirectories() override { return _canChooseDirectories; }
    bool choosesSeveral() override { return _allowsMultipleSelection; }

  protected:
    NSOpenPanel() = default;
    ~NSOpenPanel() = default;

  private:
    bool _canChooseFiles = true, _canChooseDirectories = false, _allowsMultipleSelection = false;
};

}  // namespace pelvor
