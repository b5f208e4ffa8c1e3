// SPDX-License-Identifier: Apache-2.0
// NSColor: a colour with its opacity.
#pragma once

#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSCoder;
class NSString;

/// An immutable colour: red, green, blue and alpha, each from 0 to 1, in the sRGB space. Values outside this
/// range are moved to its nearest end, and NaN to 0.
///
///     NSColor* ink = NSColor::colorWithCalibratedRed_green_blue_alpha(0.1f, 0.1f, 0.4f, 1);
///     ink->set();                                     // the current graphics context draws with this colour
///
/// Operations return borrowed colours. Any thread.
class PELVOR_EXPORT NSColor : public NSObject {
    PELVOR_CLASS(NSColor, NSObject);
    PELVOR_CREATORS(colorWithCalibratedRed_green_blue_alpha, colorWithCalibratedWhite_alpha, initWithCoder);

  public:
    static NSColor* colorWithCalibratedRed_green_blue_alpha(float red, float green, float blue, float alpha,
                                                            Class* cls = classObject());
    /// A grey.
    static NSColor* colorWithCalibratedWhite_alpha(float white, float alpha, Class* cls = classObject());

    static NSColor* blackColor();
    static NSColor* darkGrayColor();
    static NSColor* grayColor();
    static NSColor* lightGrayColor();
    static NSColor* whiteColor();
    static NSColor* redColor();
    static NSColor* greenColor();
    static NSColor* blueColor();
    static NSColor* yellowColor();
    /// Nothing at all.
    static NSColor* clearColor();

    float redComponent() { return _red; }
    float greenComponent() { return _green; }
    float blueComponent() { return _blue; }
    float alphaComponent() { return _alpha; }

    NSColor* colorWithAlphaComponent(float alpha);
    /// The receiver with that share of the other colour mixed in, 0 to 1. The receiver for null.
    NSColor* blendedColorWithFraction_ofColor(float fraction, NSColor* color);

    /// Has the current graphics context draw with this colour; nothing happens without a current context.
    void set();

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "NSColor 0.1 0.1 0.4 1".
    NSString* description() override;
    void encodeWithCoder(NSCoder* coder);
    static Retained<NSColor> initWithCoder(NSCoder* coder, Class* cls = classObject());
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSColor> copy() { return Retained<NSColor>::retaining(this); }

  protected:
    NSColor() = default;
    ~NSColor() = default;

  private:
    float _red = 0, _green = 0, _blue = 0, _alpha = 1;
};

}  // namespace pelvor
