// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSScroller.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Text/NSColor.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSScroller, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSScroller::initWithFrame>();
    methods.classLevel<"scrollerWidth", &NSScroller::scrollerWidth>();
    methods.instance<"floatValue", &NSScroller::floatValue>();
    methods.instance<"knobProportion", &NSScroller::knobProportion>();
    methods.instance<"setFloatValue:knobProportion:", &NSScroller::setFloatValue_knobProportion>();
    methods.instance<"setFloatValue:", &NSScroller::setFloatValue>();
    methods.instance<"isEnabled", &NSScroller::isEnabled>();
    methods.instance<"setEnabled:", &NSScroller::setEnabled>();
    methods.instance<"isVertical", &NSScroller::isVertical>();
    methods.instance<"target", &NSScroller::target>();
    methods.instance<"setTarget:", &NSScroller::setTarget>();
    methods.instance<"action", &NSScroller::action>();
    methods.instance<"setAction:", &NSScroller::setAction>();
    methods.instance<"hitPart", &NSScroller::hitPart>();
    methods.instance<"testPart:", &NSScroller::testPart>();
    methods.instance<"rectForPart:", &NSScroller::rectForPart>();
    methods.instanceAs<"pageAgain:", &NSScroller::page>();
}

namespace {

constexpr float kShortestKnob = 24;
constexpr float kKnobInset = 2.5F;
constexpr double kRepeatDelay = 0.35;  // before a press that is held pages again
constexpr double kRepeatPeriod = 0.06;

}  // namespace

Retained<NSScroller> NSScroller::initWithFrame(NSRect frame, Class* cls) {
    return cast<NSScroller>(NSView::initWithFrame(frame, cls));
}

NSScroller::~NSScroller() = default;

float NSScroller::scrollerWidth() { return metrics::kScrollerWidth; }

// MARK: State

void NSScroller::setFloatValue_knobProportion(float value, float proportion) {
    const auto limited = [](float number) { return number > 0 ? std::min(number, 1.0F) : 0.0F; };
    if (limited(value) == _value && limited(proportion) == _proportion) return;
    _value = limited(value);
    _proportion = limited(proportion);
    setNeedsDisplay(true);
}

void NSScroller::setEnabled(bool isEnabled) {
    if (isEnabled == _isEnabled) return;
    _isEnabled = isEnabled;
    setNeedsDisplay(true);
}

bool NSScroller::isVertical() { return NSHeight(bounds()) > NSWidth(bounds()); }

// MARK: Parts

NSRect NSScroller::rectForPart(NSScrollerPart part) {
    const NSRect all = bounds();
    if (part == NSScrollerKnobSlot) return all;
    if (!_isEnabled || _proportion >= 1) return {};
    const float length = std::max(NSWidth(all), NSHeight(all));
    const float knob = std::min(std::max(length * _proportion, kShortestKnob), length);
    const float start = (length - knob) * _value;
    const auto stretch = [&](float from, float to) -> NSRect {
        if (isVertical()) return {{0, from}, {NSWidth(all), to - from}};
        return {{from, 0}, {to - from, NSHeight(all)}};
    };
    switch (part) {
        case NSScrollerKnob:
            return stretch(start, start + knob);
        case NSScrollerDecrementPage:
            return stretch(0, start);
        case NSScrollerIncrementPage:
            return stretch(start + knob, length);
        default:
            return {};
    }
}

NSScrollerPart NSScroller::testPart(NSPoint point) {
    const NSPoint place = convertPoint_fromView(point, nullptr);
    for (NSScrollerPart part : {NSScrollerKnob, NSScrollerDecrementPage, NSScrollerIncrementPage})
        if (NSMouseInRect(place, rectForPart(part), true)) return part;
    return NSMouseInRect(place, bounds(), true) ? NSScrollerKnobSlot : NSScrollerNoPart;
}

float NSScroller::placeOf(NSEvent* event) {
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    return isVertical() ? point.y : point.x;
}

// How far the knob can move.
float NSScroller::slack() {
    const NSSize knob = rectForPart(NSScrollerKnob).size, all = bounds().size;
    return isVertical() ? all.height - knob.height : all.width - knob.width;
}

void NSScroller::drawRect(NSRect) {
    fillRect(bounds(), ThemeColor::track);
    const NSRect knob = NSInsetRect(rectForPart(NSScrollerKnob), kKnobInset, kKnobInset);
    if (NSIsEmptyRect(knob)) return;
    const bool isDragged = _isTracking && _hitPart == NSScrollerKnob;
    fillRounded(knob, std::min(NSWidth(knob), NSHeight(knob)) / 2,
                isDragged ? ThemeColor::pressedKnob : ThemeColor::knob);
}

// MARK: Mouse

bool NSScroller::acceptsFirstMouse(NSEvent*) { return true; }

void NSScroller::mouseDown(NSEvent* event) {
    if (!event) return;
    const auto alive = Retained<NSScroller>::retaining(this);
    endTracking();
    _hitPart = testPart(event->locationInWindow());
    if (_hitPart == NSScrollerNoPart || _hitPart == NSScrollerKnobSlot) return;
    _isTracking = true;
    if (_hitPart == NSScrollerKnob) return beginKnobDrag(placeOf(event));
    _press = placeOf(event);
    _repeat = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::dateWithTimeIntervalSinceNow(kRepeatDelay), kRepeatPeriod, this, "pageAgain:"_sel, nullptr,
        true);
    NSRunLoop::currentRunLoop()->addTimer_forMode(_repeat, NSRunLoopCommonModes);
    sendAction();
}

void NSScroller::beginKnobDrag(float place) {
    const NSRect knob = rectForPart(NSScrollerKnob);
    _grip = place - (isVertical() ? NSMinY(knob) : NSMinX(knob));
    setNeedsDisplay(true);
}

void NSScroller::dragKnob(float place) {
    const float room = slack();
    setFloatValue(room > 0 ? (place - _grip) / room : 0);
    sendAction();
}

void NSScroller::mouseDragged(NSEvent* event) {
    if (!event || !_isTracking) return;
    const auto alive = Retained<NSScroller>::retaining(this);
    if (_hitPart == NSScrollerKnob)
        dragKnob(placeOf(event));
    else
        _press = placeOf(event);
}

void NSScroller::mouseUp(NSEvent*) { endTracking(); }

// The middle button brings the knob to the pointer and drags it.
void NSScroller::otherMouseDown(NSEvent* event) {
    if (!event) return;
    const auto alive = Retained<NSScroller>::retaining(this);
    endTracking();
    const NSRect knob = rectForPart(NSScrollerKnob);
    if (NSIsEmptyRect(knob)) return;
    _isTracking = true;
    _hitPart = NSScrollerKnob;
    _grip = (isVertical() ? NSHeight(knob) : NSWidth(knob)) / 2;
    dragKnob(placeOf(event));
    setNeedsDisplay(true);
}

void NSScroller::otherMouseDragged(NSEvent* event) { mouseDragged(event); }

void NSScroller::otherMouseUp(NSEvent* event) { mouseUp(event); }

// Pages on until the knob has come under the pointer.
void NSScroller::page(NSTimer*) {
    const auto alive = Retained<NSScroller>::retaining(this);
    const NSRect rest = rectForPart(_hitPart);
    const float start = isVertical() ? NSMinY(rest) : NSMinX(rest);
    const float end = isVertical() ? NSMaxY(rest) : NSMaxX(rest);
    if (_press >= start && _press < end) sendAction();
}

void NSScroller::endTracking() {
    if (const auto timer = std::move(_repeat)) timer->invalidate();
    if (!_isTracking) return;
    _isTracking = false;
    setNeedsDisplay(true);
}

void NSScroller::viewWillMoveToWindow(NSWindow* window) {
    endTracking();
    NSView::viewWillMoveToWindow(window);
}

void NSScroller::sendAction() {
    const Retained<Object> target = _target.object();
    if (target && _action) NSApplication::sharedApplication()->sendAction_to_from(_action, target, this);
}

}  // namespace pelvor
