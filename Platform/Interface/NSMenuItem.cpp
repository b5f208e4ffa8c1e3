// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSMenuItem.h"

#include <algorithm>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSString.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/KeyEquivalents.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSMenu.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMenuItem, interfaceLibrary) {
    methods.creator<"init", &NSMenuItem::init>();
    methods.creator<"initWithTitle:action:keyEquivalent:", &NSMenuItem::initWithTitle_action_keyEquivalent>();
    methods.creator<"separatorItem", &NSMenuItem::separatorItem>();
    methods.instance<"title", &NSMenuItem::title>();
    methods.instance<"setTitle:", &NSMenuItem::setTitle>();
    methods.instance<"attributedTitle", &NSMenuItem::attributedTitle>();
    methods.instance<"setAttributedTitle:", &NSMenuItem::setAttributedTitle>();
    methods.instance<"image", &NSMenuItem::image>();
    methods.instance<"setImage:", &NSMenuItem::setImage>();
    methods.instance<"state", &NSMenuItem::state>();
    methods.instance<"setState:", &NSMenuItem::setState>();
    methods.instance<"indentationLevel", &NSMenuItem::indentationLevel>();
    methods.instance<"setIndentationLevel:", &NSMenuItem::setIndentationLevel>();
    methods.instance<"isHidden", &NSMenuItem::isHidden>();
    methods.instance<"setHidden:", &NSMenuItem::setHidden>();
    methods.instance<"isEnabled", &NSMenuItem::isEnabled>();
    methods.instance<"setEnabled:", &NSMenuItem::setEnabled>();
    methods.instance<"isSeparatorItem", &NSMenuItem::isSeparatorItem>();
    methods.instance<"isHighlighted", &NSMenuItem::isHighlighted>();
    methods.instance<"action", &NSMenuItem::action>();
    methods.instance<"setAction:", &NSMenuItem::setAction>();
    methods.instance<"target", &NSMenuItem::target>();
    methods.instance<"setTarget:", &NSMenuItem::setTarget>();
    methods.instance<"tag", &NSMenuItem::tag>();
    methods.instance<"setTag:", &NSMenuItem::setTag>();
    methods.instance<"representedObject", &NSMenuItem::representedObject>();
    methods.instance<"setRepresentedObject:", &NSMenuItem::setRepresentedObject>();
    methods.instance<"keyEquivalent", &NSMenuItem::keyEquivalent>();
    methods.instance<"setKeyEquivalent:", &NSMenuItem::setKeyEquivalent>();
    methods.instance<"keyEquivalentModifierMask", &NSMenuItem::keyEquivalentModifierMask>();
    methods.instance<"setKeyEquivalentModifierMask:", &NSMenuItem::setKeyEquivalentModifierMask>();
    methods.instance<"menu", &NSMenuItem::menu>();
    methods.instance<"hasSubmenu", &NSMenuItem::hasSubmenu>();
    methods.instance<"submenu", &NSMenuItem::submenu>();
    methods.instance<"setSubmenu:", &NSMenuItem::setSubmenu>();
    methods.instance<"parentItem", &NSMenuItem::parentItem>();
}

NSMenuItem::NSMenuItem()
    : _title(Retained<NSString>::retaining(u""_ns)),
      _keyEquivalent(_title),
      _keyEquivalentModifierMask(NSCommandKeyMask) {}

NSMenuItem::~NSMenuItem() {
    if (_submenu) _submenu->_superitem = nullptr;
}

// MARK: Creation

Retained<NSMenuItem> NSMenuItem::init(Class* cls) {
    return initWithTitle_action_keyEquivalent(u""_ns, SEL(), u""_ns, cls);
}

Retained<NSMenuItem> NSMenuItem::initWithTitle_action_keyEquivalent(NSString* title, SEL action,
                                                                    NSString* keyEquivalent, Class* cls) {
    requireArgument(title, "initWithTitle:action:keyEquivalent:", "the title");
    requireArgument(keyEquivalent, "initWithTitle:action:keyEquivalent:", "the key equivalent");
    auto item = make<NSMenuItem>(cls);
    item->setTitle(title);  // a class that poses as this one hears of the title here
    item->_action = action;
    item->_keyEquivalent = keyEquivalent->copy();
    return item;
}

NSMenuItem* NSMenuItem::separatorItem(Class* cls) {
    auto item = init(cls);
    item->_isSeparator = true;
    item->_isEnabled = false;
    return std::move(item).autorelease();
}

// MARK: Properties

void NSMenuItem::didChange() {
    if (_menu) _menu->didChange();
}

// Where the lines of the menu stand has not changed.
void NSMenuItem::didChangeLook() {
    if (_menu) _menu->tellObservers();
}

template <class T>
void NSMenuItem::change(T& field, T value) {
    if (field == value) return;
    std::swap(field, value);
    didChange();
}

void NSMenuItem::setTitle(NSString* title) {
    requireArgument(title, "setTitle:", "the title");
    if (!_title->isEqualToString(title)) change(_title, title->copy());
}

void NSMenuItem::setAttributedTitle(NSAttributedString* title) {
    change(_attributedTitle, title ? title->copy() : nullptr);
}

void NSMenuItem::setImage(NSImage* image) { change(_image, Retained<NSImage>::retaining(image)); }

void NSMenuItem::setState(NSInteger state) {
    const NSInteger former = std::exchange(_state, std::clamp<NSInteger>(state, -1, 1));
    if (_state != former) didChangeLook();
}

void NSMenuItem::setIndentationLevel(NSInteger level) {
    change(_indentationLevel, std::clamp<NSInteger>(level, 0, 15));
}

void NSMenuItem::setHidden(bool isHidden) { change(_isHidden, isHidden); }
void NSMenuItem::setEnabled(bool isEnabled) {
    if (std::exchange(_isEnabled, isEnabled) != isEnabled) didChangeLook();
}
void NSMenuItem::setAction(SEL action) { _action = action; }
id NSMenuItem::target() { return heldTarget().autorelease(); }
void NSMenuItem::setTarget(id target) {
    _target = WeakHandle(target);
    _hasTarget = target != nullptr;
}

void NSMenuItem::setKeyEquivalent(NSString* key) {
    requireArgument(key, "setKeyEquivalent:", "the key");
    change(_keyEquivalent, key->copy());
}

void NSMenuItem::setKeyEquivalentModifierMask(NSUInteger mask) { change(_keyEquivalentModifierMask, mask); }

bool NSMenuItem::matchesKey_modifiers(NSString* characters, NSUInteger modifiers) {
    return isKeyEquivalent(_keyEquivalent, _keyEquivalentModifierMask, characters, modifiers);
}

NSString* NSMenuItem::description() {
    return NSString::stringWithFormat(u"<%s: %p \"%@\">"_ns, isa()->publicName(), static_cast<void*>(this),
                                      title());
}

// MARK: The item's place

void NSMenuItem::setSubmenu(NSMenu* submenu) {
    if (submenu == _submenu) return;
    if (submenu && submenu->_superitem)
        raiseBadArgument("setSubmenu:", "the menu is the submenu of another item");
    if (submenu && _menu && (submenu == _menu || submenu->contains(_menu)))
        raiseBadArgument("setSubmenu:", "the menu contains the item");
    auto former = Retained<NSMenu>::retaining(submenu);
    std::swap(_submenu, former);
    if (former) former->_superitem = nullptr;
    if (submenu) submenu->_superitem = this;
    didChange();
}

NSMenuItem* NSMenuItem::parentItem() { return _menu ? _menu->_superitem : nullptr; }

bool NSMenuItem::isHighlighted() { return _menu && _menu->highlightedItem() == this; }

}  // namespace pelvor
