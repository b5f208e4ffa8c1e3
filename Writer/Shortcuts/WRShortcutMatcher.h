// SPDX-License-Identifier: Apache-2.0
// WRShortcutMatcher: finds out that the keys of a shortcut have been pressed one after the other.
#pragma once

#include "Foundation/NSTimer.h"
#include "Interface/NSWindow.h"
#include "Writer/Shortcuts/WRShortcut.h"

namespace pelvor {

class NSMenu;
class NSMenuItem;
class NSNotification;

/// Finds out that the keys of a shortcut have been pressed one after the other, and chooses the menu item
/// that shows the shortcut. Sees events before menus and windows do (WRShortcutApplication).
///
/// The first key has Ctrl, Alt or Super, or is a function key: letters alone are typed. After the first key a
/// small window shows the key and waits. Escape, a key that no shortcut goes on with, a
/// click, another window and some seconds end the waiting; the key that ends it does nothing else. Main
/// thread.
class WRShortcutMatcher final : public NSObject {
    PELVOR_CLASS(WRShortcutMatcher, NSObject);

  public:
    /// Borrowed; exists as long as the process.
    static WRShortcutMatcher* sharedMatcher();

    /// Returns whether the event was a key of a shortcut and goes nowhere else.
    bool takeEvent(NSEvent* event);
    /// The keys that were pressed, "Ctrl+K …"; null while nothing is waited for.
    NSString* waitingText();
    void stopWaiting();
    void timeIsOver(NSTimer* timer);
    void windowDidResignKey(NSNotification* notification);

    /// Sentences for the user, each about two items of the menu or its submenus whose shortcuts begin with
    /// the same keys, so that one of them cannot be reached.
    NSArray* conflictsInMenu(NSMenu* menu);

    /// How long the next key is waited for.
    static constexpr double kWaitingSeconds = 4;

  protected:
    WRShortcutMatcher() = default;
    ~WRShortcutMatcher() = default;

  private:
    void wait(const WRShortcut::Key& key);
    void showKeys();

    std::vector<WRShortcut::Key> _pressed;
    Retained<NSTimer> _timer;
    Retained<NSWindow> _window;
};

}  // namespace pelvor
