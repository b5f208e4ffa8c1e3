// SPDX-License-Identifier: Apache-2.0
// Additions to menus and their items: shortcuts of several keys, colours, and validation by validators that
// are named after their action.
#pragma once

#include "Foundation/NSArray.h"
#include "Interface/NSMenu.h"
#include "Menus/PBMenuItem.h"

namespace pelvor {

struct Category;
class NSColor;

// MARK: Shortcuts
//
// A shortcut is an object of the host that responds to these messages. Each shortcut that an item is given is
// sent the first two:
//
//     bool isMultikey                      whether the user presses more than one key after the other
//     NSUInteger caseSensitiveModifiers    the modifiers of the key equivalent
//
// A shortcut of one key is sent isFunctionKey, and then one of the two messages below it:
//
//     bool isFunctionKey
//     NSString* keyString                  the character of a function key
//     NSString* caseSensitiveKeyString     the character of any other key, a capital letter if it needs Shift
//
// A shortcut of several keys is sent these two, whenever the item is given a title as well:
//
//     NSString* displayModifierString      "Ctrl+", as the user sees the modifiers
//     NSString* displayKeyString           "K, F", as the user sees the keys
//
// A menu item shows one of several keys behind its title and keeps it in the attributes of that text; it has
// no key equivalent then, and the host finds out by itself that the keys were pressed.

/// The attributes of such a text: the shortcut, and the string or attributed string that the program set.
extern PELVOR_EXPORT NSString* const PBMenuItemShortcutAttributeName;
extern PELVOR_EXPORT NSString* const PBMenuItemOriginalTitleAttributeName;

/// Gives the item the shortcut, of one key or of several, in the place of any that it had. Null takes the
/// shortcut away; the item then has no key equivalent, and 0 as keyEquivalentModifierMask.
PELVOR_EXPORT void setPelvorShortcut(NSMenuItem* item, id shortcut);

/// Whether the item shows a shortcut of several keys, which is written to the first pointer. The title
/// without keys, a string or an attributed string, is written to the second pointer in any case. Either
/// pointer may be null.
PELVOR_EXPORT bool _getMultikeyShortcut_andOriginalTitle(NSMenuItem* item, id* shortcut, id* title);
/// Shows the title, a string or an attributed string, with the keys of the shortcut behind it, or without
/// keys if the shortcut is null.
PELVOR_EXPORT void _setMultikeyShortcut_withTitle(NSMenuItem* item, id shortcut, id title);

// C++ only
/// The title that stands in the attributes of the shown text; null if there is none.
id originalTitleOf(NSMenuItem* item);

/// The title that the program gave the item first: a PBMenuItem's true title, else the title.
PELVOR_EXPORT NSString* trueTitle(NSMenuItem* item);
/// Shows the title in the colour; null takes the colour away.
PELVOR_EXPORT void setAttributedTitleColor(NSMenuItem* item, NSColor* color);

// MARK: Menus

/// Adds the items in their order. Null as array stands for none.
PELVOR_EXPORT void addItems(NSMenu* menu, NSArray* items);
/// Adds a new item without key equivalent and returns it, owned.
PELVOR_EXPORT Retained<NSMenuItem> addItemWithTitle_target_action(NSMenu* menu, NSString* title, id target,
                                                                  SEL action);
/// The first item with that action, or null.
PELVOR_EXPORT NSMenuItem* itemWithAction(NSMenu* menu, SEL action);

/// The handle of a menu that stands in the menu bar; null for other menus.
PELVOR_EXPORT MenuRef _pelvorMenuRef(NSMenu* menu);
/// The number of that handle, 0 if there is none.
PELVOR_EXPORT MenuID _pelvorMenuID(NSMenu* menu);
/// Highlights the menu's title in the menu bar; false takes any highlight away.
PELVOR_EXPORT void highlightInMenuBar(NSMenu* menu, bool isHighlighted);

// MARK: Validation
//
// A validator is a method named after an action, validateCopy: for copy:, that is sent the item and returns
// whether the item is to be enabled, a bool. An object that takes actions has its validators called by a
// `validateMenuItem:` of its own; menus do not look for validators themselves.
//
//     bool Editor::validateMenuItem(NSMenuItem* item) {
//         bool isEnabled = true;
//         dispatchValidationTo_result(item, this, &isEnabled);
//         return isEnabled;
//     }

/// The validators that objects of one class have, by action; the null selector where there is none. What a
/// class was found to have is never looked up again.
class PBValidatorCache;

/// Asks the target's validator for the action of the item, an object that responds to `action`. Returns false
/// if there is no such validator; else the validator's result is written to the pointer, which may be null.
/// Of a validator that returns nothing, the result is false, and the log says once that its items stay
/// disabled.
PELVOR_EXPORT bool dispatchValidationTo_result(id item, id target, bool* result);
/// Does the same with the cache of the target's class.
PELVOR_EXPORT bool dispatchValidationTo_cache_result(id item, id target, PBValidatorCache* cache,
                                                     bool* result);

extern const Category NSMenuItem_PelvorAdditions_category;
extern const Category NSMenu_PelvorAdditions_category;
extern const Category NSObject_PelvorValidatedUserInterfaceItemAdditions_category;

}  // namespace pelvor
