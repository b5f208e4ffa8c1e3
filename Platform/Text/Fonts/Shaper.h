// SPDX-License-Identifier: Apache-2.0
// What shaping and measuring share: text through HarfBuzz, and from the units of a font to 1/64 point.
#pragma once

#include <algorithm>
#include <span>

#include "Text/Fonts/Shaping.h"

struct hb_glyph_info_t;
struct hb_glyph_position_t;
struct hb_shape_plan_t;

namespace pelvor {

class FontVariant;

/// From units of a font to 1/64 point at a size.
class PointScale {
  public:
    PointScale(const FontVariant& variant, float size);
    /// Rounded to the nearest, halves upwards. Values that do not fit become the nearest that do.
    std::int32_t operator()(std::int32_t units) const {
        constexpr std::int64_t kMost = 1 << 30;
        const std::int64_t points = (units * _factor + kHalf) >> kFraction;
        return static_cast<std::int32_t>(std::clamp(points, -kMost, kMost));
    }

  private:
    // Sizes up to 16384 points, of at least 16 units, leave room for sums of 22 bits.
    static constexpr int kFraction = 24;
    static constexpr std::int64_t kHalf = std::int64_t{1} << (kFraction - 1);

    std::int64_t _factor;
};

/// The result of shaping: glyphs from left to right with their places in units of the font. Valid until this
/// thread shapes again.
struct ShapedText {
    std::span<const hb_glyph_info_t> glyphs;
    std::span<const hb_glyph_position_t> places;
};

/// Shapes the run with the rest of its text around it, in the variant, whatever the run's font is.
ShapedText shapeInFontUnits(const FontVariant& variant, const ShapingRun& run);

/// How the shaper goes about text of the run's script, language and direction. The caller destroys the plan.
hb_shape_plan_t* makeShapePlan(const FontVariant& variant, const ShapingRun& run);

/// Sums of advances stay within a bound, whatever a font says.
inline std::int32_t addAdvance(std::int32_t sum, std::int32_t advance) {
    constexpr std::int64_t kMost = 1 << 22;
    return static_cast<std::int32_t>(std::clamp(std::int64_t{sum} + advance, -kMost, kMost));
}

}  // namespace pelvor
