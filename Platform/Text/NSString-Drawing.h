// SPDX-License-Identifier: Apache-2.0
// Measuring and drawing strings with attributes, without a layout of one's own.
//
//     NSSize size = sizeWithAttributes(title, attributes);
//     drawAtPoint_withAttributes(title, {40, 40}, attributes);           // the current graphics context
#pragma once

#include "Foundation/NSDictionary.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

struct Category;

/// How a string is measured; options are joined by "|".
using NSStringDrawingOptions = int;

enum : NSStringDrawingOptions {
    NSStringDrawingUsesLineFragmentOrigin = 1,  ///< with the origin {0, 0}, else measured from a baseline
    NSStringDrawingUsesFontLeading = 2,         ///< with the font's leading in the height of lines
    NSStringDrawingDisableScreenFontSubstitution = 4,  ///< which is never done here
};

// Any thread; each has a layout for this, which remembers the text that was measured last. Null as a string
// raises NSInvalidArgumentException; null as attributes stands for none. An empty string takes no room: its
// width and height are 0.

/// The room that the string takes in lines no wider than the size, whose height is not asked. Its origin is
/// the lower left corner, y upwards from the first line's baseline: below 0 where letters or further lines
/// reach below it. With NSStringDrawingUsesLineFragmentOrigin the origin is {0, 0}.
PELVOR_EXPORT NSRect boundingRectWithSize_options_attributes(NSString* string, NSSize size,
                                                             NSStringDrawingOptions options,
                                                             NSDictionary* attributes);
/// On lines that end where the text has line ends.
PELVOR_EXPORT NSSize sizeWithAttributes(NSString* string, NSDictionary* attributes);
/// Draws the string into the current graphics context, with the point as its upper left corner; where y grows
/// upwards, as its lower left corner.
PELVOR_EXPORT void drawAtPoint_withAttributes(NSString* string, NSPoint point, NSDictionary* attributes);
/// Draws the string in lines as wide as the rectangle, from its top; what is below the rectangle is not
/// drawn.
PELVOR_EXPORT void drawInRect_withAttributes(NSString* string, NSRect rect, NSDictionary* attributes);

extern const Category NSString_Drawing_category;

}  // namespace pelvor
