// SPDX-License-Identifier: Apache-2.0
// Additions to fonts: fonts chosen by name with fallbacks, typographic features, and a property-list form.
#pragma once

#include "Text/NSFont.h"

namespace pelvor {

struct Category;
class NSArray;

/// Class operations of fonts. They try names in turn and return the first font that exists; at last there is
/// a font that always exists, so none returns null. Borrowed, except from `init`.
///
///     NSFont* code = NSFont_PelvorAdditions::monospaceFontOfSize(11);
///     NSDictionary* stored = propertyListRepresentation(code);
///     auto again = NSFont_PelvorAdditions::initWithPropertyListRepresentation(stored);     // code
struct PELVOR_EXPORT NSFont_PelvorAdditions {
    /// "LucidaGrande", else the system font.
    static NSFont* lucidaGrandeFontOfSize(float size);
    /// "LucidaGrande-Bold" or "Lucida Grande Bold", else the font above made bold.
    static NSFont* boldLucidaGrandeFontOfSize(float size);
    /// "Helvetica", else the user font.
    static NSFont* helveticaFontOfSize(float size);
    /// "Courier", "Courier New" or "Monaco", else the system font, whose glyphs have widths of their own.
    static NSFont* monospaceFontOfSize(float size);
    /// The system font at 14 points.
    static NSFont* menuItemFont();

    /// The font that `propertyListRepresentation` wrote, owned; the user font of the size where there is no
    /// font of that name. Null as dictionary stands for no name and size 0.
    static Retained<NSFont> initWithPropertyListRepresentation(NSDictionary* dictionary);
};

/// A dictionary of the font's name under "fontName" and its size under "pointSize". Borrowed.
PELVOR_EXPORT NSDictionary* propertyListRepresentation(NSFont* font);

/// The attributes of the font's descriptor.
PELVOR_EXPORT NSDictionary* fontDescriptorAttributes(NSFont* font);
/// The font of the same size whose descriptor has these attributes besides its own, which give way where both
/// have a key; the font itself if the attributes are null or change nothing. Null if no font has exactly this
/// descriptor, and always on platform versions below 744, which have no descriptors.
PELVOR_EXPORT NSFont* fontByAddingFontDescriptorAttributes(NSFont* font, NSDictionary* attributes);
/// The font with this feature setting in the place of all that it has, as the function above finds it.
PELVOR_EXPORT NSFont* fontByAddingFontFeature_value(NSFont* font, int type, int selector);

extern const Category NSFont_PelvorAdditions_category;

// MARK: Feature settings in the attributes of a descriptor
//
// The settings are an array of dictionaries, each with a type of feature and the selector that is chosen for
// the type, both NSNumbers: {36, 1} switches contextual alternatives off. Of two settings of one type the
// first counts. Attributes may be null and are never changed; results are borrowed.

extern PELVOR_EXPORT NSString* const PBFontDescriptorAttributeName_FeatureSettings;
extern PELVOR_EXPORT NSString* const PBFontFeatureSettingsKey_Type;
extern PELVOR_EXPORT NSString* const PBFontFeatureSettingsKey_Value;

/// The index of the first setting of that type; NSNotFound if there is none.
PELVOR_EXPORT NSUInteger _PBIndexOfFontFeatureSettingType(NSArray* settings, int type);
/// The attributes with this setting in the place of the one of its type, or behind all others.
PELVOR_EXPORT NSDictionary* PBFontDescriptorAttributesByAddingFeatureSetting(NSDictionary* attributes,
                                                                             int type, int selector);
/// The attributes without the setting of that type: the same dictionary if there is none.
PELVOR_EXPORT NSDictionary* PBFontDescriptorAttributesByRemovingFeatureSetting(NSDictionary* attributes,
                                                                               int type);
/// The selector that is chosen for the type; 0 if there is none.
PELVOR_EXPORT int PBFontDescriptorAttributesValueForSetting(NSDictionary* attributes, int type);

}  // namespace pelvor
