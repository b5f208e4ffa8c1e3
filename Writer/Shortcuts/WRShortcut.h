// SPDX-License-Identifier: Apache-2.0
// WRShortcut: the keys that choose a command.
#pragma once

#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSEvent;
class NSMenuItem;

/// One key with its modifiers, or several that are pressed one after the other:
///
///     setPelvorShortcut(item, WRShortcut::shortcutWithText(u"Ctrl+K F"_ns));
///
/// A menu item shows and, of one key, matches it; several keys are matched by the WRShortcutMatcher.
/// Immutable. Main thread.
class WRShortcut final : public NSObject {
    PELVOR_CLASS(WRShortcut, NSObject);

  public:
    /// Keys with blanks between them; each is a character or a name, behind the names of modifiers: "F5",
    /// "Ctrl+Shift+PageUp". The modifiers are Ctrl, Alt, Shift and Super, the named keys are Space, Plus,
    /// Tab, Return, Backspace, Up, Down, Left, Right, Ins, Del, Home, End, PageUp, PageDown and F1 to F35.
    /// Null if the text says anything else. Borrowed.
    static WRShortcut* shortcutWithText(NSString* text);
    /// The one key of a menu item; null if the equivalent is null or empty.
    static WRShortcut* shortcutWithKeyEquivalent_modifierMask(NSString* equivalent, NSUInteger mask);

    /// What chooses the menu item, of one key or of several; null if no keys do. Borrowed.
    static WRShortcut* shortcutOfItem(NSMenuItem* item);

    // What menu items ask.

    bool isMultikey() { return _keys.size() > 1; }
    bool isFunctionKey();
    NSString* keyString();
    NSString* caseSensitiveKeyString();
    NSUInteger caseSensitiveModifiers();
    /// "K F": the keys as the user sees them, without the modifiers of the first one.
    NSString* displayKeyString();
    NSString* displayModifierString();

    bool isEqual(id other) override;
    std::uintptr_t hash() override { return _keys.size(); }
    /// "Ctrl+K F".
    NSString* description() override;

    // C++ only

    /// The shortcut of several keys that the item shows, or null. Borrowed.
    static WRShortcut* shownShortcutOfItem(NSMenuItem* item);

    struct Key {
        unichar character = 0;  // of a letter, the small one
        NSUInteger modifiers = 0;

        bool matches(NSEvent* event) const;
        friend bool operator==(const Key&, const Key&) = default;
    };
    /// At least one.
    const std::vector<Key>& keys() const { return _keys; }
    /// Whether the other shortcut begins with these keys; both may be equal.
    bool begins(const WRShortcut* other) const;
    /// The keys as the user sees them.
    static NSString* textOf(const std::vector<Key>& keys);

  protected:
    WRShortcut() = default;
    ~WRShortcut() = default;

  private:
    std::vector<Key> _keys;
};

}  // namespace pelvor
