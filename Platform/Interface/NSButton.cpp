// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSButton.h"

#include "Foundation/NSArray.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSButton, interfaceLibrary) {
    methods.classLevel<"cellClass", &NSButton::cellClass>();
    methods.instance<"setButtonType:", &NSButton::setButtonType>();
    methods.instance<"title", &NSButton::title>();
    methods.instance<"setTitle:", &NSButton::setTitle>();
    methods.instance<"alternateTitle", &NSButton::alternateTitle>();
    methods.instance<"setAlternateTitle:", &NSButton::setAlternateTitle>();
    methods.instance<"attributedTitle", &NSButton::attributedTitle>();
    methods.instance<"setAttributedTitle:", &NSButton::setAttributedTitle>();
    methods.instance<"image", &NSButton::image>();
    methods.instance<"setImage:", &NSButton::setImage>();
    methods.instance<"alternateImage", &NSButton::alternateImage>();
    methods.instance<"setAlternateImage:", &NSButton::setAlternateImage>();
    methods.instance<"imagePosition", &NSButton::imagePosition>();
    methods.instance<"setImagePosition:", &NSButton::setImagePosition>();
    methods.instance<"isBordered", &NSButton::isBordered>();
    methods.instance<"setBordered:", &NSButton::setBordered>();
    methods.instance<"state", &NSButton::state>();
    methods.instance<"setState:", &NSButton::setState>();
    methods.instance<"allowsMixedState", &NSButton::allowsMixedState>();
    methods.instance<"setAllowsMixedState:", &NSButton::setAllowsMixedState>();
    methods.instance<"setNextState", &NSButton::setNextState>();
    methods.instance<"keyEquivalent", &NSButton::keyEquivalent>();
    methods.instance<"setKeyEquivalent:", &NSButton::setKeyEquivalent>();
    methods.instance<"keyEquivalentModifierMask", &NSButton::keyEquivalentModifierMask>();
    methods.instance<"setKeyEquivalentModifierMask:", &NSButton::setKeyEquivalentModifierMask>();
    methods.instance<"setPeriodicDelay:interval:", &NSButton::setPeriodicDelay_interval>();
}

// A button may be given a cell of another class, or none.

void NSButton::setButtonType(NSButtonType type) {
    if (auto* button = buttonCell()) button->setButtonType(type);
}

NSString* NSButton::title() { return cell() ? cell()->title() : u""_ns; }

void NSButton::setTitle(NSString* title) {
    if (cell()) cell()->setTitle(title);
}

NSString* NSButton::alternateTitle() { return buttonCell() ? buttonCell()->alternateTitle() : u""_ns; }

void NSButton::setAlternateTitle(NSString* title) {
    if (auto* button = buttonCell()) button->setAlternateTitle(title);
}

NSAttributedString* NSButton::attributedTitle() {
    return buttonCell() ? buttonCell()->attributedTitle() : nullptr;
}

void NSButton::setAttributedTitle(NSAttributedString* title) {
    if (auto* button = buttonCell()) button->setAttributedTitle(title);
}

NSImage* NSButton::image() { return cell() ? cell()->image() : nullptr; }

void NSButton::setImage(NSImage* image) {
    if (cell()) cell()->setImage(image);
}

NSImage* NSButton::alternateImage() { return buttonCell() ? buttonCell()->alternateImage() : nullptr; }

void NSButton::setAlternateImage(NSImage* image) {
    if (auto* button = buttonCell()) button->setAlternateImage(image);
}

NSCellImagePosition NSButton::imagePosition() {
    return buttonCell() ? buttonCell()->imagePosition() : NSNoImage;
}

void NSButton::setImagePosition(NSCellImagePosition position) {
    if (auto* button = buttonCell()) button->setImagePosition(position);
}

bool NSButton::isBordered() { return cell() && cell()->isBordered(); }

void NSButton::setBordered(bool isBordered) {
    if (cell()) cell()->setBordered(isBordered);
}

int NSButton::state() { return cell() ? cell()->state() : NSOffState; }

void NSButton::setState(int state) {
    if (cell()) cell()->setState(state);
}

bool NSButton::allowsMixedState() { return cell() && cell()->allowsMixedState(); }

void NSButton::setAllowsMixedState(bool allows) {
    if (cell()) cell()->setAllowsMixedState(allows);
}

void NSButton::setNextState() {
    if (cell()) cell()->setNextState();
}

NSString* NSButton::keyEquivalent() { return cell() ? cell()->keyEquivalent() : u""_ns; }

void NSButton::setKeyEquivalent(NSString* key) {
    if (auto* button = buttonCell()) button->setKeyEquivalent(key);
}

NSUInteger NSButton::keyEquivalentModifierMask() {
    return buttonCell() ? buttonCell()->keyEquivalentModifierMask() : 0;
}

void NSButton::setKeyEquivalentModifierMask(NSUInteger mask) {
    if (auto* button = buttonCell()) button->setKeyEquivalentModifierMask(mask);
}

void NSButton::setPeriodicDelay_interval(float delay, float interval) {
    if (auto* button = buttonCell()) button->setPeriodicDelay_interval(delay, interval);
}

// MARK: Keys

bool NSButton::acceptsFirstResponder() { return !isInMouseDown() && NSControl::acceptsFirstResponder(); }

// The nearest button at that side in the same row.
NSButton* NSButton::buttonBeside(bool isLeft) {
    NSButton* nearest = nullptr;
    float least = 0;
    for (id each : superview() ? superview()->subviews() : NSArray::array()) {
        auto* button = cast<NSButton>(each);
        if (!button || !button->acceptsFirstResponder() || button->isHiddenOrHasHiddenAncestor()) continue;
        const NSRect own = frame(), other = button->frame();
        const float far = isLeft ? NSMidX(own) - NSMidX(other) : NSMidX(other) - NSMidX(own);
        const bool isInRow = NSMinY(other) < NSMidY(own) && NSMidY(own) < NSMaxY(other);
        if (!isInRow || far <= 0 || (nearest && far >= least)) continue;
        nearest = button;
        least = far;
    }
    return nearest;
}

void NSButton::keyDown(NSEvent* event) {
    NSString* key = event ? event->characters() : u""_ns;
    if (isEnabled() && key->isEqualToString(u" "_ns)) return performClick(this);
    const unichar unit = key->length() == 1 ? key->characterAtIndex(0) : 0;
    const bool isLeft = unit == NSLeftArrowFunctionKey;
    NSButton* beside = isLeft || unit == NSRightArrowFunctionKey ? buttonBeside(isLeft) : nullptr;
    if (beside)
        window()->makeFirstResponder(beside);
    else
        NSControl::keyDown(event);
}

bool NSButton::performKeyEquivalent(NSEvent* event) {
    constexpr NSUInteger kModifiers =
        NSShiftKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask;
    NSString* key = keyEquivalent();
    if (!event || event->type() != NSKeyDown || !key->length() || !isEnabled() ||
        isHiddenOrHasHiddenAncestor() || !event->shortcutCharacters()->isEqualToString(key) ||
        (event->modifierFlags() & kModifiers) != (keyEquivalentModifierMask() & kModifiers))
        return NSControl::performKeyEquivalent(event);
    performClick(this);
    return true;
}

}  // namespace pelvor
