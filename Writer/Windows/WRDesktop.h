// SPDX-License-Identifier: Apache-2.0
// WRDesktop: Writer's windows and menus.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class NSMenu;
class NSMutableArray;
class NSNotification;
class WRDocument;
class WRDocumentWindow;
class WRFindPanel;
class WRFontPalette;
class WRProfilesPanel;
class WRShortcutsPanel;

/// Writer with windows. It is the delegate of the application object. Main thread.
class WRDesktop : public NSObject {
    PELVOR_CLASS(WRDesktop, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRDesktop> init(Class* cls = classObject());

    /// Whether somebody can see windows.
    bool hasDisplay();
    /// Shows the document, a WRDocument. Returns null, or why that cannot be done, as a sentence for the
    /// user. The options are those of page setters.
    NSString* showDocument_options(id document, NSDictionary* options);
    /// Handles events until the last window is closed or the user quits.
    void run();

    /// What the interface file connects: the main menu, and the menu of the document services.
    void setMainMenu(NSMenu* menu);
    void setServicesMenu(NSMenu* menu);
    /// Observes the registry: the menu of services follows what plug-ins offer.
    void profilesDidChange(NSNotification* notification);
    void windowDidClose(WRDocumentWindow* window);
    void orderFrontAbout(id sender);
    void orderFrontProfiles(id sender);
    void orderFrontFontPalette(id sender);
    void orderFrontShortcuts(id sender);

    // These go to the panel for finding text.

    void orderFrontFindPanel(id sender);
    void findNext(id sender);
    void findPrevious(id sender);
    void useSelectionForFind(id sender);
    void jumpToSelection(id sender);
    /// Whether there is a document to look in.
    bool canFind(id item);
    bool validateUseSelectionForFind(id item);

    /// Nobody sees the windows any more: ends `run`.
    void applicationDidLoseDisplay(NSNotification* notification);
    bool applicationShouldTerminateAfterLastWindowClosed(id application) { return application != nullptr; }

  protected:
    WRDesktop() = default;
    ~WRDesktop();

  private:
    void makeMenus();
    void fillServicesMenu();
    WRFindPanel* findPanel();

    Retained<NSMutableArray> _windows;
    Retained<NSMenu> _mainMenu;
    Retained<NSMenu> _servicesMenu;
    Retained<NSArray> _nibObjects;
    Retained<WRProfilesPanel> _profilesPanel;
    Retained<WRFontPalette> _fontPalette;
    Retained<WRShortcutsPanel> _shortcutsPanel;
    Retained<WRFindPanel> _findPanel;
};

}  // namespace pelvor
