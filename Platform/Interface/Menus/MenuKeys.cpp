// SPDX-License-Identifier: Apache-2.0
#include "Interface/Menus/MenuKeys.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSDictionary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuBarView.h"
#include "Interface/Windows/WindowState.h"

namespace pelvor {
namespace {

constexpr double kLoneSeconds = 0.5;
constexpr float kLoneDistance = 4;  // of the pointer, between press and release
constexpr std::uint32_t kModifiers =
    NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask;

char16_t smallLetter(char16_t unit) {
    if (unit >= u'A' && unit <= u'Z') return static_cast<char16_t>(unit - u'A' + u'a');
    return unit >= u'a' && unit <= u'z' ? unit : u'\0';
}

bool hasKeyEquivalent(NSMenu* menu, NSString* letter) {
    return std::ranges::any_of(menu->items(), [&](const auto& item) {
        return item->submenu() ? hasKeyEquivalent(item->submenu(), letter)
                               : item->matchesKey_modifiers(letter, NSAlternateKeyMask);
    });
}

// Whether Alt with the letter chooses something already.
bool isCommand(NSMenu* menu, NSDictionary* keyBindings, char16_t letter) {
    NSString* text = NSString::stringWithCharacters_length(&letter, 1);
    return hasKeyEquivalent(menu, text) || keyBindings->objectForKey(u"~"_ns->stringByAppendingString(text));
}

// The menu bar in the view; null if the view holds no menu bar.
NSMenuBarView* barIn(NSView* view) {
    if (auto* bar = cast<NSMenuBarView>(static_cast<id>(view))) return bar;
    for (id subview : view->subviews())
        if (NSMenuBarView* found = barIn(static_cast<NSView*>(subview))) return found;
    return nullptr;
}

NSMenuBarView* barOf(NSWindow* window) {
    NSMenuBarView* bar = window ? barIn(window->state().root) : nullptr;
    return bar && !bar->isHiddenOrHasHiddenAncestor() ? bar : nullptr;
}

}  // namespace

std::vector<TitleLetter> titleLetters(NSMenu* menu) {
    std::vector<TitleLetter> letters;
    NSDictionary* keyBindings = NSInputManager::keyBindings();
    const auto isTaken = [&](char16_t letter) {
        return std::ranges::find(letters, letter, &TitleLetter::letter) != letters.end() ||
               isCommand(menu, keyBindings, letter);
    };
    for (const auto& item : menu->items()) {
        if (item->isHidden() || !item->submenu()) continue;
        NSString* title = item->title();
        for (NSUInteger place = 0; place < title->length(); ++place) {
            const char16_t letter = smallLetter(title->characterAtIndex(place));
            if (!letter || isTaken(letter)) continue;
            letters.push_back({item, place, letter});
            break;
        }
    }
    return letters;
}

NSMenuItem* itemForLetter(NSMenu* menu, NSEvent* event) {
    // A dead key types no character.
    if ((event->modifierFlags() & kModifiers) != NSAlternateKeyMask || event->characters()->length() == 0)
        return nullptr;
    NSString* key = event->shortcutCharacters();
    const char16_t letter = key->length() == 1 ? smallLetter(key->characterAtIndex(0)) : u'\0';
    if (!letter) return nullptr;
    const auto letters = titleLetters(menu);
    const auto found = std::ranges::find(letters, letter, &TitleLetter::letter);
    return found == letters.end() ? nullptr : found->item;
}

// MARK: MenuKeys

bool MenuKeys::isAltAlone(NSEvent* event) {
    switch (event->type()) {
        case NSFlagsChanged:
            break;
        case NSKeyDown:
        case NSLeftMouseDown:
        case NSRightMouseDown:
        case NSOtherMouseDown:
        case NSScrollWheel:
            _isAltPressed = false;
            [[fallthrough]];
        case NSKeyUp:
        case NSMouseMoved:
            _modifiers = event->modifierFlags() & kModifiers;
            return false;
        case NSSystemDefined:  // the keys go elsewhere, or a window moves
            _isAltPressed = false;
            return false;
        default:
            return false;
    }
    const std::uint32_t before = std::exchange(_modifiers, event->modifierFlags() & kModifiers);
    const bool wasPressed = std::exchange(_isAltPressed, before == 0 && _modifiers == NSAlternateKeyMask);
    const NSPoint place = NSEvent::mouseLocation();
    if (_isAltPressed) {
        _pressTime = event->timestamp();
        _pressPlace = place;
    }
    return wasPressed && _modifiers == 0 && event->timestamp() - _pressTime < kLoneSeconds &&
           std::hypot(place.x - _pressPlace.x, place.y - _pressPlace.y) < kLoneDistance;
}

void MenuKeys::showLetters(NSWindow* window) {
    const bool isAlt = _modifiers == NSAlternateKeyMask;
    const auto shown = cast<NSMenuBarView>(_letteredBar.object());
    if (!isAlt && !shown) return;
    NSMenuBarView* bar = isAlt ? barOf(window) : nullptr;
    if (bar == shown) return;
    if (shown) shown->showLetters(false);
    if (bar) bar->showLetters(true);
    _letteredBar = WeakHandle(bar);
}

bool MenuKeys::openByLetter(NSEvent* event, NSWindow* window) {
    if ((event->modifierFlags() & kModifiers) != NSAlternateKeyMask) return false;
    const auto bar = Retained<NSMenuBarView>::retaining(barOf(window));
    return bar && bar->openByLetter(event);
}

void MenuKeys::openFirst(NSWindow* window) {
    if (const auto bar = Retained<NSMenuBarView>::retaining(barOf(window))) bar->openByKeyboard();
}

}  // namespace pelvor
