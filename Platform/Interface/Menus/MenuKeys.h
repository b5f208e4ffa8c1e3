// SPDX-License-Identifier: Apache-2.0
// MenuKeys: Alt, and the letters that open menus with it.
#pragma once

#include <vector>

#include "Foundation/NSGeometry.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSEvent;
class NSMenu;
class NSMenuItem;
class NSMenuBarView;
class NSWindow;

/// The letter that opens the menu of a title in a menu bar.
struct TitleLetter {
    Unretained<NSMenuItem> item;
    NSUInteger place;  ///< of the letter in the item's title
    char16_t letter;   ///< a small one from a to z
};

/// The letters of the menu's items that have a submenu: of each title the first one from A to Z that is free.
/// Letters that Alt makes a key equivalent or a key binding of are not free. An item whose title has no free
/// letter is left out.
PELVOR_EXPORT std::vector<TitleLetter> titleLetters(NSMenu* menu);
/// The item whose letter is pressed with Alt and no other modifier key; null if there is none.
NSMenuItem* itemForLetter(NSMenu* menu, NSEvent* event);

/// The keys besides F10 that lead to the menu bar of the key window: Alt, pressed and released alone, and Alt
/// with a letter.
class MenuKeys {
  public:
    /// Is told of every event. Returns whether the event releases Alt, and nothing else was done meanwhile.
    /// Alt that is held longer, to see the letters or to move a window, means no menu.
    bool isAltAlone(NSEvent* event);
    /// Has the window's bar underline its letters while Alt is down.
    void showLetters(NSWindow* window);
    /// Opens the menu that the key means. Returns whether there is one.
    bool openByLetter(NSEvent* event, NSWindow* window);
    void openFirst(NSWindow* window);

  private:
    WeakHandle _letteredBar;  // that underlines letters
    double _pressTime = 0;
    NSPoint _pressPlace;
    std::uint32_t _modifiers = 0;  // of the event before
    bool _isAltPressed = false;
};

}  // namespace pelvor
