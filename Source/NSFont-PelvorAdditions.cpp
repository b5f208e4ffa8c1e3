// SPDX-License-Identifier: Apache-2.0
#include "NSFont-PelvorAdditions.h"

#include <cmath>
#include <initializer_list>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Foundation/PlatformVersion.h"
#include "NSDictionary-PelvorAdditions.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSFontDescriptor.h"
#include "Text/NSFontManager.h"

namespace pelvor {

constinit NSString* const PBFontDescriptorAttributeName_FeatureSettings =
    u"NSCTFontFeatureSettingsAttribute"_ns;
constinit NSString* const PBFontFeatureSettingsKey_Type = u"CTFeatureTypeIdentifier"_ns;
constinit NSString* const PBFontFeatureSettingsKey_Value = u"CTFeatureSelectorIdentifier"_ns;

namespace {

using Additions = NSFont_PelvorAdditions;

constexpr double kLastVersionWithoutDescriptors = 743;

constinit NSString* const kFontNameKey = u"fontName"_ns;
constinit NSString* const kPointSizeKey = u"pointSize"_ns;

void defineAdditions(MethodTable<NSFont>& methods) {
    methods.classLevel<"lucidaGrandeFontOfSize:", &Additions::lucidaGrandeFontOfSize>();
    methods.classLevel<"boldLucidaGrandeFontOfSize:", &Additions::boldLucidaGrandeFontOfSize>();
    methods.classLevel<"helveticaFontOfSize:", &Additions::helveticaFontOfSize>();
    methods.classLevel<"monospaceFontOfSize:", &Additions::monospaceFontOfSize>();
    methods.classLevel<"menuItemFont", &Additions::menuItemFont>();
    methods
        .classLevel<"initWithPropertyListRepresentation:", &Additions::initWithPropertyListRepresentation>();
    methods.instance<"propertyListRepresentation", &propertyListRepresentation>();
    methods.instance<"fontDescriptorAttributes", &fontDescriptorAttributes>();
    methods.instance<"fontByAddingFontDescriptorAttributes:", &fontByAddingFontDescriptorAttributes>();
    methods.instance<"fontByAddingFontFeature:value:", &fontByAddingFontFeature_value>();
}

NSFont* firstFont(std::initializer_list<NSString*> names, float size) {
    for (NSString* name : names)
        if (NSFont* font = NSFont::fontWithName_size(name, size)) return font;
    return nullptr;
}

NSArray* settingsOf(NSDictionary* attributes) {
    return attributes ? cast<NSArray>(attributes->objectForKey(PBFontDescriptorAttributeName_FeatureSettings))
                      : nullptr;
}

NSDictionary* withSettings(NSDictionary* attributes, NSArray* settings) {
    return dictionarySettingObject_forKey(attributes ? attributes : NSDictionary::dictionary(), settings,
                                          PBFontDescriptorAttributeName_FeatureSettings);
}

}  // namespace

constinit const Category NSFont_PelvorAdditions_category =
    Category::of<NSFont, defineAdditions>("PelvorAdditions");

// MARK: Fonts by name

NSFont* Additions::lucidaGrandeFontOfSize(float size) {
    NSFont* font = firstFont({u"LucidaGrande"_ns}, size);
    return font ? font : NSFont::systemFontOfSize(size);
}

NSFont* Additions::boldLucidaGrandeFontOfSize(float size) {
    if (NSFont* font = firstFont({u"LucidaGrande-Bold"_ns, u"Lucida Grande Bold"_ns}, size)) return font;
    return NSFontManager::sharedFontManager()->convertFont_toHaveTrait(lucidaGrandeFontOfSize(size),
                                                                       NSBoldFontMask);
}

NSFont* Additions::helveticaFontOfSize(float size) {
    NSFont* font = firstFont({u"Helvetica"_ns}, size);
    return font ? font : NSFont::userFontOfSize(size);
}

NSFont* Additions::monospaceFontOfSize(float size) {
    NSFont* font = firstFont({u"Courier"_ns, u"Courier New"_ns, u"Monaco"_ns}, size);
    return font ? font : NSFont::systemFontOfSize(size);
}

NSFont* Additions::menuItemFont() { return NSFont::systemFontOfSize(14); }

// MARK: Property lists

NSDictionary* propertyListRepresentation(NSFont* font) {
    requireArgument(font, "propertyListRepresentation", "the font");
    return NSDictionary::of(
        {{kFontNameKey, font->fontName()}, {kPointSizeKey, NSNumber::numberWithFloat(font->pointSize())}});
}

Retained<NSFont> Additions::initWithPropertyListRepresentation(NSDictionary* dictionary) {
    const float size = dictionary ? floatForKey(dictionary, kPointSizeKey) : 0;
    auto* name = dictionary ? cast<NSString>(dictionary->objectForKey(kFontNameKey)) : nullptr;
    NSFont* font = NSFont::fontWithName_size(name, size);
    return Retained<NSFont>::retaining(font ? font : NSFont::userFontOfSize(size));
}

// MARK: Descriptors

NSDictionary* fontDescriptorAttributes(NSFont* font) {
    requireArgument(font, "fontDescriptorAttributes", "the font");
    return font->fontDescriptor()->fontAttributes();
}

NSFont* fontByAddingFontDescriptorAttributes(NSFont* font, NSDictionary* attributes) {
    requireArgument(font, "fontByAddingFontDescriptorAttributes:", "the font");
    if (std::floor(platformVersion()) <= kLastVersionWithoutDescriptors) return nullptr;
    NSFontDescriptor* old = font->fontDescriptor();
    NSFontDescriptor* wanted = old->fontDescriptorByAddingAttributes(attributes);
    if (wanted->isEqual(old)) return font;
    NSFont* found = NSFont::fontWithDescriptor_size(wanted, font->pointSize());
    return found && found->fontDescriptor()->isEqual(wanted) ? found : nullptr;
}

NSFont* fontByAddingFontFeature_value(NSFont* font, int type, int selector) {
    requireArgument(font, "fontByAddingFontFeature:value:", "the font");
    return fontByAddingFontDescriptorAttributes(
        font, PBFontDescriptorAttributesByAddingFeatureSetting(nullptr, type, selector));
}

// MARK: Feature settings

NSUInteger _PBIndexOfFontFeatureSettingType(NSArray* settings, int type) {
    NSUInteger index = 0;
    for (id setting : settings) {
        auto* dictionary = cast<NSDictionary>(setting);
        auto* number =
            dictionary ? cast<NSNumber>(dictionary->objectForKey(PBFontFeatureSettingsKey_Type)) : nullptr;
        if (number && number->intValue() == type) return index;
        ++index;
    }
    return NSNotFound;
}

NSDictionary* PBFontDescriptorAttributesByAddingFeatureSetting(NSDictionary* attributes, int type,
                                                               int selector) {
    NSDictionary* setting =
        NSDictionary::of({{PBFontFeatureSettingsKey_Type, NSNumber::numberWithInt(type)},
                          {PBFontFeatureSettingsKey_Value, NSNumber::numberWithInt(selector)}});
    NSArray* old = settingsOf(attributes);
    NSMutableArray* settings = NSMutableArray::array();
    if (old) settings->addObjectsFromArray(old);
    const NSUInteger index = _PBIndexOfFontFeatureSettingType(settings, type);
    if (index == NSNotFound)
        settings->addObject(setting);
    else
        settings->replaceObjectAtIndex_withObject(index, setting);
    return withSettings(attributes, settings);
}

NSDictionary* PBFontDescriptorAttributesByRemovingFeatureSetting(NSDictionary* attributes, int type) {
    NSArray* old = settingsOf(attributes);
    const NSUInteger index = _PBIndexOfFontFeatureSettingType(old, type);
    if (index == NSNotFound) return attributes;
    NSMutableArray* settings = NSMutableArray::array();
    settings->addObjectsFromArray(old);
    settings->removeObjectAtIndex(index);
    return withSettings(attributes, settings);
}

int PBFontDescriptorAttributesValueForSetting(NSDictionary* attributes, int type) {
    NSArray* settings = settingsOf(attributes);
    const NSUInteger index = _PBIndexOfFontFeatureSettingType(settings, type);
    if (index == NSNotFound) return 0;
    return intForKey(cast<NSDictionary>(settings->objectAtIndex(index)), PBFontFeatureSettingsKey_Value);
}

}  // namespace pelvor
