// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/WRShortcutApplication.h"

#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Runtime/Message.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"
#include "Writer/Shortcuts/WRShortcutMatcher.h"

namespace pelvor {
namespace {

// A field in which the user types a new shortcut sees the keys that would be commands elsewhere.
bool isCaptured(NSEvent* event, NSWindow* window) {
    const auto responder = Retained<NSResponder>::retaining(window ? window->firstResponder() : nullptr);
    constexpr NSUInteger kCommands = NSCommandKeyMask | NSAlternateKeyMask | NSControlKeyMask;
    if (!responder || event->type() != NSKeyDown || !(event->modifierFlags() & kCommands) ||
        !responder->respondsToSelector("allowCapturingKeyboardShortcuts"_sel) ||
        !send<bool>(responder.get(), "allowCapturingKeyboardShortcuts"_sel))
        return false;
    send(responder.get(), "captureKeyboardShortcut:"_sel, event);
    return true;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRShortcutApplication, shortcutsLibrary) {
    methods.classLevel<"performPosing", &WRShortcutApplication::performPosing>();
}

void WRShortcutApplication::performPosing() { classObject()->poseAsClass(NSApplication::classObject()); }

void WRShortcutApplication::sendEvent(NSEvent* event) {
    if (event && (isCaptured(event, keyWindow()) || WRShortcutMatcher::sharedMatcher()->takeEvent(event)))
        return;
    NSApplication::sendEvent(event);
}

}  // namespace pelvor
