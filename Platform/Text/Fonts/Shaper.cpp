// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/Shaper.h"

#include <hb.h>
#include <unicode/uscript.h>

#include <cmath>
#include <memory>

#include "Text/Fonts/FontVariant.h"
#include "Text/NSFont.h"

namespace pelvor {
namespace {

struct DestroyBuffer {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};

hb_buffer_t* bufferOfThread() {
    thread_local const std::unique_ptr<hb_buffer_t, DestroyBuffer> buffer(hb_buffer_create());
    return buffer.get();
}

std::vector<hb_feature_t> featuresOf(const FontVariant& variant, const ShapingRun& run) {
    std::vector<hb_feature_t> features;
    auto add = [&](const std::vector<FontFeature>& list) {
        for (FontFeature feature : list)
            features.push_back({feature.tag, feature.value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    };
    add(featuresOfLigatureLevel(run.ligatures));
    add(variant.features());  // what comes later counts
    return features;
}

hb_segment_properties_t propertiesOf(const ShapingRun& run) {
    hb_segment_properties_t properties = HB_SEGMENT_PROPERTIES_DEFAULT;
    properties.direction = run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR;
    properties.script = static_cast<hb_script_t>(run.script);
    properties.language = run.language ? hb_language_from_string(run.language, -1) : nullptr;
    return properties;
}

// The glyphs of one cluster, rounded together.
void place(const ShapedText& shaped, std::size_t begin, std::size_t end, const PointScale& scale,
           std::vector<PlacedGlyph>& glyphs) {
    std::int32_t units = 0, before = 0;
    for (std::size_t i = begin; i < end; ++i) {
        units = addAdvance(units, shaped.places[i].x_advance);
        const std::int32_t after = scale(units);
        glyphs.push_back({shaped.glyphs[i].codepoint, shaped.glyphs[i].cluster, after - before,
                          scale(shaped.places[i].x_offset), scale(shaped.places[i].y_offset)});
        before = after;
    }
}

}  // namespace

ScriptTag scriptTagOfCode(int script) {
    const char* name = uscript_getShortName(static_cast<UScriptCode>(script));
    return hb_script_from_string(name ? name : "Zyyy", 4);
}

PointScale::PointScale(const FontVariant& variant, float size)
    : _factor(std::llround(64.0 * static_cast<double>(size) / variant.face().measures().unitsPerEm *
                           (1 << kFraction))) {}

ShapedText shapeInFontUnits(const FontVariant& variant, const ShapingRun& run) {
    hb_buffer_t* buffer = bufferOfThread();
    hb_buffer_clear_contents(buffer);
    const hb_segment_properties_t properties = propertiesOf(run);
    hb_buffer_set_segment_properties(buffer, &properties);
    hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t*>(run.text),
                        static_cast<int>(run.textLength), run.start, static_cast<int>(run.length));
    const std::vector<hb_feature_t> features = featuresOf(variant, run);
    hb_shape(variant.face().shaper(), buffer, features.data(), static_cast<unsigned>(features.size()));
    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    return {{glyphs, count}, {hb_buffer_get_glyph_positions(buffer, nullptr), count}};
}

hb_shape_plan_t* makeShapePlan(const FontVariant& variant, const ShapingRun& run) {
    hb_font_t* shaper = variant.face().shaper();
    const hb_segment_properties_t properties = propertiesOf(run);
    const std::vector<hb_feature_t> features = featuresOf(variant, run);
    unsigned axes = 0;
    const int* places = hb_font_get_var_coords_normalized(shaper, &axes);
    return hb_shape_plan_create2(hb_font_get_face(shaper), &properties, features.data(),
                                 static_cast<unsigned>(features.size()), places, axes, nullptr);
}

void shape(const ShapingRun& run, std::vector<PlacedGlyph>& glyphs) {
    glyphs.clear();
    if (!run.length) return;
    const ShapedText shaped = shapeInFontUnits(run.font->variant(), run);
    const PointScale scale(run.font->variant(), run.font->pointSize());
    glyphs.reserve(shaped.glyphs.size());
    for (std::size_t begin = 0, end = 0; begin < shaped.glyphs.size(); begin = end) {
        while (end < shaped.glyphs.size() && shaped.glyphs[end].cluster == shaped.glyphs[begin].cluster)
            ++end;
        place(shaped, begin, end, scale, glyphs);
    }
}

}  // namespace pelvor
