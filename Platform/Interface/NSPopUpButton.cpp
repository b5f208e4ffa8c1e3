// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSPopUpButton.h"

#include "Foundation/NSMutableArray.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPopUpButton, interfaceLibrary) {
    methods.creator<"initWithFrame:pullsDown:", &NSPopUpButton::initWithFrame_pullsDown>();
    methods.classLevel<"cellClass", &NSPopUpButton::cellClass>();
    methods.instance<"pullsDown", &NSPopUpButton::pullsDown>();
    methods.instance<"setPullsDown:", &NSPopUpButton::setPullsDown>();
    methods.instance<"addItemWithTitle:", &NSPopUpButton::addItemWithTitle>();
    methods.instance<"addItemsWithTitles:", &NSPopUpButton::addItemsWithTitles>();
    methods.instance<"setItemTitles:", &NSPopUpButton::setItemTitles>();
    methods.instance<"insertItemWithTitle:atIndex:", &NSPopUpButton::insertItemWithTitle_atIndex>();
    methods.instance<"removeItemWithTitle:", &NSPopUpButton::removeItemWithTitle>();
    methods.instance<"removeItemAtIndex:", &NSPopUpButton::removeItemAtIndex>();
    methods.instance<"removeAllItems", &NSPopUpButton::removeAllItems>();
    methods.instance<"itemArray", &NSPopUpButton::itemArray>();
    methods.instance<"itemTitles", &NSPopUpButton::itemTitles>();
    methods.instance<"numberOfItems", &NSPopUpButton::numberOfItems>();
    methods.instance<"itemAtIndex:", &NSPopUpButton::itemAtIndex>();
    methods.instance<"itemWithTitle:", &NSPopUpButton::itemWithTitle>();
    methods.instance<"lastItem", &NSPopUpButton::lastItem>();
    methods.instance<"itemTitleAtIndex:", &NSPopUpButton::itemTitleAtIndex>();
    methods.instance<"indexOfItemWithTitle:", &NSPopUpButton::indexOfItemWithTitle>();
    methods.instance<"selectedItem", &NSPopUpButton::selectedItem>();
    methods.instance<"indexOfSelectedItem", &NSPopUpButton::indexOfSelectedItem>();
    methods.instance<"titleOfSelectedItem", &NSPopUpButton::titleOfSelectedItem>();
    methods.instance<"selectItem:", &NSPopUpButton::selectItem>();
    methods.instance<"selectItemAtIndex:", &NSPopUpButton::selectItemAtIndex>();
    methods.instance<"selectItemWithTitle:", &NSPopUpButton::selectItemWithTitle>();
    methods.instance<"selectItemWithTag:", &NSPopUpButton::selectItemWithTag>();
}

Retained<NSPopUpButton> NSPopUpButton::initWithFrame_pullsDown(NSRect frame, bool pullsDown, Class* cls) {
    auto button = cast<NSPopUpButton>(NSButton::initWithFrame(frame, cls));
    button->setPullsDown(pullsDown);
    return button;
}

// Somebody may have given the button a cell of another class, or none.
NSPopUpButtonCell* NSPopUpButton::popUpCell() {
    if (!cast<NSPopUpButtonCell>(cell())) setCell(NSPopUpButtonCell::init().get());
    return static_cast<NSPopUpButtonCell*>(cell());
}

NSMenu* NSPopUpButton::menu() { return popUpCell()->menu(); }
void NSPopUpButton::setMenu(NSMenu* menu) { popUpCell()->setMenu(menu); }
bool NSPopUpButton::pullsDown() { return popUpCell()->pullsDown(); }
void NSPopUpButton::setPullsDown(bool pullsDown) { popUpCell()->setPullsDown(pullsDown); }

// MARK: Items

void NSPopUpButton::addItemWithTitle(NSString* title) {
    requireArgument(title, "addItemWithTitle:", "the title");
    insertItemWithTitle_atIndex(title, numberOfItems());
}

void NSPopUpButton::addItemsWithTitles(NSArray* titles) {
    for (id title : titles) addItemWithTitle(cast<NSString>(title));
}

void NSPopUpButton::setItemTitles(NSArray* titles) {
    for (id title : titles)
        if (!cast<NSString>(title)) raiseBadArgument("setItemTitles:", "an object of the array is no string");
    removeAllItems();
    addItemsWithTitles(titles);
    selectItemAtIndex(numberOfItems() > 0 ? 0 : -1);
}

void NSPopUpButton::insertItemWithTitle_atIndex(NSString* title, NSInteger index) {
    constexpr const char* kOperation = "insertItemWithTitle:atIndex:";
    requireArgument(title, kOperation, "the title");
    requirePlace(static_cast<NSUInteger>(index), static_cast<NSUInteger>(numberOfItems()), kOperation);
    if (const NSInteger former = indexOfItemWithTitle(title); former >= 0) {
        removeItemAtIndex(former);
        if (former < index) --index;
    }
    menu()->insertItemWithTitle_action_keyEquivalent_atIndex(title, SEL(), u""_ns, index);
}

void NSPopUpButton::removeItemWithTitle(NSString* title) {
    if (const NSInteger index = indexOfItemWithTitle(title); index >= 0) removeItemAtIndex(index);
}

void NSPopUpButton::removeItemAtIndex(NSInteger index) { menu()->removeItemAtIndex(index); }
void NSPopUpButton::removeAllItems() { menu()->removeAllItems(); }
NSArray* NSPopUpButton::itemArray() { return menu()->itemArray(); }

NSArray* NSPopUpButton::itemTitles() {
    NSMutableArray* titles = NSMutableArray::array();
    for (const auto& item : menu()->items()) titles->addObject(item->title());
    return titles;
}

NSInteger NSPopUpButton::numberOfItems() { return menu()->numberOfItems(); }
NSMenuItem* NSPopUpButton::itemAtIndex(NSInteger index) { return menu()->itemAtIndex(index); }
NSMenuItem* NSPopUpButton::itemWithTitle(NSString* title) { return menu()->itemWithTitle(title); }
NSMenuItem* NSPopUpButton::lastItem() {
    return numberOfItems() > 0 ? itemAtIndex(numberOfItems() - 1) : nullptr;
}
NSString* NSPopUpButton::itemTitleAtIndex(NSInteger index) { return itemAtIndex(index)->title(); }
NSInteger NSPopUpButton::indexOfItemWithTitle(NSString* title) { return menu()->indexOfItemWithTitle(title); }

// MARK: Selection

NSMenuItem* NSPopUpButton::selectedItem() { return popUpCell()->selectedItem(); }

NSInteger NSPopUpButton::indexOfSelectedItem() {
    NSMenuItem* item = selectedItem();
    return item ? menu()->indexOfItem(item) : -1;
}

NSString* NSPopUpButton::titleOfSelectedItem() { return selectedItem() ? selectedItem()->title() : u""_ns; }
void NSPopUpButton::selectItem(NSMenuItem* item) { popUpCell()->selectItem(item); }
void NSPopUpButton::selectItemAtIndex(NSInteger index) {
    selectItem(index < 0 ? nullptr : itemAtIndex(index));
}
void NSPopUpButton::selectItemWithTitle(NSString* title) { selectItem(itemWithTitle(title)); }

bool NSPopUpButton::selectItemWithTag(NSInteger tag) {
    NSMenuItem* item = menu()->itemWithTag(tag);
    if (item) selectItem(item);
    return item != nullptr;
}

void NSPopUpButton::keyDown(NSEvent* event) {
    requireArgument(event, "keyDown:", "the event");
    NSString* key = event->charactersIgnoringModifiers();
    const unichar character = key->length() > 0 ? key->characterAtIndex(0) : u'\0';
    if (character == NSUpArrowFunctionKey || character == NSDownArrowFunctionKey)
        popUpCell()->performClick(this);
    else
        NSButton::keyDown(event);
}

}  // namespace pelvor
