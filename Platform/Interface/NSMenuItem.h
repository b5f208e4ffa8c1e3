// SPDX-License-Identifier: Apache-2.0
// NSMenuItem: one line of a menu.
#pragma once

#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSAttributedString;
class NSImage;
class NSMenu;
class NSString;

/// One line of a menu: a command, a submenu, or a line between groups of them.
///
///     auto find = NSMenuItem::initWithTitle_action_keyEquivalent(u"Find…"_ns, "find:"_sel, u"f"_ns);
///     find->setTarget(controller);
///     editMenu->addItem(find);                              // shown as "Find…   Ctrl+F"
///
/// Choosing the item sends its action, with the item as the argument, to its target, or without a target to
/// whoever takes the action first on the way that NSApplication looks for takers.
///
/// In a program that uses the library above, items that are made after `PBPostLoader::processClasses` are
/// PBMenuItems, a subclass that can show shortcuts of several keys. Main thread.
class PELVOR_EXPORT NSMenuItem : public NSObject {
    PELVOR_CLASS(NSMenuItem, NSObject);
    PELVOR_CREATORS(init, initWithTitle_action_keyEquivalent, separatorItem);

  public:
    // Creation

    /// An item without title, action and key equivalent.
    static Retained<NSMenuItem> init(Class* cls = classObject());
    /// Raises NSInvalidArgumentException if the title or the key equivalent is null. With the null selector
    /// the item has no action.
    static Retained<NSMenuItem> initWithTitle_action_keyEquivalent(NSString* title, SEL action,
                                                                   NSString* keyEquivalent,
                                                                   Class* cls = classObject());
    /// A line between groups of items; borrowed.
    static NSMenuItem* separatorItem(Class* cls = classObject());

    // What the item shows

    /// Never null.
    virtual NSString* title() { return _title; }
    /// Copies the title. Raises NSInvalidArgumentException for null.
    virtual void setTitle(NSString* title);
    /// The text that is shown instead of the title; null if there is none.
    NSAttributedString* attributedTitle() { return _attributedTitle; }
    /// Copies the text. Null shows the title again.
    virtual void setAttributedTitle(NSAttributedString* title);
    /// The picture in front of the title, or null.
    NSImage* image() { return _image; }
    void setImage(NSImage* image);
    /// -1, 0 or 1: partly on, off or on. The state is a mark in front of the title.
    NSInteger state() { return _state; }
    /// Numbers above 0 count as 1, below as -1.
    void setState(NSInteger state);
    /// Steps of indentation, 0 to 15.
    NSInteger indentationLevel() { return _indentationLevel; }
    /// A level below 0 counts as 0, above 15 as 15.
    void setIndentationLevel(NSInteger level);
    /// A hidden item is not shown, and its key equivalent does nothing.
    bool isHidden() { return _isHidden; }
    void setHidden(bool isHidden);
    /// Whether the item can be chosen. A menu that enables its items itself sets this whenever it is shown.
    bool isEnabled() { return _isEnabled; }
    void setEnabled(bool isEnabled);
    bool isSeparatorItem() { return _isSeparator; }
    /// Whether the item is the one under the pointer, or the one that the arrow keys have reached.
    bool isHighlighted();

    // What choosing the item does

    SEL action() { return _action; }
    void setAction(SEL action);
    /// The target, which the item does not keep alive; null if there is none, or no longer.
    id target();
    void setTarget(id target);
    NSInteger tag() { return _tag; }
    void setTag(NSInteger tag) { _tag = tag; }
    /// An object that the program ties to the item; the item retains it.
    id representedObject() { return _representedObject; }
    void setRepresentedObject(id object) { _representedObject.set(object); }

    // The key that chooses the item

    /// The character of the key, "" for none. A capital letter means the key with Shift. Function keys are
    /// their units, such as NSF1FunctionKey.
    NSString* keyEquivalent() { return _keyEquivalent; }
    /// Copies the text, of which the first character counts. Raises NSInvalidArgumentException for null.
    void setKeyEquivalent(NSString* key);
    /// The modifier keys that have to be down with the key, as NSEvent has them; NSCommandKeyMask at first.
    NSUInteger keyEquivalentModifierMask() { return _keyEquivalentModifierMask; }
    void setKeyEquivalentModifierMask(NSUInteger mask);

    // Where the item is

    /// The menu that the item is in, or null.
    NSMenu* menu() { return _menu; }
    bool hasSubmenu() { return static_cast<bool>(_submenu); }
    NSMenu* submenu() { return _submenu; }
    /// The menu that opens beside the item; null for none. Raises NSInvalidArgumentException if the menu is
    /// another item's submenu, or contains the item.
    void setSubmenu(NSMenu* submenu);
    /// The item that opens the menu that this item is in, or null.
    NSMenuItem* parentItem();

    NSString* description() override;

    // C++ only
    /// Whether pressing this key means the item: the characters are those that the key gives with Shift
    /// alone.
    bool matchesKey_modifiers(NSString* characters, NSUInteger modifiers);
    /// The target, held.
    Retained<Object> heldTarget() { return _target.object(); }
    /// Whether the target has ended. The action is sent to nobody then.
    bool hasLostTarget() { return _hasTarget && !_target.object(); }

  protected:
    NSMenuItem();
    ~NSMenuItem();

  private:
    friend class NSMenu;
    template <class T>
    void change(T& field, T value);
    void didChange();
    void didChangeLook();

    Retained<NSString> _title, _keyEquivalent;
    Retained<NSAttributedString> _attributedTitle;
    Retained<NSImage> _image;
    Retained<NSMenu> _submenu;
    Retained<Object> _representedObject;
    WeakHandle _target;
    Unretained<NSMenu> _menu = nullptr;  // forgotten when the menu ends
    NSInteger _tag = 0, _state = 0, _indentationLevel = 0;
    NSUInteger _keyEquivalentModifierMask;
    SEL _action;
    bool _hasTarget = false, _isEnabled = true, _isHidden = false, _isSeparator = false;
};

}  // namespace pelvor
