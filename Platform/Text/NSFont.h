// SPDX-License-Identifier: Apache-2.0
// NSFont: a typeface at a size.
#pragma once

#include <memory>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class FontVariant;
class NSCoder;
class NSDictionary;
class NSFontDescriptor;
class NSString;

/// The number of a glyph in its font; 0 is the box that stands for a missing glyph.
using NSGlyph = unsigned;

/// The sizes that controls come in.
enum NSControlSize : int {
    NSRegularControlSize = 0,
    NSSmallControlSize = 1,
    NSMiniControlSize = 2,
};

/// A typeface at a size. Immutable and shared: equal fonts are one object.
///
///     NSFont* font = NSFont::fontWithName_size(u"DejaVuSans-Bold"_ns, 12);  // null if there is no such font
///     if (!font) font = NSFont::userFontOfSize(12);                         // never null
///     float lineHeight = font->defaultLineHeightForFont();
///
/// Fonts are found by the machine's font configuration. Lengths are in points and, where they belong to a
/// font, measured upwards from the baseline. A size of 0, a negative one or NaN stands for 12 points, and
/// sizes above 16384 for that size. A machine without any font still has fonts: their glyphs are boxes.
///
/// A face that a family lacks may be made up: the font manager makes a bold or oblique font from an upright
/// one. Such a font's name is that of the real one with "+Bold", "+Oblique" or both behind it, and
/// `fontWithName_size` finds the font by that name again.
///
/// All fonts that operations return are borrowed. Any thread.
class PELVOR_EXPORT NSFont : public NSObject {
    PELVOR_CLASS(NSFont, NSObject);
    PELVOR_CREATORS(initWithCoder);

  public:
    // Finding fonts

    /// The font of that PostScript name, full name or family name, tried in this order and without regard to
    /// the case of the letters A to Z. Null for null and where no such font exists: no other font stands in.
    static NSFont* fontWithName_size(NSString* name, float size);
    /// The font that fits the descriptor best: that of its name; else the face of its family that has its
    /// face name or, where it names no face, is nearest to upright and regular. Its feature settings are the
    /// font's. A size of 0 stands for the descriptor's size. Null if the descriptor is null or neither its
    /// name nor its family exists.
    static NSFont* fontWithDescriptor_size(NSFontDescriptor* descriptor, float size);

    // The fonts of the user interface and of plain text, which always exist. Size 0 stands for the default
    // size: the system font's for the first two, 12 for the others.

    static NSFont* systemFontOfSize(float size);
    static NSFont* boldSystemFontOfSize(float size);
    static NSFont* menuFontOfSize(float size);
    static NSFont* menuBarFontOfSize(float size);
    static NSFont* labelFontOfSize(float size);
    /// What text is set in that has no font.
    static NSFont* userFontOfSize(float size);
    static NSFont* userFixedPitchFontOfSize(float size);

    static float systemFontSize();
    static float smallSystemFontSize();
    static float labelFontSize();
    /// 13 points for regular controls and for unknown control sizes, 11 for small ones, 9 for mini ones.
    static float systemFontSizeForControlSize(NSControlSize controlSize);

    // Names

    /// The PostScript name, "DejaVuSans-Bold".
    NSString* fontName();
    /// "DejaVu Sans".
    NSString* familyName();
    /// The full name, "DejaVu Sans Bold".
    NSString* displayName();
    /// The name and size, and the feature settings if there are any.
    NSFontDescriptor* fontDescriptor();

    // Measures

    float pointSize() { return _size; }
    float ascender();
    /// Below 0.
    float descender();
    /// The gap between lines that the font asks for beyond its ascender and descender.
    float leading();
    /// The sum of ascender, depth and gap: the distance of baselines.
    float defaultLineHeightForFont();
    float xHeight();
    float capHeight();
    /// The middle of the line, below 0.
    float underlinePosition();
    float underlineThickness();
    /// In degrees, below 0 for a font that leans to the right.
    float italicAngle();
    /// Whether all glyphs have one width.
    bool isFixedPitch();
    /// A box that every glyph fits into.
    NSRect boundingRectForFont();

    // Glyphs

    /// The glyph of the character, 0 if the font lacks it.
    NSGlyph glyphForCharacter(char32_t character);
    NSUInteger numberOfGlyphs();
    /// How far the pen moves for the glyph; zeros for a glyph that the font lacks.
    NSSize advancementForGlyph(NSGlyph glyph);
    /// The box around the glyph's ink, its origin at the lower left; zeros for a glyph without ink.
    NSRect boundingRectForGlyph(NSGlyph glyph);

    // Screen and printer set text alike here: both are the font itself.

    NSFont* screenFont() { return this; }
    NSFont* printerFont() { return this; }

    NSString* description() override;
    void encodeWithCoder(NSCoder* coder);
    /// The archived font; the user font of its size where the archived font does not exist.
    static Retained<NSFont> initWithCoder(NSCoder* coder);
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSFont> copy() { return Retained<NSFont>::retaining(this); }

    // C++ only
    /// What does not depend on the size.
    FontVariant& variant() { return *_variant; }
    const std::shared_ptr<FontVariant>& sharedVariant() { return _variant; }
    /// The font of that variant at that size, a size of 0 being 12 points.
    static NSFont* fontWithVariant_size(const std::shared_ptr<FontVariant>& variant, float size);

  protected:
    NSFont() = default;
    ~NSFont();

  private:
    float points(double fontUnits);

    std::shared_ptr<FontVariant> _variant;
    float _size = 12;
};

}  // namespace pelvor
