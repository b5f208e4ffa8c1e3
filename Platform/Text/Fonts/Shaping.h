// SPDX-License-Identifier: Apache-2.0
// Shaping: from characters to placed glyphs, and how much room they take.
//
// Text is shaped in the units of its font and the result converted to 1/64 point, so that one set of tables
// serves all sizes. Glyphs of one cluster are rounded together: the sum of their advances is the rounded sum.
// All functions may be called on any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"
#include "Text/Fonts/EastAsian.h"

namespace pelvor {

class NSFont;

/// A script by its four letters in ISO 15924, "Latn", the first one in the highest byte.
using ScriptTag = std::uint32_t;

constexpr ScriptTag scriptTag(const char (&letters)[5]) {
    ScriptTag tag = 0;
    for (int i = 0; i < 4; ++i) tag = tag << 8 | static_cast<unsigned char>(letters[i]);
    return tag;
}

/// The tag of a script that ICU knows by this number (UScriptCode).
PELVOR_EXPORT ScriptTag scriptTagOfCode(int script);

/// A stretch of text in one font, script and direction. `text` is the whole paragraph, for letters at both
/// ends may join with what stands beside them.
struct ShapingRun {
    const unichar* text = nullptr;
    NSUInteger textLength = 0;
    NSUInteger start = 0;
    NSUInteger length = 0;
    NSFont* font = nullptr;
    ScriptTag script = scriptTag("Zyyy");
    const char* language = nullptr;  ///< BCP 47, "de-CH"; null: unknown
    bool isRightToLeft = false;
    int ligatures = 1;  ///< 0 only those that the script needs, 1 the usual ones, 2 all
};

/// A glyph and its place, in 1/64 point; offsets are to the right and upwards.
struct PlacedGlyph {
    std::uint32_t glyph;
    std::uint32_t unit;  ///< the first unit of its cluster, as an index of the run's text
    std::int32_t advance;
    std::int32_t xOffset;
    std::int32_t yOffset;
};

/// The run's glyphs from left to right, in the place of what the vector held.
PELVOR_EXPORT void shape(const ShapingRun& run, std::vector<PlacedGlyph>& glyphs);

/// Writes for each unit of the run the advance of the cluster that begins there, in 1/64 point, and 0 for
/// other units: exactly the sums of what `shape` returns, found without placing glyphs. The span has an
/// element for each unit of the run.
PELVOR_EXPORT void measureAdvances(const ShapingRun& run, std::span<std::int32_t> advances);

/// A font of the same size that has the characters of the cluster: the given font if it has all, else the
/// first that fits of those that the machine's configuration ranks; the given font itself when none fits.
/// Emoji come from an emoji font where there is one, unless the text asks for their plain form. Borrowed.
PELVOR_EXPORT NSFont* substituteFont(NSFont* font, std::u16string_view cluster);

/// A stretch of text that one font sets.
struct FontStretch {
    NSFont* font;  ///< the given font or what stands in for it; borrowed
    NSUInteger end;
};

/// The font that sets the text from `start` on, and where the next one begins: `substituteFont` of each
/// cluster, clusters of one font taken together, and letters of Chinese origin in a font of the
/// language's own, where they need another one. Punctuation, blanks and joiners that the font of the text
/// before them has stay with that font.
PELVOR_EXPORT FontStretch fontStretchAt(NSFont* font, std::u16string_view text, NSUInteger start,
                                        EastAsian language = EastAsian::unknown);

}  // namespace pelvor
