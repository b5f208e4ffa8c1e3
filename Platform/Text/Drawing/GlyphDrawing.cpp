// SPDX-License-Identifier: Apache-2.0
#include "Text/Drawing/GlyphDrawing.h"

#include <cairo-ft.h>
#include <cairo.h>

#include <cmath>
#include <memory>

#include "Text/Drawing/Canvas.h"
#include "Text/Drawing/GlyphImages.h"
#include "Text/Fonts/FontCatalogue.h"
#include "Text/Fonts/FontVariant.h"
#include "Text/NSFont.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {
namespace {

constexpr double kUnitsPerPoint = 64;
constexpr double kMadeUpSlant = 0.2126;  // 12 degrees

// Cairo's face of the variant, made once; null for the box face. It keeps the font file's face alive, since
// Cairo keeps faces for a while after their last use.
cairo_font_face_t* faceOf(FontVariant& variant) {
    std::call_once(variant.drawingFaceMade, [&] {
        FT_Face outlines = variant.face().outlines();
        if (!outlines) return;
        cairo_font_face_t* face = cairo_ft_font_face_create_for_ft_face(outlines, FT_LOAD_NO_HINTING);
        static const cairo_user_data_key_t kKeeper{};
        auto* keeper = new std::shared_ptr<FontFace>(variant.sharedFace());
        auto release = [](void* kept) { delete static_cast<std::shared_ptr<FontFace>*>(kept); };
        cairo_font_face_set_user_data(face, &kKeeper, keeper, release);
        if (variant.madeUp().isBold) cairo_ft_font_face_set_synthesize(face, CAIRO_FT_SYNTHESIZE_BOLD);
        variant.drawingFace = std::shared_ptr<void>(
            face, [](void* made) { cairo_font_face_destroy(static_cast<cairo_font_face_t*>(made)); });
    });
    return static_cast<cairo_font_face_t*>(variant.drawingFace.get());
}

double slantOf(const GlyphRun& run) {
    return static_cast<double>(run.obliqueness) + (run.font->variant().madeUp().isOblique ? kMadeUpSlant : 0);
}

void setFont(cairo_t* page, const GlyphRun& run) {
    FontVariant& variant = run.font->variant();
    const double size = static_cast<double>(run.font->pointSize());
    const double slant = slantOf(run);
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, size * static_cast<double>(run.expansion), 0, -slant * size, size, 0, 0);
    cairo_set_font_face(page, faceOf(variant));
    cairo_set_font_matrix(page, &matrix);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_set_font_options(page, options);
    cairo_font_options_destroy(options);
}

std::vector<GlyphAt> glyphsOf(const GlyphRun& run, NSPoint origin) {
    std::vector<GlyphAt> glyphs;
    glyphs.reserve(run.glyphs.size());
    std::int64_t pen = 0;
    for (const PlacedGlyph& glyph : run.glyphs) {
        glyphs.push_back(
            {glyph.glyph,
             static_cast<double>(origin.x) + static_cast<double>(pen + glyph.xOffset) / kUnitsPerPoint,
             static_cast<double>(origin.y) - glyph.yOffset / kUnitsPerPoint});
        pen += glyph.advance;
    }
    return glyphs;
}

// Which bytes of the text belong to which glyphs. Empty if the glyphs' units do not ascend through the range.
struct TextClusters {
    std::string text;
    std::vector<cairo_text_cluster_t> clusters;

    explicit TextClusters(const GlyphRun& run) {
        const std::size_t count = run.glyphs.size();
        auto unit = [&](std::size_t i) { return run.glyphs[run.isRightToLeft ? count - 1 - i : i].unit; };
        NSUInteger begin = run.range.location;
        for (std::size_t i = 0; i < count;) {
            std::size_t next = i + 1;
            while (next < count && unit(next) == unit(i)) ++next;
            const NSUInteger end = next < count ? unit(next) : NSMaxRange(run.range);
            if (unit(i) < begin || end <= begin) {
                clear();
                return;
            }
            const std::string bytes = acceptableText({run.text + begin, end - begin});
            clusters.push_back({static_cast<int>(bytes.size()), static_cast<int>(next - i)});
            text += bytes;
            begin = end;
            i = next;
        }
    }
    void clear() {
        text.clear();
        clusters.clear();
    }
};

// Outlines are filled where they fall, between the pixels too; Cairo would move glyphs to whole pixels.
void fillOutlines(cairo_t* page, const std::vector<cairo_glyph_t>& glyphs) {
    cairo_new_path(page);
    cairo_glyph_path(page, glyphs.data(), static_cast<int>(glyphs.size()));
    cairo_fill(page);
}

void showGlyphs(cairo_t* page, const GlyphRun& run, const std::vector<cairo_glyph_t>& glyphs) {
    const auto count = static_cast<int>(glyphs.size());
    if (run.text) {
        const TextClusters kept(run);
        if (!kept.clusters.empty()) {
            const auto flags =
                run.isRightToLeft ? CAIRO_TEXT_CLUSTER_FLAG_BACKWARD : cairo_text_cluster_flags_t{};
            return cairo_show_text_glyphs(page, kept.text.data(), static_cast<int>(kept.text.size()),
                                          glyphs.data(), count, kept.clusters.data(),
                                          static_cast<int>(kept.clusters.size()), flags);
        }
    }
    cairo_show_glyphs(page, glyphs.data(), count);
}

void drawBoxes(cairo_t* page, const GlyphRun& run, NSPoint origin) {
    const NSRect box = run.font->boundingRectForFont();
    cairo_new_path(page);
    for (const GlyphAt& glyph : glyphsOf(run, origin))
        cairo_rectangle(page, glyph.x + static_cast<double>(box.origin.x),
                        glyph.y - static_cast<double>(box.origin.y + box.size.height),
                        static_cast<double>(box.size.width), static_cast<double>(box.size.height));
    cairo_set_line_width(page, static_cast<double>(run.font->pointSize()) / 24);
    cairo_stroke(page);
}

}  // namespace

void drawGlyphs(NSGraphicsContext* context, const GlyphRun& run, NSPoint origin) {
    cairo_t* page = context->canvas().page();
    const bool isDrawable = std::isfinite(origin.x) && std::isfinite(origin.y) &&
                            std::isfinite(run.obliqueness) && std::isfinite(run.expansion) &&
                            run.expansion > 0;
    if (!page || run.glyphs.empty() || !isDrawable) return;
    FontVariant& variant = run.font->variant();
    cairo_font_face_t* face = faceOf(variant);
    if (!face) return drawBoxes(page, run, origin);
    const std::vector<GlyphAt> places = glyphsOf(run, origin);
    const bool isOutlined = !context->canvas().isPDF() && !variant.face().entry().isColoured;
    const double size = static_cast<double>(run.font->pointSize());
    const GlyphImages::Look look{variant.number(), size * static_cast<double>(run.expansion), size,
                                 slantOf(run)};
    if (isOutlined && GlyphImages::current().blend(page, face, look, places)) return;
    std::vector<cairo_glyph_t> glyphs;
    for (const GlyphAt& place : places) glyphs.push_back({place.index, place.x, place.y});
    setFont(page, run);
    if (isOutlined)
        fillOutlines(page, glyphs);
    else
        showGlyphs(page, run, glyphs);
}

}  // namespace pelvor
