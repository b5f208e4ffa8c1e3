// SPDX-License-Identifier: Apache-2.0
// Additions to strings: measuring and drawing them with attributes.
//
//     NSRect box = pelvorBoundingRectWithAttributes(title, attributes);
//     pelvorDrawAtPoint_withAttributes(title, {40, 40}, attributes);
#pragma once

#include "Foundation/NSDictionary.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

struct Category;
class NSLayoutManager;

/// The room that the string takes on lines that end where it has line ends, y upwards. The origin is the
/// lower left corner, measured from the start of the first line's baseline. Main thread only.
PELVOR_EXPORT NSRect pelvorBoundingRectWithAttributes(NSString* string, NSDictionary* attributes);
/// Draws the string into the current graphics context, with the point as its upper left corner. Main thread
/// only.
PELVOR_EXPORT void pelvorDrawAtPoint_withAttributes(NSString* string, NSPoint point,
                                                    NSDictionary* attributes);

/// Lays the string out in a layout that is kept for this purpose, in a container of 10000 by 10000 points,
/// and returns its glyphs. The text is replaced only where it differs, the attributes where they do. Main
/// thread only; the range holds until the next call.
PELVOR_EXPORT NSRange _PBUpdatedGlyphRangeForSharedLayout(NSString* string, NSDictionary* attributes);
/// The layout manager of that layout.
PELVOR_EXPORT NSLayoutManager* _PBSharedMeasuringLayoutManager();

extern const Category NSString_PelvorDrawingAdditions_category;

}  // namespace pelvor
