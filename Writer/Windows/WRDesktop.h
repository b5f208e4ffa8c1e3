// SPDX-License-Identifier: Apache-2.0
// WRDesktop: Writer's windows and menus.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class NSMenu;
class NSMutableArray;
class NSNotification;
class WRCharactersPanel;
class WRColorPanel;
class WRDocument;
class WRDocumentWindow;
class WRFindPanel;
class WRFontPalette;
class WRPreferencesPanel;
class WRProfilesPanel;
class WRRecentDocuments;
class RecoveryStore;
class WRShortcutsPanel;

/// Writer with windows. It is the delegate of the application object. Main thread.
class WRDesktop : public NSObject {
    PELVOR_CLASS(WRDesktop, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRDesktop> init(Class* cls = classObject());
    /// The delegate of the application; null if that is none of this class.
    static WRDesktop* current();

    /// Whether somebody can see windows.
    bool hasDisplay();
    /// Shows the document, a WRDocument, and, the first time, those that a crash has left. A document that
    /// nobody has used is left out where there are others. Returns null, or why the document
    /// cannot be shown, as a sentence for the user. The wishes are options of page setters, which hold for
    /// all documents from now on.
    NSString* showDocument_options(id document, NSDictionary* wishes);
    /// Handles events until the last window is closed or the user quits.
    void run();

    /// Opens the document in a window, or shows the window that it has. Tells the user why it cannot.
    void openPath(NSString* path);
    /// The same in the encoding, which a document that is open is read in again. Null: as `openPath`.
    void openPath_encoding(NSString* path, NSString* encodingName);
    void openPaths(NSArray* paths);
    /// The window with the file; null if there is none.
    WRDocumentWindow* windowForPath(NSString* path);
    WRRecentDocuments* recentDocuments() { return _recent; }
    // C++ only
    /// Where unsaved changes are kept for the case of a crash, at first in the user's folder; null where they
    /// are not.
    RecoveryStore* recoveryStore() { return _store.get(); }
    void setRecoveryStore(std::unique_ptr<RecoveryStore> store);

    // Commands

    void newDocument(id sender);
    void openDocument(id sender);
    /// The sender is a menu item that represents a path.
    void openRecentDocument(id sender);
    void clearRecentDocuments(id sender);
    bool validateMenuItem(id item);
    bool validateClearRecentDocuments(id item);

    /// What the interface file connects: the main menu, and the menus of the document services, of the
    /// documents that were open last, and of the windows.
    void setMainMenu(NSMenu* menu);
    void setServicesMenu(NSMenu* menu);
    void setRecentMenu(NSMenu* menu);
    void setWindowMenu(NSMenu* menu);
    /// Lists the documents' windows behind the commands of the menu of windows.
    void menuNeedsUpdate(NSMenu* menu);
    /// Observes the registry: the menu of services follows what plug-ins offer.
    void profilesDidChange(NSNotification* notification);
    void windowDidClose(WRDocumentWindow* window);
    /// Settings that have changed are in their file a second later.
    void defaultsDidChange(NSNotification* notification);
    void orderFrontAbout(id sender);
    void orderFrontProfiles(id sender);
    void orderFrontFontPalette(id sender);
    void orderFrontColorPanel(id sender);
    bool validateOrderFrontColorPanel(id item);
    void orderFrontShortcuts(id sender);
    void orderFrontCharacters(id sender);
    void orderFrontPreferences(id sender);

    // These go to the panel for finding text.

    void orderFrontFindPanel(id sender);
    void findNext(id sender);
    void findPrevious(id sender);
    void useSelectionForFind(id sender);
    void jumpToSelection(id sender);
    /// Whether there is a document to look in.
    bool canFind(id item);
    bool validateUseSelectionForFind(id item);

    /// Asks what becomes of unsaved changes, window by window. Returns an NSApplicationTerminateReply.
    int applicationShouldTerminate(id application);
    void applicationWillTerminate(NSNotification* notification);
    /// Nobody sees the windows any more: keeps unsaved changes for the next start.
    void applicationDidLoseDisplay(NSNotification* notification);
    bool applicationShouldTerminateAfterLastWindowClosed(id application) { return application != nullptr; }

  protected:
    WRDesktop();
    ~WRDesktop();

  private:
    NSString* openWindow(WRDocument* document);
    std::vector<Retained<WRDocumentWindow>> documentWindows();
    void recoverDocuments();
    NSString* nameOfNewDocument();
    void makeMenus();
    void fillServicesMenu();
    WRFindPanel* findPanel();

    Retained<NSMutableArray> _windows;
    Retained<NSMenu> _mainMenu;
    Retained<NSMenu> _servicesMenu;
    Retained<NSDictionary> _wishes;
    Retained<WRRecentDocuments> _recent;
    std::unique_ptr<RecoveryStore> _store;
    Retained<NSArray> _nibObjects;
    Retained<WRProfilesPanel> _profilesPanel;
    Retained<WRFontPalette> _fontPalette;
    Retained<WRColorPanel> _colorPanel;
    Retained<WRPreferencesPanel> _preferencesPanel;
    Retained<WRShortcutsPanel> _shortcutsPanel;
    Retained<WRCharactersPanel> _charactersPanel;
    Retained<WRFindPanel> _findPanel;
};

}  // namespace pelvor
