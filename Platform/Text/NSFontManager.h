// SPDX-License-Identifier: Apache-2.0
// NSFontManager: which fonts there are, and the sisters of a font.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;
class NSFont;
class NSString;

/// Marks of a typeface.
enum NSFontTraitMask : unsigned {
    NSItalicFontMask = 0x1,
    NSBoldFontMask = 0x2,
    NSUnboldFontMask = 0x4,  ///< only to convert to
    NSCondensedFontMask = 0x40,
    NSExpandedFontMask = 0x20,
    NSFixedPitchFontMask = 0x400,
    NSUnitalicFontMask = 0x1000000,  ///< only to convert to
};

/// Lists the machine's fonts and finds the sister of a font that has other traits, another size or another
/// family.
///
///     NSFontManager* manager = NSFontManager::sharedFontManager();
///     NSFont* bold = manager->convertFont_toHaveTrait(font, NSBoldFontMask);
///
/// A conversion returns the font itself where there is nothing to change or no font that fits; a null font
/// gives null. Converted fonts keep size and feature settings. Where the family lacks a bold or an italic
/// face, one is made up from the nearest face: see NSFont. Operations return borrowed objects. Any thread.
class PELVOR_EXPORT NSFontManager : public NSObject {
    PELVOR_CLASS(NSFontManager, NSObject);

  public:
    static NSFontManager* sharedFontManager();

    // Conversion

    /// The face of the font's family that has the traits of the mask besides its own; bold excludes unbold,
    /// italic unitalic, condensed expanded, each the other way round too.
    NSFont* convertFont_toHaveTrait(NSFont* font, unsigned traits);
    NSFont* convertFont_toNotHaveTrait(NSFont* font, unsigned traits);
    NSFont* convertFont_toSize(NSFont* font, float size);
    /// The face of the other family with the same traits and the nearest weight.
    NSFont* convertFont_toFamily(NSFont* font, NSString* family);
    /// The next heavier face of the family, or the next lighter one.
    NSFont* convertWeight_ofFont(bool isHeavier, NSFont* font);
    /// The face of the family with these traits and the weight nearest to the given one; null if there is no
    /// such family or no face with these traits.
    NSFont* fontWithFamily_traits_weight_size(NSString* family, unsigned traits, int weight, float size);

    // What there is

    /// The PostScript names of all fonts, in alphabetical order.
    NSArray* availableFonts();
    NSArray* availableFontFamilies();
    /// For each face of the family, in the order of their weights, an array of its PostScript name, its face
    /// name ("Bold Oblique"), and its weight and traits as NSNumbers. Null if there is no such family.
    NSArray* availableMembersOfFontFamily(NSString* family);
    bool fontNamed_hasTraits(NSString* name, unsigned traits);

    /// A mask of NSFontTraitMask; 0 for null.
    unsigned traitsOfFont(NSFont* font);
    /// From 0, the thinnest, to 15; a regular face has 5, a bold one 9. 0 for null.
    int weightOfFont(NSFont* font);

  protected:
    NSFontManager() = default;
    ~NSFontManager() = default;
};

}  // namespace pelvor
