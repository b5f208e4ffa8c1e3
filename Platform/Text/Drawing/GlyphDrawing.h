// SPDX-License-Identifier: Apache-2.0
// Drawing glyphs on a graphics context.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Text/Fonts/Shaping.h"

namespace pelvor {

class NSGraphicsContext;

/// Glyphs of one font on one baseline, with the text that they stand for.
struct GlyphRun {
    NSFont* font = nullptr;
    std::span<const PlacedGlyph> glyphs;  ///< from left to right, as `shape` returns them
    /// The text that the units of the glyphs are indexes of, and the range of it that they stand for. A PDF
    /// document keeps it, to be searched and copied; null text is not kept.
    const unichar* text = nullptr;
    NSRange range = {0, 0};
    bool isRightToLeft = false;
    float obliqueness = 0;  ///< the slant as a tangent
    float expansion = 1;    ///< the factor of the glyphs' width; advances are taken as they are
};

/// Draws the run with its first glyph's origin at the point, which lies on the baseline.
PELVOR_EXPORT void drawGlyphs(NSGraphicsContext* context, const GlyphRun& run, NSPoint origin);

}  // namespace pelvor
