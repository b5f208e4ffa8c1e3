// SPDX-License-Identifier: Apache-2.0
// FontFace: one typeface of a font file, loaded once.
#pragma once

#include <memory>
#include <string>

#include "Foundation/NSGeometry.h"
#include "Text/Fonts/CharacterBits.h"

struct FT_FaceRec_;
struct hb_blob_t;
struct hb_font_t;

namespace pelvor {

struct FontEntry;

/// One typeface of a font file: its glyphs and measures, in the units of the font. The file stays mapped into
/// memory as long as the face lives. Immutable.
class FontFace {
  public:
    /// The face of the entry. Null, with a line in the log, if the file cannot be used.
    static std::shared_ptr<FontFace> open(const FontEntry& entry);
    /// The face of a machine without fonts: it has no characters, and its only glyph is a box.
    static std::shared_ptr<FontFace> box();
    ~FontFace();

    /// Where the face comes from; of the box face an entry of no file.
    const FontEntry& entry() const { return *_entry; }
    /// The font for shaping, whose scale is the units of an em.
    hb_font_t* shaper() const { return _shaper; }
    /// The face for drawing, null for the box face. One thread at a time.
    FT_FaceRec_* outlines() const { return _outlines; }

    bool hasCharacter(char32_t character) {
        return character <= 0xFFFF ? _characters[static_cast<char16_t>(character)] : hasGlyphFor(character);
    }

    /// Whether the face has all characters that ASCII shows.
    bool hasASCII() const { return _hasASCII; }

    struct Measures {
        int unitsPerEm, ascender, descender, gap, xHeight, capHeight;
        int underlinePosition, underlineThickness;
        float italicAngle;
        NSRect box;
        unsigned glyphCount;
    };
    const Measures& measures() const { return _measures; }

  private:
    FontFace() = default;
    bool load(const FontEntry& entry, std::string& reason);
    void readMeasures();
    bool hasGlyphFor(char32_t character) const;

    const FontEntry* _entry = nullptr;
    hb_blob_t* _file = nullptr;
    hb_font_t* _shaper = nullptr;
    FT_FaceRec_* _outlines = nullptr;
    CharacterBits _characters{[this](char32_t character) { return hasGlyphFor(character); }};
    bool _hasASCII = false;
    Measures _measures{};
};

}  // namespace pelvor
