// SPDX-License-Identifier: Apache-2.0
// WRLanguageCommands: the commands that concern the language of a document's text.
#pragma once

#include "Interface/NSResponder.h"

namespace pelvor {

class NSMenu;
class NSNotification;
class WRPageView;

/// Follows the window in the chain of responders and takes the commands of the Language menu, for the text of
/// the window's page view: words are divided and checked by the language. The keyboard is switched along
/// where the user has a layout for the language. Main thread.
class WRLanguageCommands : public NSResponder {
    PELVOR_CLASS(WRLanguageCommands, NSResponder);

  public:
    // C++ only
    static Retained<WRLanguageCommands> create(WRPageView* view);

    /// The sender is a menu item that represents the name of a language, or "" for text in no language. Sets
    /// the language of the selected text, or of what is typed next.
    void takeLanguageFrom(id sender);
    bool validateMenuItem(id item);
    bool validateTakeLanguageFrom(id item);

    void selectionDidChange(NSNotification* notification);

  protected:
    WRLanguageCommands() = default;
    ~WRLanguageCommands();

  private:
    Unretained<WRPageView> _view = nullptr;  // shown by the window that keeps this object
    Retained<NSString> _caretLanguage;       // of the text at the caret when the keyboard was last switched
};

/// The delegate of the menu with the languages of the plug-ins. Main thread.
class WRLanguageMenu : public NSObject {
    PELVOR_CLASS(WRLanguageMenu, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRLanguageMenu> init(Class* cls = classObject());

    void menuNeedsUpdate(NSMenu* menu);

  protected:
    WRLanguageMenu() = default;
    ~WRLanguageMenu() = default;
};

}  // namespace pelvor
