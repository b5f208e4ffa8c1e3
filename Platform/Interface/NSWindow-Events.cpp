// SPDX-License-Identifier: Apache-2.0
// Events and responders of windows.
#include <algorithm>

#include "Interface/Events/ApplicationState.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

ApplicationState& application() { return NSApplication::sharedApplication()->state(); }

}  // namespace

// MARK: The first responder

NSResponder* NSWindow::firstResponder() { return _state->responder(); }

bool NSWindow::makeFirstResponder(NSResponder* responder) {
    const auto held = Retained<NSWindow>::retaining(this);
    const auto next = Retained<NSResponder>::retaining(responder == this ? nullptr : responder);
    const auto old = Retained<NSResponder>::retaining(firstResponder());
    if (old == (next ? next.get() : this)) return true;
    if (old != this && !old->resignFirstResponder()) return false;
    _state->firstResponder = {};
    NSInputManager::currentInputManager()->abandonMarkedTextInWindow(this);
    // Whoever becomes it may pass it on, as a text field does to its editor.
    if (next && next->becomeFirstResponder() && firstResponder() == this)
        _state->firstResponder = WeakHandle(next);
    return true;
}

NSView* NSWindow::initialFirstResponder() {
    return cast<NSView>(_state->initialFirstResponder.object().autorelease());
}
void NSWindow::setInitialFirstResponder(NSView* view) { _state->initialFirstResponder = WeakHandle(view); }

// MARK: Key views

bool NSWindow::autorecalculatesKeyViewLoop() { return _state->recalculatesKeyViewLoop; }
void NSWindow::setAutorecalculatesKeyViewLoop(bool recalculates) {
    _state->recalculatesKeyViewLoop = recalculates;
}

namespace {

struct PlacedView {
    NSView* view;
    ViewRect place;  // in base coordinates
};

void collect(NSView* view, std::vector<PlacedView>& views) {
    for (id each : view->subviews()) {
        auto* subview = static_cast<NSView*>(each);
        if (subview->acceptsFirstResponder())
            views.push_back({subview, ViewRect::of(subview->convertRect_toView(subview->bounds(), nullptr))});
        collect(subview, views);
    }
}

// Line by line: views whose middle is beside the first view of a line belong to it.
void sortByLines(std::vector<PlacedView>& views) {
    std::stable_sort(views.begin(), views.end(),
                     [](const PlacedView& a, const PlacedView& b) { return a.place.top > b.place.top; });
    for (auto line = views.begin(); line != views.end();) {
        const double bottom = line->place.bottom;
        auto end = std::find_if(line, views.end(), [=](const PlacedView& each) {
            return (each.place.bottom + each.place.top) / 2 < bottom;
        });
        if (end == line) ++end;
        std::stable_sort(
            line, end, [](const PlacedView& a, const PlacedView& b) { return a.place.left < b.place.left; });
        line = end;
    }
}

}  // namespace

void NSWindow::recalculateKeyViewLoop() {
    std::vector<PlacedView> views;
    collect(_state->root, views);
    sortByLines(views);
    for (std::size_t i = 0; i < views.size(); ++i)
        views[i].view->linkKeyView(views[(i + 1) % views.size()].view);
}

// From a view without key views around it, the first one of the window that can take the keys.
void NSWindow::selectKeyView(NSView* from, bool forwards) {
    const auto held = Retained<NSWindow>::retaining(this);
    if (_state->recalculatesKeyViewLoop) recalculateKeyViewLoop();
    NSView* found = from ? (forwards ? from->nextValidKeyView() : from->previousValidKeyView()) : nullptr;
    if (!found && !from) {
        found = initialFirstResponder();
        std::vector<PlacedView> views;
        if (!found) collect(_state->root, views);
        sortByLines(views);
        if (!forwards) std::reverse(views.begin(), views.end());
        for (const PlacedView& each : views)
            if (!found && each.view->canBecomeKeyView()) found = each.view;
    }
    if (!found) return;
    const auto view = Retained<NSView>::retaining(found);
    if (!makeFirstResponder(view)) return;
    if (view->respondsToSelector("selectText:"_sel)) send(view.get(), "selectText:"_sel, id(this));
}

void NSWindow::selectNextKeyView(id) { selectKeyView(_state->keyViewOfResponder(), true); }
void NSWindow::selectPreviousKeyView(id) { selectKeyView(_state->keyViewOfResponder(), false); }
void NSWindow::selectKeyViewFollowingView(NSView* view) { selectKeyView(view, true); }
void NSWindow::selectKeyViewPrecedingView(NSView* view) { selectKeyView(view, false); }

// A field editor stands for the control that it edits.
NSView* WindowState::keyViewOfResponder() {
    auto* view = cast<NSView>(static_cast<id>(responder()));
    if (view && view->respondsToSelector("isFieldEditor"_sel) && send<bool>(view, "isFieldEditor"_sel))
        if (auto* edited = cast<NSView>(send<id>(view, "delegate"_sel))) return edited;
    return view;
}

// MARK: Events

void NSWindow::sendEvent(NSEvent* event) {
    if (!event) return;
    const auto held = Retained<NSWindow>::retaining(this);
    const auto heldEvent = Retained<NSEvent>::retaining(event);
    switch (event->type()) {
        case NSKeyDown:
        case NSKeyUp:
        case NSFlagsChanged:
            return _state->sendKey(event);
        case NSScrollWheel:
            if (auto target = Retained<NSView>::retaining(_state->hit(event->locationInWindow())))
                send(target.get(), "scrollWheel:"_sel, event);
            return;
        case NSMouseMoved:
            _state->tracking.pointerMoved(event, true);
            if (_state->acceptsMouseMovedEvents) send(firstResponder(), "mouseMoved:"_sel, event);
            return;
        case NSMouseEntered:
            if (!event->trackingNumber()) _state->tracking.pointerMoved(event, true);
            return;
        case NSMouseExited:
            if (!event->trackingNumber()) _state->tracking.pointerLeft(event);
            return;
        case NSSystemDefined:
        case NSApplicationDefined:
        case NSPeriodic:
        case NSCursorUpdate:
            return;
        default:
            if (!_state->ignoresMouseEvents) _state->sendMouse(event);
    }
}

void NSWindow::postEvent_atStart(NSEvent* event, bool atStart) {
    application().app->postEvent_atStart(event, atStart);
}

NSEvent* NSWindow::nextEventMatchingMask(NSUInteger mask) {
    return nextEventMatchingMask_untilDate_inMode_dequeue(mask, NSDate::distantFuture(),
                                                          NSEventTrackingRunLoopMode, true);
}

NSEvent* NSWindow::nextEventMatchingMask_untilDate_inMode_dequeue(NSUInteger mask, NSDate* limit,
                                                                  NSString* mode, bool dequeue) {
    return application().app->nextEventMatchingMask_untilDate_inMode_dequeue(mask, limit, mode, dequeue);
}

void NSWindow::discardEventsMatchingMask_beforeEvent(NSUInteger mask, NSEvent* last) {
    application().app->discardEventsMatchingMask_beforeEvent(mask, last);
}

NSEvent* NSWindow::currentEvent() { return application().current; }

NSPoint NSWindow::mouseLocationOutsideOfEventStream() {
    return convertScreenToBase(NSEvent::mouseLocation());
}

bool NSWindow::acceptsMouseMovedEvents() { return _state->acceptsMouseMovedEvents; }
void NSWindow::setAcceptsMouseMovedEvents(bool accepts) { _state->acceptsMouseMovedEvents = accepts; }
bool NSWindow::ignoresMouseEvents() { return _state->ignoresMouseEvents; }
void NSWindow::setIgnoresMouseEvents(bool ignores) { _state->ignoresMouseEvents = ignores; }

bool NSWindow::performKeyEquivalent(NSEvent* event) {
    return event && _state->root->performKeyEquivalent(event);
}

void NSWindow::keyDown(NSEvent* event) {
    if (!event || event->type() != NSKeyDown) return;
    const auto held = Retained<NSWindow>::retaining(this);
    NSString* characters = event->characters();
    const unichar key = characters->length() ? characters->characterAtIndex(0) : 0;
    const std::uint32_t shortcut = NSCommandKeyMask | NSAlternateKeyMask | NSControlKeyMask;
    if (key == NSTabCharacter && !(event->modifierFlags() & (shortcut | NSShiftKeyMask)))
        selectNextKeyView(this);
    else if ((key == NSTabCharacter || key == NSBackTabCharacter) && !(event->modifierFlags() & shortcut))
        selectPreviousKeyView(this);
    else if (!performKeyEquivalent(event))
        NSBeep();
}

void NSWindow::doCommandBySelector(SEL selector) {
    const auto held = Retained<NSWindow>::retaining(this);
    if (selector == "insertTab:"_sel) return selectNextKeyView(this);
    if (selector == "insertBacktab:"_sel) return selectPreviousKeyView(this);
    if (!selector || tryToPerform_with(selector, nullptr) ||
        NSApplication::sharedApplication()->tryToPerform_with(selector, nullptr))
        return;
    // What a key means that no text takes may be a button's.
    NSEvent* event = application().current;
    const bool isKey = event && event->type() == NSKeyDown;
    if (!isKey || !performKeyEquivalent(event)) NSBeep();
}

bool NSWindow::tryToPerform_with(SEL action, id argument) {
    if (NSResponder::tryToPerform_with(action, argument)) return true;
    Retained<Object> other = _state->delegate.object();
    if (!action || !other || !other->respondsToSelector(action)) return false;
    send(other.get(), action, argument);
    return true;
}

}  // namespace pelvor
