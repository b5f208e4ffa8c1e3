// SPDX-License-Identifier: Apache-2.0
#include <hb.h>

#include <algorithm>
#include <cassert>

#include "Text/Fonts/FontVariant.h"
#include "Text/Fonts/Shaper.h"
#include "Text/NSFont.h"

namespace pelvor {

void measureAdvances(const ShapingRun& run, std::span<std::int32_t> advances) {
    assert(advances.size() == run.length);
    std::fill(advances.begin(), advances.end(), 0);
    if (!run.length) return;
    const ShapedText shaped = shapeInFontUnits(run);
    const PointScale scale(run.font->variant(), run.font->pointSize());
    for (std::size_t begin = 0, end = 0; begin < shaped.glyphs.size(); begin = end) {
        std::int64_t units = 0;
        const std::uint32_t unit = shaped.glyphs[begin].cluster;
        for (; end < shaped.glyphs.size() && shaped.glyphs[end].cluster == unit; ++end)
            units += shaped.places[end].x_advance;
        advances[unit - run.start] = scale(units);
    }
}

}  // namespace pelvor
