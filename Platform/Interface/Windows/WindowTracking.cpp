// SPDX-License-Identifier: Apache-2.0
#include "Interface/Windows/WindowTracking.h"

#include <algorithm>

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/Events/EventMaker.h"
#include "Interface/NSCursor.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/ToolTipView.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"

namespace pelvor {

NSTrackingRectTag WindowTracking::add(NSView* view, NSRect rect, id owner, void* userData, bool isInside) {
    _rects.push_back({++_lastTag, view, rect, WeakHandle(owner), userData, isInside});
    return _lastTag;
}

void WindowTracking::remove(NSTrackingRectTag tag) {
    std::erase_if(_rects, [=](const Rect& rect) { return rect.tag == tag; });
}

void WindowTracking::forget(NSView* view) {
    std::erase_if(_rects, [=](const Rect& rect) { return rect.view == view; });
}

void WindowTracking::noteGeometryChange() {
    ++_generation;
    if (!_isPointerInside || _isStale) return;
    _isStale = true;
    DisplayConnection::shared().needsTurn();
}

void WindowTracking::discardCursorRects() { noteGeometryChange(); }

void WindowTracking::pointerMoved(NSEvent* event, bool setsCursor) {
    const bool hasMoved = std::exchange(_place, event->locationInWindow()) != event->locationInWindow();
    const bool wasInside = std::exchange(_isPointerInside, true);
    if (setsCursor || !wasInside) {
        setCursorAt(_place);
        // A menu before the pointer may have gone; the user has pointed at nothing by that.
        if (hasMoved)
            ToolTipView::follow(_window->state().root->hitTest(_place), _window->convertBaseToScreen(_place));
    }
    cross(event, true);
}

void WindowTracking::pointerLeft(NSEvent* event) {
    _isPointerInside = false;
    ToolTipView::hide();
    cross(event, false);
}

void WindowTracking::refresh() {
    if (!std::exchange(_isStale, false) || !_isPointerInside) return;
    setCursorAt(_place);
    cross(EventMaker::simple(NSMouseMoved, _window->windowNumber(), _place, 0, 0).get(), true);
}

// Owners may add and remove rectangles when they are told, so the changes are collected first.
void WindowTracking::cross(NSEvent* event, bool isInWindow) {
    struct Crossing {
        Retained<Object> owner;
        Retained<NSEvent> event;
        SEL selector;
    };
    std::vector<Crossing> crossings;
    for (Rect& rect : _rects) {
        bool isInside = isInWindow;
        if (isInside) {
            const NSPoint place = rect.view->convertPoint_fromView(event->locationInWindow(), nullptr);
            isInside =
                rect.view->mouse_inRect(place, NSIntersectionRect(rect.rect, rect.view->visibleRect()));
        }
        if (isInside == std::exchange(rect.isInside, isInside)) continue;
        crossings.push_back(
            {rect.owner.object(),
             EventMaker::enterExit(isInside, event->windowNumber(), event->locationInWindow(),
                                   event->modifierFlags(), event->timestamp(), rect.tag, rect.userData),
             isInside ? "mouseEntered:"_sel : "mouseExited:"_sel});
    }
    for (const Crossing& crossing : crossings)
        if (crossing.owner && crossing.owner->respondsToSelector(crossing.selector))
            send(crossing.owner.get(), crossing.selector, crossing.event.get());
}

// The innermost view that has a rectangle there decides; of its rectangles, the last one.
NSCursor* WindowTracking::cursorAt(NSPoint place) {
    auto view = Retained<NSView>::retaining(_window->state().root->hitTest(place));
    while (view) {
        NSView::Extras& extras = view->extras();
        if (extras.cursorGeneration != _generation) {
            extras.cursorGeneration = _generation;
            extras.cursorRects.clear();
            view->resetCursorRects();
        }
        const NSPoint inside = view->convertPoint_fromView(place, nullptr);
        for (auto known = extras.cursorRects.rbegin(); known != extras.cursorRects.rend(); ++known)
            if (view->mouse_inRect(inside, known->rect)) return known->cursor;
        view.set(view->superview());
    }
    return NSCursor::arrowCursor();
}

void WindowTracking::setCursorAt(NSPoint place) {
    if (!areCursorRectsEnabled) return;
    NSApplication::sharedApplication()->state().pointerWindow = WeakHandle(_window);
    cursorAt(place)->set();
}

}  // namespace pelvor
