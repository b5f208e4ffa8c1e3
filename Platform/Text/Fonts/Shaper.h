// SPDX-License-Identifier: Apache-2.0
// What shaping and measuring share: text through HarfBuzz, and from the units of a font to 1/64 point.
#pragma once

#include <span>

#include "Text/Fonts/Shaping.h"

struct hb_buffer_t;
struct hb_glyph_info_t;
struct hb_glyph_position_t;

namespace pelvor {

class FontVariant;

/// From units of a font to 1/64 point at a size.
class PointScale {
  public:
    PointScale(const FontVariant& variant, float size);
    /// Rounded to the nearest, halves upwards; values that do not fit become the nearest that do.
    std::int32_t operator()(std::int64_t units) const;

  private:
    double _factor;
};

/// The result of shaping: glyphs from left to right with their places in units of the font. Valid until this
/// thread shapes again.
struct ShapedText {
    std::span<const hb_glyph_info_t> glyphs;
    std::span<const hb_glyph_position_t> places;
};

/// Shapes the run with the rest of its text around it.
ShapedText shapeInFontUnits(const ShapingRun& run);

}  // namespace pelvor
