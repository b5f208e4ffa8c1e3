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
/// The item whose letter is pressed with Alt and no other modifier key; null for every other event.
NSMenuItem* itemForLetter(NSMenu* menu, NSEvent* event);

/// The keys besides F10 that lead to the menu bar of the key window: Alt, pressed and released alone, and Alt
/// with a letter.
class MenuKeys {
  public:
    /// Has to be told of every event. Returns true if the event releases Alt after a short press without any
    /// other key, click or move of the pointer. A longer press only shows the letters, or moves a window.
    bool isAltAlone(NSEvent* event);
    /// Has the window's bar underline its letters while Alt is down.
    void showLetters(NSWindow* window);
    /// Opens the menu whose letter is pressed with Alt. Returns false if no menu has the letter.
    bool openByLetter(NSEvent* event, NSWindow* window);
    void openFirst(NSWindow* window);

  private:
    WeakHandle _letteredBar;  // the menu bar that underlines its letters
    double _pressTime = 0;
    NSPoint _pressPlace;
    std::uint32_t _modifiers = 0;  // of the event before
    bool _isAltPressed = false;
};

}  // namespace pelvor
