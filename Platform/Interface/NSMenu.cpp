// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSMenu.h"

#include <algorithm>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSString.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSView.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

NSString* const NSMenuWillSendActionNotification = u"NSMenuWillSendActionNotification"_ns;
NSString* const NSMenuDidSendActionNotification = u"NSMenuDidSendActionNotification"_ns;
NSString* const NSMenuDidBeginTrackingNotification = u"NSMenuDidBeginTrackingNotification"_ns;
NSString* const NSMenuDidEndTrackingNotification = u"NSMenuDidEndTrackingNotification"_ns;

PELVOR_DEFINE_CLASS(NSMenu, interfaceLibrary) {
    methods.creator<"init", &NSMenu::init>();
    methods.creator<"initWithTitle:", &NSMenu::initWithTitle>();
    methods.instance<"title", &NSMenu::title>();
    methods.instance<"setTitle:", &NSMenu::setTitle>();
    methods.instance<"numberOfItems", &NSMenu::numberOfItems>();
    methods.instance<"itemAtIndex:", &NSMenu::itemAtIndex>();
    methods.instance<"itemArray", &NSMenu::itemArray>();
    methods.instance<"setItemArray:", &NSMenu::setItemArray>();
    methods.instance<"addItem:", &NSMenu::addItem>();
    methods.instance<"insertItem:atIndex:", &NSMenu::insertItem_atIndex>();
    methods
        .instance<"addItemWithTitle:action:keyEquivalent:", &NSMenu::addItemWithTitle_action_keyEquivalent>();
    methods.instance<"insertItemWithTitle:action:keyEquivalent:atIndex:",
                     &NSMenu::insertItemWithTitle_action_keyEquivalent_atIndex>();
    methods.instance<"removeItem:", &NSMenu::removeItem>();
    methods.instance<"removeItemAtIndex:", &NSMenu::removeItemAtIndex>();
    methods.instance<"removeAllItems", &NSMenu::removeAllItems>();
    methods.instance<"setSubmenu:forItem:", &NSMenu::setSubmenu_forItem>();
    methods.instance<"indexOfItem:", &NSMenu::indexOfItem>();
    methods.instance<"indexOfItemWithTitle:", &NSMenu::indexOfItemWithTitle>();
    methods.instance<"indexOfItemWithTag:", &NSMenu::indexOfItemWithTag>();
    methods.instance<"indexOfItemWithRepresentedObject:", &NSMenu::indexOfItemWithRepresentedObject>();
    methods.instance<"indexOfItemWithSubmenu:", &NSMenu::indexOfItemWithSubmenu>();
    methods.instance<"indexOfItemWithTarget:andAction:", &NSMenu::indexOfItemWithTarget_andAction>();
    methods.instance<"itemWithTitle:", &NSMenu::itemWithTitle>();
    methods.instance<"itemWithTag:", &NSMenu::itemWithTag>();
    methods.instance<"supermenu", &NSMenu::supermenu>();
    methods.instance<"autoenablesItems", &NSMenu::autoenablesItems>();
    methods.instance<"setAutoenablesItems:", &NSMenu::setAutoenablesItems>();
    methods.instance<"update", &NSMenu::update>();
    methods.instance<"performKeyEquivalent:", &NSMenu::performKeyEquivalent>();
    methods.classLevel<"popUpContextMenu:withEvent:forView:", &NSMenu::popUpContextMenu_withEvent_forView>();
    methods.instance<"popUpMenuPositioningItem:atLocation:inView:",
                     &NSMenu::popUpMenuPositioningItem_atLocation_inView>();
    methods.instance<"cancelTracking", &NSMenu::cancelTracking>();
    methods.instance<"performActionForItemAtIndex:", &NSMenu::performActionForItemAtIndex>();
    methods.instance<"highlightedItem", &NSMenu::highlightedItem>();
    methods.instance<"delegate", &NSMenu::delegate>();
    methods.instance<"setDelegate:", &NSMenu::setDelegate>();
}

NSMenu::NSMenu() = default;

NSMenu::~NSMenu() {
    for (const auto& item : _items) item->_menu = nullptr;
}

Retained<NSMenu> NSMenu::init(Class* cls) { return initWithTitle(u""_ns, cls); }

Retained<NSMenu> NSMenu::initWithTitle(NSString* title, Class* cls) {
    requireArgument(title, "initWithTitle:", "the title");
    auto menu = make<NSMenu>(cls);
    menu->_title = title->copy();
    return menu;
}

void NSMenu::setTitle(NSString* title) {
    requireArgument(title, "setTitle:", "the title");
    _title = title->copy();
    didChange();
}

NSString* NSMenu::description() {
    return NSString::stringWithFormat(u"<%s: %p \"%@\", %d items>"_ns, isa()->publicName(),
                                      static_cast<void*>(this), _title.get(), numberOfItems());
}

// MARK: Items

namespace {

NSUInteger place(NSInteger index) { return static_cast<NSUInteger>(index); }

void requireFree(NSMenuItem* item, const char* operation) {
    requireArgument(item, operation, "the item");
    if (item->menu()) raiseBadArgument(operation, "the item is in a menu already");
}

}  // namespace

NSMenuItem* NSMenu::itemAtIndex(NSInteger index) {
    requireIndex(place(index), place(numberOfItems()), "itemAtIndex:");
    return _items[place(index)];
}

NSArray* NSMenu::itemArray() {
    std::vector<Object*> items(_items.begin(), _items.end());
    return NSArray::arrayWithObjects_count(items.data(), static_cast<NSUInteger>(items.size()));
}

void NSMenu::setItemArray(NSArray* items) {
    requireArgument(items, "setItemArray:", "the array");
    std::vector<Retained<NSMenuItem>> wanted;
    for (id object : items) {
        auto* item = cast<NSMenuItem>(object);
        if (!item) raiseBadArgument("setItemArray:", "an object of the array is no menu item");
        if (item->_menu && item->_menu != this)
            raiseBadArgument("setItemArray:", "an item of the array is in another menu");
        if (std::find(wanted.begin(), wanted.end(), item) != wanted.end())
            raiseBadArgument("setItemArray:", "an item stands in the array twice");
        wanted.push_back(Retained<NSMenuItem>::retaining(item));
    }
    removeAllItems();
    for (const auto& item : wanted) addItem(item);
}

void NSMenu::addItem(NSMenuItem* item) {
    requireFree(item, "addItem:");
    insertItem_atIndex(item, numberOfItems());
}

void NSMenu::insertItem_atIndex(NSMenuItem* item, NSInteger index) {
    requireFree(item, "insertItem:atIndex:");
    requirePlace(place(index), place(numberOfItems()), "insertItem:atIndex:");
    if (item->_submenu && (item->_submenu == this || item->_submenu->contains(this)))
        raiseBadArgument("insertItem:atIndex:", "the item's submenu contains this menu");
    _items.insert(_items.begin() + index, Retained<NSMenuItem>::retaining(item));
    item->_menu = this;
    didChange();
}

NSMenuItem* NSMenu::addItemWithTitle_action_keyEquivalent(NSString* title, SEL action,
                                                          NSString* keyEquivalent) {
    requireArgument(title, "addItemWithTitle:action:keyEquivalent:", "the title");
    requireArgument(keyEquivalent, "addItemWithTitle:action:keyEquivalent:", "the key equivalent");
    return insertItemWithTitle_action_keyEquivalent_atIndex(title, action, keyEquivalent, numberOfItems());
}

NSMenuItem* NSMenu::insertItemWithTitle_action_keyEquivalent_atIndex(NSString* title, SEL action,
                                                                     NSString* keyEquivalent,
                                                                     NSInteger index) {
    constexpr const char* kOperation = "insertItemWithTitle:action:keyEquivalent:atIndex:";
    requireArgument(title, kOperation, "the title");
    requireArgument(keyEquivalent, kOperation, "the key equivalent");
    requirePlace(place(index), place(numberOfItems()), kOperation);
    auto item = NSMenuItem::initWithTitle_action_keyEquivalent(title, action, keyEquivalent);
    insertItem_atIndex(item, index);
    return item;
}

void NSMenu::removeItem(NSMenuItem* item) {
    requireArgument(item, "removeItem:", "the item");
    if (item->_menu != this) raiseBadArgument("removeItem:", "the item is not in this menu");
    removeItemAtIndex(indexOfItem(item));
}

void NSMenu::removeItemAtIndex(NSInteger index) {
    requireIndex(place(index), place(numberOfItems()), "removeItemAtIndex:");
    const auto item = std::move(_items[place(index)]);
    _items.erase(_items.begin() + index);
    item->_menu = nullptr;
    didChange();
}

void NSMenu::removeAllItems() {
    const auto items = std::exchange(_items, {});
    for (const auto& item : items) item->_menu = nullptr;
    didChange();
}

void NSMenu::setSubmenu_forItem(NSMenu* submenu, NSMenuItem* item) {
    requireArgument(item, "setSubmenu:forItem:", "the item");
    if (item->_menu != this) raiseBadArgument("setSubmenu:forItem:", "the item is not in this menu");
    item->setSubmenu(submenu);
}

// MARK: Searches

template <class Matches>
NSInteger NSMenu::findIndex(Matches matches) {
    const auto found = std::find_if(_items.begin(), _items.end(),
                                    [&](const Retained<NSMenuItem>& item) { return matches(item.get()); });
    return found == _items.end() ? -1 : static_cast<NSInteger>(found - _items.begin());
}

NSInteger NSMenu::indexOfItem(NSMenuItem* item) {
    return findIndex([&](NSMenuItem* each) { return each == item; });
}
NSInteger NSMenu::indexOfItemWithTitle(NSString* title) {
    return findIndex([&](NSMenuItem* each) { return each->title()->isEqualToString(title); });
}
NSInteger NSMenu::indexOfItemWithTag(NSInteger tag) {
    return findIndex([&](NSMenuItem* each) { return each->tag() == tag; });
}
NSInteger NSMenu::indexOfItemWithRepresentedObject(id object) {
    return findIndex([&](NSMenuItem* each) {
        id represented = each->representedObject();
        return represented == object || (represented && represented->isEqual(object));
    });
}
NSInteger NSMenu::indexOfItemWithSubmenu(NSMenu* submenu) {
    return findIndex([&](NSMenuItem* each) { return each->submenu() == submenu; });
}
NSInteger NSMenu::indexOfItemWithTarget_andAction(id target, SEL action) {
    return findIndex([&](NSMenuItem* each) {
        return (!action || each->action() == action) && each->heldTarget() == target;
    });
}

NSMenuItem* NSMenu::itemAtFound(NSInteger index) { return index < 0 ? nullptr : itemAtIndex(index); }
NSMenuItem* NSMenu::itemWithTitle(NSString* title) { return itemAtFound(indexOfItemWithTitle(title)); }
NSMenuItem* NSMenu::itemWithTag(NSInteger tag) { return itemAtFound(indexOfItemWithTag(tag)); }

NSMenu* NSMenu::supermenu() { return _superitem ? _superitem->menu() : nullptr; }

bool NSMenu::contains(NSMenu* menu) {
    for (; menu; menu = menu->supermenu())
        if (menu == this) return true;
    return false;
}

// MARK: Changes

void NSMenu::didChange() {
    ++_changeCount;
    _layout = nullptr;
    tellObservers();
}

void NSMenu::tellObservers() {
    const auto observers = _observers;
    for (MenuObserver* observer : observers)
        if (std::find(_observers.begin(), _observers.end(), observer) != _observers.end())
            observer->menuDidChange(this);
}

void NSMenu::removeObserver(MenuObserver* observer) { std::erase(_observers, observer); }

id NSMenu::delegate() { return _delegate.object().autorelease(); }
void NSMenu::setDelegate(id delegate) { _delegate = WeakHandle(delegate); }

void NSMenu::tellDelegate(SEL message) {
    const auto delegate = _delegate.object();
    if (delegate && delegate->respondsToSelector(message)) send(delegate.get(), message, this);
}

void NSMenu::setHighlightedItem(NSMenuItem* item) {
    if (item == _highlightedItem) return;
    const auto held = Retained<NSMenu>::retaining(this);
    _highlightedItem.set(item);
    const auto delegate = _delegate.object();
    if (delegate && delegate->respondsToSelector("menu:willHighlightItem:"_sel))
        send(delegate.get(), "menu:willHighlightItem:"_sel, this, item);
}

// MARK: Enabling

void NSMenu::setAutoenablesItems(bool flag) { _autoenablesItems = flag; }

void NSMenu::update() {
    const auto held = Retained<NSMenu>::retaining(this);
    tellDelegate("menuNeedsUpdate:"_sel);
    if (!_autoenablesItems) return;
    const auto items = _items;  // what is asked may change the menu
    for (const auto& item : items)
        if (item->_menu == this) validateItem(item);
}

namespace {

bool isAccepted(NSMenuItem* item) {
    if (item->hasLostTarget()) return false;
    const Retained<Object> target = item->heldTarget();
    auto taker = Retained<Object>::retaining(
        NSApplication::sharedApplication()->targetForAction_to_from(item->action(), target, item));
    if (!taker) return false;
    if (taker->respondsToSelector("validateMenuItem:"_sel))
        return send<bool>(taker.get(), "validateMenuItem:"_sel, item);
    if (taker->respondsToSelector("validateUserInterfaceItem:"_sel))
        return send<bool>(taker.get(), "validateUserInterfaceItem:"_sel, item);
    return true;
}

}  // namespace

void NSMenu::validateItem(NSMenuItem* item) {
    if (!_autoenablesItems || item->isSeparatorItem() || item->submenu()) return;
    bool isEnabled = false;
    try {
        isEnabled = item->action() && isAccepted(item);
    } catch (...) {
        reportCurrentException();
    }
    item->setEnabled(isEnabled);
}

// MARK: Choosing

Retained<NSMenuItem> NSMenu::findKey(NSString* characters, NSUInteger modifiers) {
    tellDelegate("menuNeedsUpdate:"_sel);
    const auto items = _items;
    for (const auto& item : items) {
        if (item->_menu != this || item->isHidden()) continue;
        if (const auto submenu = item->_submenu) {
            if (!item->isEnabled()) continue;
            if (auto found = submenu->findKey(characters, modifiers)) return found;
        } else if (item->matchesKey_modifiers(characters, modifiers)) {
            validateItem(item);
            if (item->isEnabled() && item->action()) return item;
        }
    }
    return nullptr;
}

Retained<NSMenuItem> NSMenu::itemForKeyEvent(NSEvent* event) {
    const auto held = Retained<NSMenu>::retaining(this);
    return findKey(event->shortcutCharacters(), event->modifierFlags());
}

bool NSMenu::performKeyEquivalent(NSEvent* event) {
    requireArgument(event, "performKeyEquivalent:", "the event");
    const auto item = itemForKeyEvent(event);
    if (!item) return false;
    if (item->_menu) item->_menu->performItem(item);
    return true;
}

void NSMenu::performActionForItemAtIndex(NSInteger index) {
    requireIndex(place(index), place(numberOfItems()), "performActionForItemAtIndex:");
    performItem(_items[place(index)]);
}

void NSMenu::performItem(NSMenuItem* chosen) {
    if (!chosen->isEnabled() || !chosen->action() || chosen->hasLostTarget()) return;
    const auto menu = Retained<NSMenu>::retaining(this);
    const auto item = Retained<NSMenuItem>::retaining(chosen);
    const Retained<Object> target = item->heldTarget();
    NSDictionary* info = NSDictionary::of({{u"MenuItem"_ns, item}});
    auto* centre = NSNotificationCenter::defaultCenter();
    centre->postNotificationName_object_userInfo(NSMenuWillSendActionNotification, menu, info);
    NSApplication::sharedApplication()->sendAction_to_from(item->action(), target, item);
    centre->postNotificationName_object_userInfo(NSMenuDidSendActionNotification, menu, info);
}

// MARK: Handles

namespace {

constinit MenuID highlightedNumber = 0;

}  // namespace

MenuRef _NSGetCarbonMenu(NSMenu* menu) {
    static constinit MenuID lastNumber = 0;
    NSMenu* bar = NSApplication::sharedApplication()->mainMenu();
    if (!menu || !bar || menu->supermenu() != bar) return nullptr;
    if (menu->_handle.number == 0) menu->_handle.number = ++lastNumber;
    return &menu->_handle;
}

MenuID GetMenuID(MenuRef menu) { return menu ? menu->number : MenuID{0}; }

MenuID highlightedMenu() { return highlightedNumber; }

void HiliteMenu(MenuID number) {
    if (number == highlightedNumber) return;
    highlightedNumber = number;
    if (NSMenu* bar = NSApplication::sharedApplication()->mainMenu()) bar->tellObservers();
}

}  // namespace pelvor
