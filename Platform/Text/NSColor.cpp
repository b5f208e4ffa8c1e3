// SPDX-License-Identifier: Apache-2.0
#include "Text/NSColor.h"

#include <algorithm>
#include <functional>

#include "Foundation/NSCoder.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSGraphicsContext.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSColor, textLibrary) {
    methods.creator<"colorWithCalibratedRed:green:blue:alpha:",
                    &NSColor::colorWithCalibratedRed_green_blue_alpha>();
    methods.creator<"colorWithCalibratedWhite:alpha:", &NSColor::colorWithCalibratedWhite_alpha>();
    methods.creator<"initWithCoder:", &NSColor::initWithCoder>();
    methods.classLevel<"blackColor", &NSColor::blackColor>();
    methods.classLevel<"darkGrayColor", &NSColor::darkGrayColor>();
    methods.classLevel<"grayColor", &NSColor::grayColor>();
    methods.classLevel<"lightGrayColor", &NSColor::lightGrayColor>();
    methods.classLevel<"whiteColor", &NSColor::whiteColor>();
    methods.classLevel<"redColor", &NSColor::redColor>();
    methods.classLevel<"greenColor", &NSColor::greenColor>();
    methods.classLevel<"blueColor", &NSColor::blueColor>();
    methods.classLevel<"yellowColor", &NSColor::yellowColor>();
    methods.classLevel<"clearColor", &NSColor::clearColor>();
    methods.instance<"redComponent", &NSColor::redComponent>();
    methods.instance<"greenComponent", &NSColor::greenComponent>();
    methods.instance<"blueComponent", &NSColor::blueComponent>();
    methods.instance<"alphaComponent", &NSColor::alphaComponent>();
    methods.instance<"colorWithAlphaComponent:", &NSColor::colorWithAlphaComponent>();
    methods.instance<"blendedColorWithFraction:ofColor:", &NSColor::blendedColorWithFraction_ofColor>();
    methods.instance<"set", &NSColor::set>();
    methods.instance<"encodeWithCoder:", &NSColor::encodeWithCoder>();
}

namespace {

// NaN is not above 0.
float component(float value) { return value > 0 ? std::min(value, 1.0f) : 0; }

// Made once.
template <int Red, int Green, int Blue, int Alpha>
NSColor* named() {
    static NSColor* color = Retained<NSColor>::retaining(NSColor::colorWithCalibratedRed_green_blue_alpha(
                                                             Red / 3.0f, Green / 3.0f, Blue / 3.0f, Alpha))
                                .leak();
    return color;
}

}  // namespace

NSColor* NSColor::colorWithCalibratedRed_green_blue_alpha(float red, float green, float blue, float alpha,
                                                          Class* cls) {
    auto color = make<NSColor>(cls);
    color->_red = component(red);
    color->_green = component(green);
    color->_blue = component(blue);
    color->_alpha = component(alpha);
    return std::move(color).autorelease();
}

NSColor* NSColor::colorWithCalibratedWhite_alpha(float white, float alpha, Class* cls) {
    return colorWithCalibratedRed_green_blue_alpha(white, white, white, alpha, cls);
}

NSColor* NSColor::blackColor() { return named<0, 0, 0, 1>(); }
NSColor* NSColor::darkGrayColor() { return named<1, 1, 1, 1>(); }
NSColor* NSColor::lightGrayColor() { return named<2, 2, 2, 1>(); }
NSColor* NSColor::whiteColor() { return named<3, 3, 3, 1>(); }
NSColor* NSColor::redColor() { return named<3, 0, 0, 1>(); }
NSColor* NSColor::greenColor() { return named<0, 3, 0, 1>(); }
NSColor* NSColor::blueColor() { return named<0, 0, 3, 1>(); }
NSColor* NSColor::yellowColor() { return named<3, 3, 0, 1>(); }
NSColor* NSColor::clearColor() { return named<0, 0, 0, 0>(); }
NSColor* NSColor::grayColor() { return colorWithCalibratedWhite_alpha(0.5f, 1); }

NSColor* NSColor::colorWithAlphaComponent(float alpha) {
    return colorWithCalibratedRed_green_blue_alpha(_red, _green, _blue, alpha);
}

NSColor* NSColor::blendedColorWithFraction_ofColor(float fraction, NSColor* color) {
    if (!color) return this;
    const float share = component(fraction);
    auto mix = [share](float mine, float others) { return mine * (1 - share) + others * share; };
    return colorWithCalibratedRed_green_blue_alpha(mix(_red, color->_red), mix(_green, color->_green),
                                                   mix(_blue, color->_blue), mix(_alpha, color->_alpha));
}

void NSColor::set() {
    if (NSGraphicsContext* context = NSGraphicsContext::currentContext()) context->setColor(this);
}

bool NSColor::isEqual(id other) {
    auto* color = cast<NSColor>(other);
    return color && _red == color->_red && _green == color->_green && _blue == color->_blue &&
           _alpha == color->_alpha;
}

std::uintptr_t NSColor::hash() {
    std::uintptr_t hash = 0;
    for (float part : {_red, _green, _blue, _alpha}) hash = hash * 31 + std::hash<float>()(part);
    return hash;
}

NSString* NSColor::description() {
    auto number = [](float part) { return static_cast<double>(part); };
    return NSString::stringWithFormat(u"NSColor %g %g %g %g"_ns, number(_red), number(_green), number(_blue),
                                      number(_alpha));
}

Retained<Object> NSColor::copyWithZone(void*) { return Retained<Object>::retaining(this); }

void NSColor::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeFloat_forKey(_red, u"NSRed"_ns);
    coder->encodeFloat_forKey(_green, u"NSGreen"_ns);
    coder->encodeFloat_forKey(_blue, u"NSBlue"_ns);
    coder->encodeFloat_forKey(_alpha, u"NSAlpha"_ns);
}

Retained<NSColor> NSColor::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto part = [coder](NSString* key) { return coder->decodeFloatForKey(key); };
    return Retained<NSColor>::retaining(colorWithCalibratedRed_green_blue_alpha(
        part(u"NSRed"_ns), part(u"NSGreen"_ns), part(u"NSBlue"_ns), part(u"NSAlpha"_ns), cls));
}

}  // namespace pelvor
