// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSEvent.h"

#include <atomic>
#include <cstdio>
#include <iterator>

#include "Interface/Backend/Backend.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {
namespace {

constinit std::atomic<KeyModifierSource> keyModifierSource{nullptr};

}  // namespace

PELVOR_DEFINE_CLASS(NSEvent, interfaceLibrary) {}

NSEvent::NSEvent() = default;
NSEvent::~NSEvent() = default;

NSString* NSEvent::description() {
    static constexpr const char* kNames[] = {"?",
                                             "LeftMouseDown",
                                             "LeftMouseUp",
                                             "RightMouseDown",
                                             "RightMouseUp",
                                             "MouseMoved",
                                             "LeftMouseDragged",
                                             "RightMouseDragged",
                                             "MouseEntered",
                                             "MouseExited",
                                             "KeyDown",
                                             "KeyUp",
                                             "FlagsChanged",
                                             "?",
                                             "SystemDefined",
                                             "Application",
                                             "Periodic",
                                             "CursorUpdate",
                                             "?",
                                             "?",
                                             "?",
                                             "?",
                                             "ScrollWheel",
                                             "?",
                                             "?",
                                             "OtherMouseDown",
                                             "OtherMouseUp",
                                             "OtherMouseDragged"};
    char text[160];
    std::snprintf(text, sizeof text, "NSEvent: type=%s loc=(%g, %g) flags=0x%x win=%d",
                  kNames[_type < static_cast<int>(std::size(kNames)) ? _type : 0],
                  static_cast<double>(_place.x), static_cast<double>(_place.y), _modifiers, _windowNumber);
    std::string whole = text;
    if (_key) whole += " chars=\"" + NSString::of(_key->characters)->toUTF8() + "\"";
    return NSString::ofUTF8(whole);
}

void setKeyModifierSource(KeyModifierSource source) { keyModifierSource = source; }

std::uint32_t GetCurrentKeyModifiers() {
    KeyModifierSource source = keyModifierSource;
    return source ? source() : 0;
}

}  // namespace pelvor
