// SPDX-License-Identifier: Apache-2.0
// Building, sorting and pruning menus.
#pragma once

#include "Foundation/NSArray.h"
#include "Interface/NSMenu.h"

namespace pelvor {

struct Category;

/// Adds the items of the array in their order. Null as array stands for none.
PELVOR_EXPORT void PBAppendItemsToMenu(NSMenu* menu, NSArray* items);

/// Compares the titles of two menu items in the user's language, without regard to case; an NSCompareFunction
/// that does not use the context:
///
///     NSArray* sorted = items->sortedArrayUsingFunction_context(&PBCompareMenuItemsByTitle, nullptr);
PELVOR_EXPORT int PBCompareMenuItemsByTitle(id first, id second, void* context = nullptr);

// An item matches a selector if that is its action. A separator matches if its represented object is a string
// that names the selector; so it goes together with the items that it belongs to.

/// Removes all items that match.
PELVOR_EXPORT void PBRemoveItemsFromMenuWithSelector(NSMenu* menu, SEL selector);
/// Removes items from the bottom up, until one does not match.
PELVOR_EXPORT void PBRemoveBottomItemsFromMenuWithSelector(NSMenu* menu, SEL selector);
/// Removes items from the top down, until one does not match.
PELVOR_EXPORT void PBRemoveTopItemsFromMenuWithSelector(NSMenu* menu, SEL selector);

/// Sets the title unless the item has that title. Returns whether the title was set.
PELVOR_EXPORT bool setTitleIfNeeded(NSMenuItem* item, NSString* title);

extern const Category NSMenuItem_PelvorGUIAdditions_category;

}  // namespace pelvor
