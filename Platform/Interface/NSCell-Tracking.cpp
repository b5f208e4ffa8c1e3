// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSDate.h"
#include "Interface/NSApplication.h"
#include "Interface/NSCell.h"
#include "Interface/NSControl.h"
#include "Interface/NSCursor.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"

namespace pelvor {
namespace {

// Has the application's queue get periodic events as long as the object lives.
class PeriodicEvents {
  public:
    explicit PeriodicEvents(NSCell* cell) : _isRunning(cell->isContinuous()) {
        if (!_isRunning) return;
        float delay = 0, interval = 0;
        cell->getPeriodicDelay_interval(&delay, &interval);
        NSEvent::startPeriodicEventsAfterDelay_withPeriod(delay, interval);
    }
    ~PeriodicEvents() {
        if (_isRunning) NSEvent::stopPeriodicEvents();
    }
    PeriodicEvents(const PeriodicEvents&) = delete;
    PeriodicEvents& operator=(const PeriodicEvents&) = delete;

  private:
    bool _isRunning;
};

NSPoint placeOf(NSEvent* event, NSView* view) {
    return view->convertPoint_fromView(event->locationInWindow(), nullptr);
}

}  // namespace

void NSCell::sendAction() {
    const SEL action = this->action();
    if (!action) return;
    const auto view = Retained<NSView>::retaining(controlView());
    const auto target = Retained<Object>::retaining(this->target());
    if (auto* control = cast<NSControl>(view.get()))
        control->sendAction_to(action, target);
    else
        NSApplication::sharedApplication()->sendAction_to_from(action, target,
                                                               view ? static_cast<id>(view) : this);
}

void NSCell::performClick(id) {
    if (!_values.isEnabled) return;
    const auto self = Retained<NSCell>::retaining(this);
    setNextState();
    sendAction();
}

bool NSCell::trackMouse_inRect_ofView_untilMouseUp(NSEvent* event, NSRect frame, NSView* view,
                                                   bool untilMouseUp) {
    if (!event || !view || !view->window()) return false;
    const auto self = Retained<NSCell>::retaining(this);
    const auto keptView = Retained<NSView>::retaining(view);
    const auto sendsOn = [this](std::uint32_t mask) {
        return static_cast<std::uint32_t>(_values.actionEvents) & mask;
    };
    NSPoint last = placeOf(event, view);
    if (!startTrackingAt_inView(last, view)) return false;
    if (event->type() == NSLeftMouseDown && sendsOn(NSLeftMouseDownMask)) sendAction();
    const PeriodicEvents periodic(this);
    constexpr NSUInteger kMask = NSLeftMouseUpMask | NSLeftMouseDraggedMask | NSPeriodicMask;
    while (NSWindow* window = view->window()) {
        const auto next = Retained<NSEvent>::retaining(window->nextEventMatchingMask_untilDate_inMode_dequeue(
            kMask, NSDate::distantFuture(), NSEventTrackingRunLoopMode, true));
        if (!next) break;
        if (next->type() == NSPeriodic) {
            sendAction();
            continue;
        }
        const NSPoint place = placeOf(next, view);
        const bool isInside = view->mouse_inRect(place, frame);
        if (next->type() == NSLeftMouseUp) {
            stopTracking_at_inView_mouseIsUp(last, place, view, true);
            if (isInside) setNextState();
            setHighlighted(false);
            if ((isInside || untilMouseUp) && sendsOn(NSLeftMouseUpMask)) sendAction();
            return true;
        }
        if ((!isInside && !untilMouseUp) || !continueTracking_at_inView(last, place, view)) {
            stopTracking_at_inView_mouseIsUp(last, place, view, false);
            return false;
        }
        last = place;
        if (sendsOn(NSLeftMouseDraggedMask)) sendAction();
    }
    stopTracking_at_inView_mouseIsUp(last, last, view, false);
    return false;
}

bool NSCell::startTrackingAt_inView(NSPoint, NSView*) { return true; }

bool NSCell::continueTracking_at_inView(NSPoint, NSPoint, NSView*) { return true; }

void NSCell::stopTracking_at_inView_mouseIsUp(NSPoint, NSPoint, NSView*, bool) {}

void NSCell::getPeriodicDelay_interval(float* delay, float* interval) {
    if (delay) *delay = 0.2f;
    if (interval) *interval = 0.025f;
}

void NSCell::resetCursorRect_inView(NSRect frame, NSView* view) {
    if (view && _values.isEnabled && _values.isSelectable && _values.type == NSTextCellType)
        view->addCursorRect_cursor(titleRectForBounds(frame), NSCursor::IBeamCursor());
}

}  // namespace pelvor
