// SPDX-License-Identifier: Apache-2.0
// NSMenu: opening menus anywhere in a window.
#include "Interface/Menus/MenuTracker.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSView.h"
#include "Interface/NSWindow.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

bool isPress(NSEvent* event) {
    const NSEventType type = event->type();
    return type == NSLeftMouseDown || type == NSRightMouseDown || type == NSOtherMouseDown;
}

bool trackAndPerform(NSMenu* menu, const MenuOpening& opening) {
    const auto held = Retained<NSMenu>::retaining(menu);
    MenuTracker tracker;
    const auto chosen = tracker.track(menu, opening);
    if (chosen && chosen->menu()) chosen->menu()->performItem(chosen);
    return static_cast<bool>(chosen);
}

}  // namespace

void NSMenu::popUpContextMenu_withEvent_forView(NSMenu* menu, NSEvent* event, NSView* view) {
    constexpr const char* kOperation = "popUpContextMenu:withEvent:forView:";
    requireArgument(menu, kOperation, "the menu");
    requireArgument(event, kOperation, "the event");
    requireArgument(view, kOperation, "the view");
    NSWindow* window = event->window() ? event->window() : view->window();
    if (!window) return;
    MenuOpening opening{{window->convertBaseToScreen(event->locationInWindow()), {}}};
    opening.side = MenuSide::over;
    opening.isButtonDown = isPress(event);
    opening.isByKeyboard = event->type() == NSKeyDown;
    trackAndPerform(menu, opening);
}

bool NSMenu::popUpMenuPositioningItem_atLocation_inView(NSMenuItem* item, NSPoint place, NSView* view) {
    NSWindow* window = view ? view->window() : nullptr;
    if (view && !window) return false;
    if (window) place = window->convertBaseToScreen(view->convertPoint_toView(place, nullptr));
    MenuOpening opening{{place, {}}};
    opening.side = MenuSide::over;
    opening.itemOverAnchor = item && item->menu() == this ? item : nullptr;
    return trackAndPerform(this, opening);
}

void NSMenu::cancelTracking() { MenuTracker::cancel(this); }

}  // namespace pelvor
