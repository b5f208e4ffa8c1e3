// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/FontFace.h"

#include <ft2build.h>
#include <hb-ot.h>

#include <cmath>
#include <mutex>

#include FT_FREETYPE_H

#include "Foundation/NSLog.h"
#include "Text/Fonts/FontCatalogue.h"

namespace pelvor {
namespace {

// FreeType allows one thread at a time to open and close faces.
struct Outlines {
    std::mutex mutex;
    FT_Library library = nullptr;

    static Outlines& shared() {
        static Outlines* outlines = new Outlines;
        return *outlines;
    }
    FT_Face open(const char* bytes, unsigned length, long index) {
        std::lock_guard lock(mutex);
        FT_Face face = nullptr;
        if (!library && FT_Init_FreeType(&library)) return nullptr;
        const auto* start = reinterpret_cast<const FT_Byte*>(bytes);
        return FT_New_Memory_Face(library, start, static_cast<FT_Long>(length), index, &face) ? nullptr
                                                                                              : face;
    }
    void close(FT_Face face) {
        std::lock_guard lock(mutex);
        FT_Done_Face(face);
    }
};

constexpr int kBoxUnitsPerEm = 1000;
constexpr int kBoxAdvance = 600;

hb_font_t* makeBoxShaper() {
    hb_font_funcs_t* functions = hb_font_funcs_create();
    hb_font_funcs_set_glyph_h_advance_func(
        functions, [](hb_font_t*, void*, hb_codepoint_t, void*) -> hb_position_t { return kBoxAdvance; },
        nullptr, nullptr);
    hb_face_t* face = hb_face_create(hb_blob_get_empty(), 0);  // HarfBuzz sets no text in its own empty face
    hb_font_t* font = hb_font_create(face);
    hb_face_destroy(face);
    hb_font_set_funcs(font, functions, nullptr, nullptr);
    hb_font_funcs_destroy(functions);
    hb_font_set_scale(font, kBoxUnitsPerEm, kBoxUnitsPerEm);
    return font;
}

int measure(hb_font_t* font, hb_ot_metrics_tag_t tag) {
    hb_position_t position = 0;
    hb_ot_metrics_get_position_with_fallback(font, tag, &position);
    return position;
}

}  // namespace

std::shared_ptr<FontFace> FontFace::open(const FontEntry& entry) {
    std::shared_ptr<FontFace> face(new FontFace);
    std::string reason;
    if (face->load(entry, reason)) return face;
    logText("The font file \"" + entry.file + "\" is passed over: " + reason);
    return nullptr;
}

std::shared_ptr<FontFace> FontFace::box() {
    static const std::shared_ptr<FontFace> box = [] {
        static const FontEntry noFile{.postScriptName = "Boxes", .family = "Boxes", .fullName = "Boxes"};
        std::shared_ptr<FontFace> face(new FontFace);
        face->_entry = &noFile;
        face->_shaper = makeBoxShaper();
        face->_measures = {kBoxUnitsPerEm, 750, -250, 0, 500, 700, -100, 50, 0, {{50, 0}, {500, 700}}, 1};
        return face;
    }();
    return box;
}

FontFace::~FontFace() {
    if (_outlines) Outlines::shared().close(_outlines);
    hb_font_destroy(_shaper);
    hb_blob_destroy(_file);
}

bool FontFace::load(const FontEntry& entry, std::string& reason) {
    _entry = &entry;
    _file = hb_blob_create_from_file_or_fail(entry.file.c_str());
    if (!_file) return reason = "it cannot be read", false;
    hb_face_t* face = hb_face_create(_file, entry.index & 0xFFFF);
    if (!hb_face_get_glyph_count(face)) {
        hb_face_destroy(face);
        return reason = "it holds no such typeface", false;
    }
    const int em = static_cast<int>(hb_face_get_upem(face));
    hb_face_make_immutable(face);
    _shaper = hb_font_create(face);
    hb_face_destroy(face);
    hb_font_set_scale(_shaper, em, em);
    if (entry.index >> 16) hb_font_set_var_named_instance(_shaper, (entry.index >> 16) - 1);
    hb_font_make_immutable(_shaper);
    unsigned length = 0;
    const char* bytes = hb_blob_get_data(_file, &length);
    _outlines = Outlines::shared().open(bytes, length, static_cast<long>(entry.index));
    if (!_outlines) return reason = "its outlines cannot be read", false;
    readMeasures();
    _hasASCII = true;
    for (char16_t character = ' '; character < 0x7F; ++character) _hasASCII &= hasCharacter(character);
    return true;
}

void FontFace::readMeasures() {
    Measures& all = _measures;
    int em = 0;
    hb_font_get_scale(_shaper, &em, &em);
    all.unitsPerEm = em;
    all.ascender = measure(_shaper, HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER);
    all.descender = measure(_shaper, HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER);
    all.gap = measure(_shaper, HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP);
    all.xHeight = measure(_shaper, HB_OT_METRICS_TAG_X_HEIGHT);
    all.capHeight = measure(_shaper, HB_OT_METRICS_TAG_CAP_HEIGHT);
    all.underlinePosition = measure(_shaper, HB_OT_METRICS_TAG_UNDERLINE_OFFSET);
    all.underlineThickness = measure(_shaper, HB_OT_METRICS_TAG_UNDERLINE_SIZE);
    all.italicAngle = hb_style_get_value(_shaper, HB_STYLE_TAG_SLANT_ANGLE);
    const FT_BBox& box = _outlines->bbox;
    all.box = {{static_cast<float>(box.xMin), static_cast<float>(box.yMin)},
               {static_cast<float>(box.xMax - box.xMin), static_cast<float>(box.yMax - box.yMin)}};
    all.glyphCount = hb_face_get_glyph_count(hb_font_get_face(_shaper));
}

bool FontFace::hasGlyphFor(char32_t character) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(_shaper, character, &glyph);
}

}  // namespace pelvor
