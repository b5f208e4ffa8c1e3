// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRColorSlider.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kEdge = 6, kKnobWidth = 9;
constexpr float kStep = 0.01F, kLargeStep = 0.1F;

}  // namespace

PELVOR_DEFINE_CLASS(WRColorSlider, windowsLibrary) {
    methods.instance<"isFlipped", &WRColorSlider::isFlipped>();
    methods.instance<"acceptsFirstResponder", &WRColorSlider::acceptsFirstResponder>();
    methods.instance<"becomeFirstResponder", &WRColorSlider::becomeFirstResponder>();
    methods.instance<"resignFirstResponder", &WRColorSlider::resignFirstResponder>();
    methods.instance<"drawRect:", &WRColorSlider::drawRect>();
    methods.instance<"mouseDown:", &WRColorSlider::mouseDown>();
    methods.instance<"mouseDragged:", &WRColorSlider::mouseDragged>();
    methods.instance<"mouseUp:", &WRColorSlider::mouseUp>();
    methods.instance<"keyDown:", &WRColorSlider::keyDown>();
    methods.instance<"keyUp:", &WRColorSlider::keyUp>();
}

Retained<WRColorSlider> WRColorSlider::create(Part part, std::function<void(ColorParts)> changed,
                                              std::function<void()> released) {
    auto self = cast<WRColorSlider>(NSView::initWithFrame(NSZeroRect, classObject()));
    self->_part = part;
    self->_changed = std::move(changed);
    self->_released = std::move(released);
    return self;
}

void WRColorSlider::setColorParts(ColorParts parts) {
    _parts = parts;
    setNeedsDisplay(true);
}

bool WRColorSlider::becomeFirstResponder() {
    setNeedsDisplay(true);
    return NSView::becomeFirstResponder();
}

bool WRColorSlider::resignFirstResponder() {
    setNeedsDisplay(true);
    return NSView::resignFirstResponder();
}

// MARK: Drawing

NSRect WRColorSlider::strip() { return NSInsetRect(bounds(), kEdge, kEdge); }

void WRColorSlider::drawRect(NSRect) {
    auto* context = NSGraphicsContext::currentContext();
    const NSRect strip = this->strip();
    const float width = NSWidth(strip);
    ColorParts parts = _parts;
    if (_part == &ColorParts::hue) parts.saturation = 1;
    if (_part != &ColorParts::brightness) parts.brightness = 1;
    for (float x = 0; x < width; ++x) {
        parts.*_part = x / std::max(width - 1, 1.0F);
        context->setColor(parts.color());
        context->fillRect({{NSMinX(strip) + x, NSMinY(strip)}, {std::min(1.0F, width - x), NSHeight(strip)}});
    }
    const bool hasKeys = window() && window()->firstResponder() == this;
    context->setColor(hasKeys ? NSColor::colorWithCalibratedRed_green_blue_alpha(0.16F, 0.39F, 0.7F, 1)
                              : NSColor::colorWithCalibratedWhite_alpha(0, 0.3F));
    context->strokeRect_width(NSInsetRect(strip, -1, -1), hasKeys ? 2 : 1);
    const NSRect knob{{NSMinX(strip) + _parts.*_part * width - kKnobWidth / 2, 1},
                      {kKnobWidth, NSHeight(bounds()) - 2}};
    context->setColor(NSColor::whiteColor());
    context->fillRect(knob);
    context->setColor(_parts.color());
    context->fillRect(NSInsetRect(knob, 2, 2));
    context->setColor(NSColor::colorWithCalibratedWhite_alpha(0, 0.6F));
    context->strokeRect_width(knob, 1);
}

// MARK: Changes

void WRColorSlider::change(float value) {
    constexpr float kInk = 0.7F;  // can be read on paper
    value = std::clamp(value, 0.0F, 1.0F);
    if (value == _parts.*_part) return;
    const auto alive = Retained<WRColorSlider>::retaining(this);
    if (_part == &ColorParts::hue && _parts.saturation == 0) _parts.saturation = 1;
    if (_part != &ColorParts::brightness && _parts.brightness == 0) _parts.brightness = kInk;
    _parts.*_part = value;
    setNeedsDisplay(true);
    if (_changed) _changed(_parts);
}

void WRColorSlider::mouseDown(NSEvent* event) {
    if (window()) window()->makeFirstResponder(this);
    mouseDragged(event);
}

void WRColorSlider::mouseDragged(NSEvent* event) {
    if (!event) return;
    const float x = convertPoint_fromView(event->locationInWindow(), nullptr).x;
    change((x - NSMinX(strip())) / std::max(NSWidth(strip()), 1.0F));
}

void WRColorSlider::mouseUp(NSEvent*) {
    if (_released) _released();
}

void WRColorSlider::keyUp(NSEvent*) {
    if (_released) _released();
}

void WRColorSlider::keyDown(NSEvent* event) {
    NSString* key = event ? event->charactersIgnoringModifiers() : nullptr;
    const float step = event && event->modifierFlags() & NSShiftKeyMask ? kLargeStep : kStep;
    switch (key && key->length() == 1 ? key->characterAtIndex(0) : u'\0') {
        case NSLeftArrowFunctionKey:
        case NSDownArrowFunctionKey:
            return change(_parts.*_part - step);
        case NSRightArrowFunctionKey:
        case NSUpArrowFunctionKey:
            return change(_parts.*_part + step);
        case NSHomeFunctionKey:
            return change(0);
        case NSEndFunctionKey:
            return change(1);
        default:
            NSView::keyDown(event);
    }
}

}  // namespace pelvor
