// SPDX-License-Identifier: Apache-2.0
// Colours as people choose and write them.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSColor;
class NSImage;

/// A colour by its hue (0 and 1 are red, 1/3 is green, 2/3 is blue), its saturation and its brightness, each
/// from 0 to 1.
struct ColorParts {
    float hue = 0, saturation = 0, brightness = 0;

    /// The hue of a grey is 0, and so is the saturation of black.
    static ColorParts of(NSColor* color);
    NSColor* color() const;
};

/// "#1E50B4".
NSString* hexOfColor(NSColor* color);
/// Six hexadecimal digits, or three, of which each stands for two; with or without "#". Null if the text is
/// anything else. Borrowed.
NSColor* colorOfHex(NSString* text);
/// A picture of the colour with a thin frame, for menus and buttons.
Retained<NSImage> swatchOfColor(NSColor* color);

}  // namespace pelvor
