// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/FontVariant.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Text/Fonts/FontCatalogue.h"
#include "Text/NSFontManager.h"

namespace pelvor {
namespace {

struct Known {
    std::mutex mutex;
    std::unordered_multimap<const FontFace*, std::weak_ptr<FontVariant>> variants;
    std::uint32_t count = 0;  // of all that ever were

    static Known& shared() {
        static Known* known = new Known;  // outlives the fonts that end with the process
        return *known;
    }
};

bool areEqual(NSArray* a, NSArray* b) { return a == b || (a && b && a->isEqualToArray(b)); }

constexpr unsigned kUnchangeableTraits = NSCondensedFontMask | NSExpandedFontMask | NSFixedPitchFontMask;

constexpr struct {
    std::string_view mark;
    MadeUpTraits traits;
} kMarks[] = {{"+Bold", {true, false}}, {"+Oblique", {false, true}}, {"+BoldOblique", {true, true}}};

}  // namespace

std::shared_ptr<FontVariant> FontVariant::of(const std::shared_ptr<FontFace>& face, NSArray* featureSettings,
                                             MadeUpTraits madeUp) {
    if (featureSettings && !featureSettings->count()) featureSettings = nullptr;
    Known& known = Known::shared();
    std::lock_guard lock(known.mutex);
    auto [place, end] = known.variants.equal_range(face.get());
    while (place != end) {
        std::shared_ptr<FontVariant> variant = place->second.lock();
        if (!variant)
            place = known.variants.erase(place);
        else if (variant->_madeUp == madeUp && areEqual(variant->_featureSettings, featureSettings))
            return variant;
        else
            ++place;
    }
    std::shared_ptr<FontVariant> variant(new FontVariant);
    variant->_number = ++known.count;
    variant->_face = face;
    variant->_madeUp = madeUp;
    if (featureSettings) variant->_featureSettings = featureSettings->copy();
    variant->_features = featuresOfSettings(featureSettings);
    known.variants.emplace(face.get(), variant);
    return variant;
}

std::shared_ptr<FontVariant> FontVariant::named(std::string_view name, NSArray* featureSettings) {
    if (auto face = faceNamed(name)) return of(face, featureSettings);
    for (auto [mark, traits] : kMarks)
        if (name.ends_with(mark))
            if (auto face = faceNamed(name.substr(0, name.size() - mark.size())))
                return of(face, featureSettings, traits);
    return nullptr;
}

std::shared_ptr<FontFace> FontVariant::faceNamed(std::string_view name) {
    for (const FontEntry* entry : FontCatalogue::shared().named(name))
        if (auto face = FontCatalogue::shared().face(*entry)) return face;
    auto regular = ofFamily(name, nullptr, nullptr);
    return regular ? regular->_face : nullptr;
}

namespace {

// How far a face is from the wanted traits and weight.
int distance(const FontEntry& entry, unsigned traits, int weight) {
    const unsigned wrong = entry.traits ^ traits;
    return std::abs(entry.weight - std::clamp(weight, 0, kGreatestWeight)) +
           (wrong & NSBoldFontMask ? 50 : 0) + (wrong & NSItalicFontMask ? 100 : 0) +
           (wrong & kUnchangeableTraits ? 200 : 0);
}

}  // namespace

std::shared_ptr<FontVariant> FontVariant::ofFamily(std::string_view family, unsigned traits, int weight,
                                                   NSArray* featureSettings) {
    auto members = FontCatalogue::shared().ofFamily(family);
    std::stable_sort(members.begin(), members.end(), [&](const FontEntry* a, const FontEntry* b) {
        return distance(*a, traits, weight) < distance(*b, traits, weight);
    });
    for (const FontEntry* entry : members) {
        const unsigned lacking = traits & ~entry->traits, unwanted = entry->traits & ~traits;
        if (unwanted || lacking & kUnchangeableTraits) continue;
        if (auto face = FontCatalogue::shared().face(*entry))
            return of(face, featureSettings,
                      {(lacking & NSBoldFontMask) != 0, (lacking & NSItalicFontMask) != 0});
    }
    return nullptr;
}

std::shared_ptr<FontVariant> FontVariant::ofFamily(std::string_view family, NSString* style,
                                                   NSArray* featureSettings) {
    auto members = FontCatalogue::shared().ofFamily(family);
    const std::string wanted = style ? lowerCased(style->toUTF8()) : "";
    auto rank = [&](const FontEntry* entry) {
        const bool isNamed = style && lowerCased(entry->style) == wanted;
        return isNamed ? -1 : distance(*entry, entry->traits & NSFixedPitchFontMask, 5);
    };
    std::stable_sort(members.begin(), members.end(),
                     [&](const FontEntry* a, const FontEntry* b) { return rank(a) < rank(b); });
    for (const FontEntry* entry : members)
        if (auto face = FontCatalogue::shared().face(*entry)) return of(face, featureSettings);
    return nullptr;
}

std::string FontVariant::name() const {
    std::string name = _face->entry().postScriptName;
    for (auto [mark, traits] : kMarks)
        if (traits == _madeUp) name += mark;
    return name;
}

unsigned FontVariant::traits() const {
    unsigned traits = _face->entry().traits;
    if (_madeUp.isBold) traits |= NSBoldFontMask;
    if (_madeUp.isOblique) traits |= NSItalicFontMask;
    return traits;
}

int FontVariant::weight() const { return std::max(_face->entry().weight, _madeUp.isBold ? 9 : 0); }

// MARK: Substitutes

std::shared_ptr<FontVariant> FontVariant::inFace(const std::shared_ptr<FontFace>& face) const {
    const FontEntry& entry = face->entry();
    auto lacks = [&](unsigned trait) { return !entry.isColoured && traits() & ~entry.traits & trait; };
    return of(face, _featureSettings, {lacks(NSBoldFontMask), lacks(NSItalicFontMask)});
}

std::shared_ptr<FontVariant> FontVariant::substituteFor(std::u32string_view characters, EastAsian language) {
    if (characters.empty()) return nullptr;
    // No face that comes before the first one with the first character has all of them.
    auto first = substituteFor(characters[0], language);
    const auto has = [&](char32_t character) { return first->face().hasCharacter(character); };
    if (!first || std::all_of(characters.begin() + 1, characters.end(), has)) return first;
    return findSubstitute(characters, language);
}

std::shared_ptr<FontVariant> FontVariant::substituteFor(char32_t character, EastAsian language) {
    auto& known = substitutesFor(language).of;
    {
        std::lock_guard lock(_mutex);
        if (auto place = known.find(character); place != known.end()) return place->second;
    }
    auto variant = findSubstitute({&character, 1}, language);
    std::lock_guard lock(_mutex);
    return known.emplace(character, variant).first->second;
}

std::shared_ptr<FontVariant> FontVariant::findSubstitute(std::u32string_view characters, EastAsian language) {
    Substitutes& substitutes = substitutesFor(language);
    std::call_once(substitutes.ranking, [&] {
        substitutes.ranked = FontCatalogue::shared().substitutes(_face->entry(), language);
    });
    for (const FontEntry* entry : substitutes.ranked) {
        if (!entry->hasCharacters(characters)) continue;
        if (auto face = FontCatalogue::shared().face(*entry)) return inFace(face);
    }
    return nullptr;
}

}  // namespace pelvor
