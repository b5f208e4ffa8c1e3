// SPDX-License-Identifier: Apache-2.0
#include "Text/NSFont.h"

#include <hb.h>

#include <algorithm>
#include <cmath>

#include "Foundation/NSCoder.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Fonts/FontCatalogue.h"
#include "Text/Fonts/FontVariant.h"
#include "Text/NSFontDescriptor.h"
#include "Text/NSFontManager.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSFont, textLibrary) {
    methods.classLevel<"fontWithName:size:", &NSFont::fontWithName_size>();
    methods.classLevel<"fontWithDescriptor:size:", &NSFont::fontWithDescriptor_size>();
    methods.classLevel<"systemFontOfSize:", &NSFont::systemFontOfSize>();
    methods.classLevel<"boldSystemFontOfSize:", &NSFont::boldSystemFontOfSize>();
    methods.classLevel<"menuFontOfSize:", &NSFont::menuFontOfSize>();
    methods.classLevel<"menuBarFontOfSize:", &NSFont::menuBarFontOfSize>();
    methods.classLevel<"labelFontOfSize:", &NSFont::labelFontOfSize>();
    methods.classLevel<"userFontOfSize:", &NSFont::userFontOfSize>();
    methods.classLevel<"userFixedPitchFontOfSize:", &NSFont::userFixedPitchFontOfSize>();
    methods.classLevel<"systemFontSize", &NSFont::systemFontSize>();
    methods.classLevel<"smallSystemFontSize", &NSFont::smallSystemFontSize>();
    methods.classLevel<"labelFontSize", &NSFont::labelFontSize>();
    methods.classLevel<"systemFontSizeForControlSize:", &NSFont::systemFontSizeForControlSize>();
    methods.classLevel<"initWithCoder:", &NSFont::initWithCoder>();
    methods.instance<"fontName", &NSFont::fontName>();
    methods.instance<"familyName", &NSFont::familyName>();
    methods.instance<"displayName", &NSFont::displayName>();
    methods.instance<"fontDescriptor", &NSFont::fontDescriptor>();
    methods.instance<"pointSize", &NSFont::pointSize>();
    methods.instance<"ascender", &NSFont::ascender>();
    methods.instance<"descender", &NSFont::descender>();
    methods.instance<"leading", &NSFont::leading>();
    methods.instance<"defaultLineHeightForFont", &NSFont::defaultLineHeightForFont>();
    methods.instance<"xHeight", &NSFont::xHeight>();
    methods.instance<"capHeight", &NSFont::capHeight>();
    methods.instance<"underlinePosition", &NSFont::underlinePosition>();
    methods.instance<"underlineThickness", &NSFont::underlineThickness>();
    methods.instance<"italicAngle", &NSFont::italicAngle>();
    methods.instance<"isFixedPitch", &NSFont::isFixedPitch>();
    methods.instance<"boundingRectForFont", &NSFont::boundingRectForFont>();
    methods.instance<"glyphForCharacter:", &NSFont::glyphForCharacter>();
    methods.instance<"numberOfGlyphs", &NSFont::numberOfGlyphs>();
    methods.instance<"advancementForGlyph:", &NSFont::advancementForGlyph>();
    methods.instance<"boundingRectForGlyph:", &NSFont::boundingRectForGlyph>();
    methods.instance<"screenFont", &NSFont::screenFont>();
    methods.instance<"printerFont", &NSFont::printerFont>();
    methods.instance<"encodeWithCoder:", &NSFont::encodeWithCoder>();
}

namespace {

constexpr float kDefaultSize = 12, kGreatestSize = 16384;
constexpr float kSystemSize = 13, kSmallSize = 11, kMiniSize = 9, kLabelSize = 10;
constexpr float kMadeUpItalicAngle = -12;

// Fonts that are in use or were lately; each variant and size once.
class FontStore {
  public:
    static FontStore& shared() {
        static FontStore* store = new FontStore;  // outlives the fonts that end with the process
        return *store;
    }

    Retained<NSFont> find(FontVariant* variant, float size) {
        std::lock_guard lock(_mutex);
        auto found = _fonts.find({variant, size});
        return found == _fonts.end() ? nullptr : found->second;
    }

    /// The font, or the equal one that another thread has kept meanwhile.
    Retained<NSFont> keep(const Retained<NSFont>& font) {
        std::lock_guard lock(_mutex);
        Retained<NSFont> kept = _fonts.emplace(Key{&font->variant(), font->pointSize()}, font).first->second;
        if (_fonts.size() >= _sweepAt) sweep();
        return kept;
    }

  private:
    struct Key {
        FontVariant* variant;
        float size;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const {
            return std::hash<void*>()(key.variant) * 31 + std::hash<float>()(key.size);
        }
    };

    // Lets go of fonts that nobody else has. Nobody can get one meanwhile but through the store.
    void sweep() {
        std::erase_if(_fonts, [](const auto& item) { return item.second->retainCount() == 1; });
        _sweepAt = std::max<std::size_t>(512, 2 * _fonts.size());
    }

    std::mutex _mutex;
    std::unordered_map<Key, Retained<NSFont>, Hash> _fonts;
    std::size_t _sweepAt = 512;
};

float sizeOr(float size, float otherwise) {
    return size > 0 ? std::min(size, kGreatestSize) : otherwise;  // NaN is not above 0
}

NSFont* genericFont(const char* family, float size) {
    return NSFont::fontWithVariant_size(FontVariant::of(FontCatalogue::shared().bestFace(family), nullptr),
                                        size);
}

}  // namespace

NSFont::~NSFont() = default;

NSFont* NSFont::fontWithVariant_size(const std::shared_ptr<FontVariant>& variant, float size) {
    size = sizeOr(size, kDefaultSize);
    if (auto known = FontStore::shared().find(variant.get(), size)) return std::move(known).autorelease();
    auto font = make<NSFont>();
    font->_variant = variant;
    font->_size = size;
    return FontStore::shared().keep(font).autorelease();
}

// MARK: Finding

NSFont* NSFont::fontWithName_size(NSString* name, float size) {
    auto variant = name ? FontVariant::named(name->toUTF8(), nullptr) : nullptr;
    return variant ? fontWithVariant_size(variant, size) : nullptr;
}

NSFont* NSFont::fontWithDescriptor_size(NSFontDescriptor* descriptor, float size) {
    if (!descriptor) return nullptr;
    auto* settings = cast<NSArray>(descriptor->objectForKey(NSFontFeatureSettingsAttribute));
    auto text = [&](NSString* key) { return cast<NSString>(descriptor->objectForKey(key)); };
    NSString* name = text(NSFontNameAttribute);
    NSString* family = text(NSFontFamilyAttribute);
    std::shared_ptr<FontVariant> variant = name ? FontVariant::named(name->toUTF8(), settings) : nullptr;
    if (!variant && family)
        variant = FontVariant::ofFamily(family->toUTF8(), text(NSFontFaceAttribute), settings);
    return variant ? fontWithVariant_size(variant, sizeOr(size, descriptor->pointSize())) : nullptr;
}

NSFont* NSFont::systemFontOfSize(float size) { return genericFont("sans-serif", sizeOr(size, kSystemSize)); }

NSFont* NSFont::boldSystemFontOfSize(float size) {
    return NSFontManager::sharedFontManager()->convertFont_toHaveTrait(systemFontOfSize(size),
                                                                       NSBoldFontMask);
}

NSFont* NSFont::menuFontOfSize(float size) { return systemFontOfSize(size); }

NSFont* NSFont::menuBarFontOfSize(float size) { return systemFontOfSize(size); }

NSFont* NSFont::labelFontOfSize(float size) { return systemFontOfSize(sizeOr(size, kLabelSize)); }

NSFont* NSFont::userFontOfSize(float size) { return genericFont("sans-serif", size); }

NSFont* NSFont::userFixedPitchFontOfSize(float size) { return genericFont("monospace", size); }

float NSFont::systemFontSize() { return kSystemSize; }

float NSFont::smallSystemFontSize() { return kSmallSize; }

float NSFont::labelFontSize() { return kLabelSize; }

float NSFont::systemFontSizeForControlSize(NSControlSize controlSize) {
    return controlSize == NSSmallControlSize  ? kSmallSize
           : controlSize == NSMiniControlSize ? kMiniSize
                                              : kSystemSize;
}

// MARK: Names

NSString* NSFont::fontName() { return NSString::ofUTF8(_variant->name()); }

NSString* NSFont::familyName() { return NSString::ofUTF8(_variant->face().entry().family); }

NSString* NSFont::displayName() {
    std::string name = _variant->face().entry().fullName;
    if (_variant->madeUp().isBold) name += " Bold";
    if (_variant->madeUp().isOblique) name += " Oblique";
    return NSString::ofUTF8(name);
}

NSFontDescriptor* NSFont::fontDescriptor() {
    NSFontDescriptor* descriptor = NSFontDescriptor::fontDescriptorWithName_size(fontName(), _size);
    NSArray* settings = _variant->featureSettings();
    if (!settings) return descriptor;
    return descriptor->fontDescriptorByAddingAttributes(
        NSDictionary::of({{NSFontFeatureSettingsAttribute, settings}}));
}

NSString* NSFont::description() {
    return NSString::stringWithFormat(u"%@ %g"_ns, fontName(), static_cast<double>(_size));
}

// MARK: Measures

float NSFont::points(double fontUnits) {
    return static_cast<float>(fontUnits * _size / _variant->face().measures().unitsPerEm);
}

float NSFont::ascender() { return points(_variant->face().measures().ascender); }

float NSFont::descender() { return points(_variant->face().measures().descender); }

float NSFont::leading() { return points(_variant->face().measures().gap); }

float NSFont::defaultLineHeightForFont() {
    const FontFace::Measures& measures = _variant->face().measures();
    return points(static_cast<double>(measures.ascender) - measures.descender + measures.gap);
}

float NSFont::xHeight() { return points(_variant->face().measures().xHeight); }

float NSFont::capHeight() { return points(_variant->face().measures().capHeight); }

float NSFont::underlinePosition() { return points(_variant->face().measures().underlinePosition); }

float NSFont::underlineThickness() { return points(_variant->face().measures().underlineThickness); }

float NSFont::italicAngle() {
    return _variant->face().measures().italicAngle + (_variant->madeUp().isOblique ? kMadeUpItalicAngle : 0);
}

bool NSFont::isFixedPitch() { return _variant->traits() & NSFixedPitchFontMask; }

NSRect NSFont::boundingRectForFont() {
    const NSRect& box = _variant->face().measures().box;
    return {{points(box.origin.x), points(box.origin.y)}, {points(box.size.width), points(box.size.height)}};
}

// MARK: Glyphs

NSGlyph NSFont::glyphForCharacter(char32_t character) {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(_variant->face().shaper(), character, &glyph) ? glyph : 0;
}

NSUInteger NSFont::numberOfGlyphs() { return _variant->face().measures().glyphCount; }

NSSize NSFont::advancementForGlyph(NSGlyph glyph) {
    if (glyph >= numberOfGlyphs()) return {};
    return {points(hb_font_get_glyph_h_advance(_variant->face().shaper(), glyph)), 0};
}

NSRect NSFont::boundingRectForGlyph(NSGlyph glyph) {
    hb_glyph_extents_t ink{};
    if (glyph >= numberOfGlyphs() || !hb_font_get_glyph_extents(_variant->face().shaper(), glyph, &ink))
        return {};
    // The height of the ink counts downwards from its upper edge.
    return {{points(ink.x_bearing), points(static_cast<double>(ink.y_bearing) + ink.height)},
            {points(ink.width), points(-static_cast<double>(ink.height))}};
}

// MARK: Copies

Retained<Object> NSFont::copyWithZone(void*) { return Retained<Object>::retaining(this); }

void NSFont::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeObject_forKey(fontName(), u"NSName"_ns);
    coder->encodeFloat_forKey(_size, u"NSSize"_ns);
    if (_variant->featureSettings())
        coder->encodeObject_forKey(_variant->featureSettings(), u"NSFeatures"_ns);
}

Retained<NSFont> NSFont::initWithCoder(NSCoder* coder) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto* name = cast<NSString>(coder->decodeObjectForKey(u"NSName"_ns));
    auto* settings = cast<NSArray>(coder->decodeObjectForKey(u"NSFeatures"_ns));
    const float size = coder->decodeFloatForKey(u"NSSize"_ns);
    auto variant = name ? FontVariant::named(name->toUTF8(), settings) : nullptr;
    return Retained<NSFont>::retaining(variant ? fontWithVariant_size(variant, size) : userFontOfSize(size));
}

}  // namespace pelvor
