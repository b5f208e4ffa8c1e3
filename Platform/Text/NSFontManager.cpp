// SPDX-License-Identifier: Apache-2.0
#include "Text/NSFontManager.h"

#include <algorithm>
#include <set>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Text/Fonts/FontCatalogue.h"
#include "Text/Fonts/FontVariant.h"
#include "Text/NSFont.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSFontManager, textLibrary) {
    methods.classLevel<"sharedFontManager", &NSFontManager::sharedFontManager>();
    methods.instance<"convertFont:toHaveTrait:", &NSFontManager::convertFont_toHaveTrait>();
    methods.instance<"convertFont:toNotHaveTrait:", &NSFontManager::convertFont_toNotHaveTrait>();
    methods.instance<"convertFont:toSize:", &NSFontManager::convertFont_toSize>();
    methods.instance<"convertFont:toFamily:", &NSFontManager::convertFont_toFamily>();
    methods.instance<"convertWeight:ofFont:", &NSFontManager::convertWeight_ofFont>();
    methods
        .instance<"fontWithFamily:traits:weight:size:", &NSFontManager::fontWithFamily_traits_weight_size>();
    methods.instance<"availableFonts", &NSFontManager::availableFonts>();
    methods.instance<"availableFontFamilies", &NSFontManager::availableFontFamilies>();
    methods.instance<"availableMembersOfFontFamily:", &NSFontManager::availableMembersOfFontFamily>();
    methods.instance<"fontNamed:hasTraits:", &NSFontManager::fontNamed_hasTraits>();
    methods.instance<"traitsOfFont:", &NSFontManager::traitsOfFont>();
    methods.instance<"weightOfFont:", &NSFontManager::weightOfFont>();
}

namespace {

constexpr int kRegularWeight = 5, kBoldWeight = 9;

// Traits of which a face has at most one.
constexpr unsigned kOpposites[][2] = {{NSBoldFontMask, NSUnboldFontMask},
                                      {NSItalicFontMask, NSUnitalicFontMask},
                                      {NSCondensedFontMask, NSExpandedFontMask}};
constexpr unsigned kFaceTraits =
    NSItalicFontMask | NSBoldFontMask | NSCondensedFontMask | NSExpandedFontMask | NSFixedPitchFontMask;

std::string_view familyOf(FontVariant& variant) { return variant.face().entry().family; }

// The font in that family with these traits; the font itself if there is none. The weight stays unless the
// font becomes bold or ceases to be bold.
NSFont* convert(NSFont* font, std::string_view family, unsigned traits) {
    FontVariant& old = font->variant();
    const bool changesWeight = (traits ^ old.traits()) & NSBoldFontMask;
    const int weight = !changesWeight ? old.weight() : traits & NSBoldFontMask ? kBoldWeight : kRegularWeight;
    auto variant = FontVariant::ofFamily(family, traits, weight, old.featureSettings());
    return variant ? NSFont::fontWithVariant_size(variant, font->pointSize()) : font;
}

NSArray* stringsOf(const std::set<std::string>& texts) {
    auto* strings = NSMutableArray::arrayWithCapacity(static_cast<NSUInteger>(texts.size()));
    for (const std::string& text : texts) strings->addObject(NSString::ofUTF8(text));
    return strings;
}

}  // namespace

NSFontManager* NSFontManager::sharedFontManager() {
    static NSFontManager* shared = make<NSFontManager>().leak();
    return shared;
}

// MARK: Conversion

NSFont* NSFontManager::convertFont_toHaveTrait(NSFont* font, unsigned traits) {
    if (!font) return nullptr;
    const unsigned old = font->variant().traits();
    unsigned wanted = old | (traits & kFaceTraits);
    for (auto [one, other] : kOpposites) {
        if (traits & one) wanted &= ~other;
        if (traits & other) wanted &= ~one;
    }
    return wanted == old ? font : convert(font, familyOf(font->variant()), wanted);
}

NSFont* NSFontManager::convertFont_toNotHaveTrait(NSFont* font, unsigned traits) {
    if (!font) return nullptr;
    const unsigned old = font->variant().traits(), wanted = old & ~traits;
    return wanted == old ? font : convert(font, familyOf(font->variant()), wanted);
}

NSFont* NSFontManager::convertFont_toSize(NSFont* font, float size) {
    return font ? NSFont::fontWithVariant_size(font->sharedVariant(), size) : nullptr;
}

NSFont* NSFontManager::convertFont_toFamily(NSFont* font, NSString* family) {
    if (!font || !family) return font;
    const std::string name = family->toUTF8();
    const unsigned traits = font->variant().traits();
    // A family has all of its faces in fixed pitch or none.
    NSFont* same = convert(font, name, traits & ~NSFixedPitchFontMask);
    return same != font ? same : convert(font, name, traits | NSFixedPitchFontMask);
}

NSFont* NSFontManager::convertWeight_ofFont(bool isHeavier, NSFont* font) {
    if (!font) return nullptr;
    FontVariant& old = font->variant();
    const unsigned kept = kFaceTraits & ~NSBoldFontMask;
    const FontEntry* next = nullptr;
    for (const FontEntry* entry : FontCatalogue::shared().ofFamily(familyOf(old))) {
        if ((entry->traits ^ old.traits()) & kept) continue;
        if (isHeavier ? entry->weight <= old.weight() : entry->weight >= old.weight()) continue;
        if (!next || (isHeavier ? entry->weight < next->weight : entry->weight > next->weight)) next = entry;
    }
    auto face = next ? FontCatalogue::shared().face(*next) : nullptr;
    if (!face) return font;
    return NSFont::fontWithVariant_size(FontVariant::of(face, old.featureSettings()), font->pointSize());
}

NSFont* NSFontManager::fontWithFamily_traits_weight_size(NSString* family, unsigned traits, int weight,
                                                         float size) {
    if (!family) return nullptr;
    auto variant = FontVariant::ofFamily(family->toUTF8(), traits & kFaceTraits, weight, nullptr);
    return variant ? NSFont::fontWithVariant_size(variant, size) : nullptr;
}

// MARK: What there is

NSArray* NSFontManager::availableFonts() {
    std::set<std::string> names;
    for (const FontEntry* entry : FontCatalogue::shared().entries()) names.insert(entry->postScriptName);
    return stringsOf(names);
}

NSArray* NSFontManager::availableFontFamilies() {
    std::set<std::string> families;
    for (const FontEntry* entry : FontCatalogue::shared().entries()) families.insert(entry->family);
    return stringsOf(families);
}

NSArray* NSFontManager::availableMembersOfFontFamily(NSString* family) {
    if (!family) return nullptr;
    auto entries = FontCatalogue::shared().ofFamily(family->toUTF8());
    if (entries.empty()) return nullptr;
    auto* members = NSMutableArray::arrayWithCapacity(static_cast<NSUInteger>(entries.size()));
    for (const FontEntry* entry : entries)
        members->addObject(NSArray::of(
            {NSString::ofUTF8(entry->postScriptName), NSString::ofUTF8(entry->style),
             NSNumber::numberWithInt(entry->weight), NSNumber::numberWithUnsignedInt(entry->traits)}));
    return members;
}

bool NSFontManager::fontNamed_hasTraits(NSString* name, unsigned traits) {
    NSFont* font = NSFont::fontWithName_size(name, 0);
    if (!font) return false;
    const unsigned own = traitsOfFont(font);
    for (auto [without, mark] :
         {std::pair{NSBoldFontMask, NSUnboldFontMask}, std::pair{NSItalicFontMask, NSUnitalicFontMask}})
        if (traits & mark && own & without) return false;
    return !(traits & kFaceTraits & ~own);
}

unsigned NSFontManager::traitsOfFont(NSFont* font) { return font ? font->variant().traits() : 0; }

int NSFontManager::weightOfFont(NSFont* font) { return font ? font->variant().weight() : 0; }

}  // namespace pelvor
