// SPDX-License-Identifier: Apache-2.0
// NSView: the context menu.
#include "Interface/Menus/ContextMenu.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/ViewExtras.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

NSMenu* NSView::menu() { return _extras ? _extras->menu.get() : nullptr; }
void NSView::setMenu(NSMenu* menu) { extras().menu.set(menu); }

NSMenu* NSView::menuForEvent(NSEvent*) { return menu(); }

void NSView::rightMouseDown(NSEvent* event) {
    requireArgument(event, "rightMouseDown:", "the event");
    const auto held = Retained<NSView>::retaining(this);
    if (NSMenu* menu = send<NSMenu*>(this, "menuForEvent:"_sel, event))
        NSMenu::popUpContextMenu_withEvent_forView(menu, event, this);
    else
        NSResponder::rightMouseDown(event);
}

NSPoint NSView::contextMenuPlace() {
    const NSRect seen = visibleRect();
    return {NSMidX(seen), NSMidY(seen)};
}

bool openContextMenu(NSEvent* event, NSWindow* window) {
    NSString* key = event->charactersIgnoringModifiers();
    const unichar character = key->length() > 0 ? key->characterAtIndex(0) : u'\0';
    const bool isShiftF10 = character == NSF10FunctionKey && (event->modifierFlags() & NSShiftKeyMask);
    if (character != NSMenuFunctionKey && !isShiftF10) return false;
    if (!window) return false;
    NSResponder* responder = window->firstResponder();
    if (responder == window) responder = window->contentView();
    for (; responder; responder = responder->nextResponder()) {
        const auto view = Retained<NSView>::retaining(cast<NSView>(responder));
        NSMenu* menu = view ? send<NSMenu*>(view.get(), "menuForEvent:"_sel, event) : nullptr;
        if (!menu) continue;
        const NSPoint place =
            view->convertPoint_toView(send<NSPoint>(view.get(), "contextMenuPlace"_sel), nullptr);
        NSMenu::popUpContextMenu_withEvent_forView(
            menu,
            NSEvent::
                keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode(
                    NSKeyDown, place, event->modifierFlags(), event->timestamp(), window->windowNumber(),
                    nullptr, key, key, false, event->keyCode()),
            view);
        return true;
    }
    return false;
}

}  // namespace pelvor
