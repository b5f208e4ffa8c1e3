// SPDX-License-Identifier: Apache-2.0
// Measuring and drawing attributed strings, without a layout of one's own.
//
//     drawInRect(title, {{8, 2}, {120, size(title).height}});      // into the current graphics context
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Text/NSString-Drawing.h"

namespace pelvor {

// Any thread. Null as a string raises NSInvalidArgumentException. An empty string takes no room.

/// The room that the string takes, as `boundingRectWithSize_options_attributes` describes it.
PELVOR_EXPORT NSRect boundingRectWithSize_options(NSAttributedString* string, NSSize size,
                                                  NSStringDrawingOptions options);
/// On lines that end where the text has line ends.
PELVOR_EXPORT NSSize size(NSAttributedString* string);
/// Draws the string into the current graphics context, with the point as its upper left corner.
PELVOR_EXPORT void drawAtPoint(NSAttributedString* string, NSPoint point);
/// Draws the string in lines as wide as the rectangle, from its top; what is below the rectangle is not
/// drawn.
PELVOR_EXPORT void drawInRect(NSAttributedString* string, NSRect rect);

extern const Category NSAttributedString_Drawing_category;

}  // namespace pelvor
