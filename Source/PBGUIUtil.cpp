// SPDX-License-Identifier: Apache-2.0
#include "PBGUIUtil.h"

#include "Foundation/NSString.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSMenuItem>& methods) {
    methods.instance<"setTitleIfNeeded:", &setTitleIfNeeded>();
}

bool matches(NSMenuItem* item, SEL selector) {
    if (item->action() == selector) return true;
    auto* name = item->isSeparatorItem() ? cast<NSString>(item->representedObject()) : nullptr;
    return name && name->toUTF8() == selector.name();
}

bool lastMatches(NSMenu* menu, SEL selector) {
    return menu->numberOfItems() > 0 && matches(menu->itemAtIndex(menu->numberOfItems() - 1), selector);
}

}  // namespace

constinit const Category NSMenuItem_PelvorGUIAdditions_category =
    Category::of<NSMenuItem, defineAdditions>("PelvorGUIAdditions");

void PBAppendItemsToMenu(NSMenu* menu, NSArray* items) {
    requireArgument(menu, "PBAppendItemsToMenu", "the menu");
    addItems(menu, items);
}

int PBCompareMenuItemsByTitle(id first, id second, void*) {
    auto title = [](id object, const char* name) {
        requireArgument(object, "PBCompareMenuItemsByTitle", name);
        auto* item = cast<NSMenuItem>(object);
        if (!item) raiseBadArgument("PBCompareMenuItemsByTitle", std::string(name) + " is no menu item");
        return item->title();
    };
    NSString* other = title(second, "the second item");
    return title(first, "the first item")->localizedCaseInsensitiveCompare(other);
}

void PBRemoveItemsFromMenuWithSelector(NSMenu* menu, SEL selector) {
    requireArgument(menu, "PBRemoveItemsFromMenuWithSelector", "the menu");
    for (NSInteger index = menu->numberOfItems(); index-- > 0;)
        if (matches(menu->itemAtIndex(index), selector)) menu->removeItemAtIndex(index);
}

void PBRemoveBottomItemsFromMenuWithSelector(NSMenu* menu, SEL selector) {
    requireArgument(menu, "PBRemoveBottomItemsFromMenuWithSelector", "the menu");
    while (lastMatches(menu, selector)) menu->removeItemAtIndex(menu->numberOfItems() - 1);
}

void PBRemoveTopItemsFromMenuWithSelector(NSMenu* menu, SEL selector) {
    requireArgument(menu, "PBRemoveTopItemsFromMenuWithSelector", "the menu");
    while (menu->numberOfItems() > 0 && matches(menu->itemAtIndex(0), selector)) menu->removeItemAtIndex(0);
}

bool setTitleIfNeeded(NSMenuItem* item, NSString* title) {
    requireArgument(item, "setTitleIfNeeded:", "the item");
    requireArgument(title, "setTitleIfNeeded:", "the title");
    NSString* former = item->title();
    if (former == title || former->isEqualToString(title)) return false;
    item->setTitle(title);
    return true;
}

}  // namespace pelvor
