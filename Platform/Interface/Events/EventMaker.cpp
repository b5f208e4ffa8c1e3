// SPDX-License-Identifier: Apache-2.0
#include "Interface/Events/EventMaker.h"

#include <cmath>
#include <cstdlib>
#include <utility>

namespace pelvor {
namespace {

constexpr std::pair<std::uint32_t, std::uint32_t> kModifiers[] = {
    {kBackendCapsLock, NSAlphaShiftKeyMask}, {kBackendShift, NSShiftKeyMask},
    {kBackendControl, NSControlKeyMask},     {kBackendOption, NSAlternateKeyMask},
    {kBackendCommand, NSCommandKeyMask},     {kBackendNumericPad, NSNumericPadKeyMask},
};

// XKB's symbols of Shift, Control, Caps Lock and their like, and of the third level.
bool isModifierKey(std::uint32_t symbol) {
    return (symbol >= 0xFFE1 && symbol <= 0xFFEE) || (symbol >= 0xFE01 && symbol <= 0xFE13) ||
           symbol == 0xFF7E || symbol == 0xFF7F;
}

std::uint32_t flagsOfKey(const BackendKey& key) {
    std::uint32_t flags = modifierFlags(key.modifiers);
    const char16_t unit = key.characters.empty() ? u'\0' : key.characters[0];
    if (unit >= 0xF700 && unit <= 0xF8FF) flags |= NSFunctionKeyMask;
    if (unit >= NSUpArrowFunctionKey && unit <= NSRightArrowFunctionKey) flags |= NSNumericPadKeyMask;
    return flags;
}

// The types of presses, releases and drags with the main, second and any other button.
NSEventType typeOfButton(int button, NSEventType main, NSEventType second, NSEventType other) {
    return button == 1 ? main : button == 2 ? second : other;
}

int firstButton(std::uint32_t buttons) {
    for (int button = 1; button <= 32; ++button)
        if (buttons & (1u << (button - 1))) return button;
    return 0;
}

}  // namespace

std::uint32_t modifierFlags(std::uint32_t modifiers) {
    std::uint32_t flags = 0;
    for (auto [backend, flag] : kModifiers)
        if (modifiers & backend) flags |= flag;
    return flags;
}

std::uint32_t backendModifiers(std::uint32_t flags) {
    std::uint32_t modifiers = 0;
    for (auto [backend, flag] : kModifiers)
        if (flags & flag) modifiers |= backend;
    return modifiers;
}

Retained<NSEvent> EventMaker::simple(NSEventType type, NSInteger windowNumber, NSPoint place,
                                     std::uint32_t modifiers, double seconds) {
    auto event = make<NSEvent>();
    event->_type = type;
    event->_windowNumber = windowNumber;
    event->_place = place;
    event->_modifiers = modifiers;
    event->_seconds = seconds;
    return event;
}

Retained<NSEvent> EventMaker::key(NSInteger windowNumber, NSPoint place, const BackendKey& key) {
    const bool isModifier = key.characters.empty() && isModifierKey(key.symbol);
    const NSEventType type = isModifier ? NSFlagsChanged : key.isDown ? NSKeyDown : NSKeyUp;
    auto event = simple(type, windowNumber, place, flagsOfKey(key), key.seconds);
    event->_keyCode = key.code;
    event->_isRepeat = key.isRepeat;
    if (!isModifier) event->_key = std::make_unique<BackendKey>(key);
    return event;
}

Retained<NSEvent> EventMaker::enterExit(bool isEnter, NSInteger windowNumber, NSPoint place,
                                        std::uint32_t modifiers, double seconds, NSInteger tag, void* data) {
    auto event = simple(isEnter ? NSMouseEntered : NSMouseExited, windowNumber, place, modifiers, seconds);
    event->_data1 = tag;
    event->_userData = data;
    return event;
}

Retained<NSEvent> EventMaker::joined(NSEvent* first, NSEvent* second) {
    auto event =
        simple(second->_type, second->_windowNumber, second->_place, second->_modifiers, second->_seconds);
    event->_buttonNumber = second->_buttonNumber;
    event->_eventNumber = second->_eventNumber;
    event->_pressure = second->_pressure;
    event->_deltaX = first->_deltaX + second->_deltaX;
    event->_deltaY = first->_deltaY + second->_deltaY;
    return event;
}

void EventMaker::countPress(const BackendPointer& pointer, float scale) {
    const float reach = 4 * scale;
    const bool isNear = static_cast<float>(std::abs(pointer.onScreen.x - _lastPlace.x)) <= reach &&
                        static_cast<float>(std::abs(pointer.onScreen.y - _lastPlace.y)) <= reach;
    const bool isSoon = pointer.seconds - _lastPress <= NSEvent::doubleClickInterval();
    _clickCount = _clickCount && isNear && isSoon && pointer.button == _lastButton ? _clickCount + 1 : 1;
    _lastButton = pointer.button;
    _lastPress = pointer.seconds;
    _lastPlace = pointer.onScreen;
}

Retained<NSEvent> EventMaker::pointer(NSInteger windowNumber, NSPoint place, const BackendPointer& pointer,
                                      float scale) {
    using Kind = BackendPointer::Kind;
    int button = pointer.button;
    NSEventType type = NSMouseMoved;
    switch (pointer.kind) {
        case Kind::down:
            countPress(pointer, scale);
            ++_eventNumber;
            type = typeOfButton(button, NSLeftMouseDown, NSRightMouseDown, NSOtherMouseDown);
            break;
        case Kind::up:
            type = typeOfButton(button, NSLeftMouseUp, NSRightMouseUp, NSOtherMouseUp);
            break;
        case Kind::moved:
            button = firstButton(pointer.buttonsDown);
            if (button)
                type = typeOfButton(button, NSLeftMouseDragged, NSRightMouseDragged, NSOtherMouseDragged);
            break;
        case Kind::scrolled:
            type = NSScrollWheel;
            break;
        case Kind::entered:
        case Kind::exited:
            _lastMove = pointer.onScreen;
            return nullptr;
    }
    auto event = simple(type, windowNumber, place, modifierFlags(pointer.modifiers), pointer.seconds);
    event->_buttonNumber = button ? button - 1 : 0;
    event->_eventNumber = _eventNumber;
    event->_clickCount = pointer.kind == Kind::down || pointer.kind == Kind::up ? _clickCount : 0;
    event->_pressure = pointer.kind == Kind::down || button ? 1 : 0;
    if (pointer.kind == Kind::scrolled) {
        event->_deltaX = -pointer.linesX;
        event->_deltaY = -pointer.linesY;
    } else {
        event->_deltaX = static_cast<float>(pointer.onScreen.x - _lastMove.x) / scale;
        event->_deltaY = static_cast<float>(pointer.onScreen.y - _lastMove.y) / scale;
        _lastMove = pointer.onScreen;
    }
    return event;
}

}  // namespace pelvor
