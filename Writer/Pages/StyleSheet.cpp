// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/StyleSheet.h"

#include <unordered_map>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Text/NSFontManager.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

NSFontManager* manager() { return NSFontManager::sharedFontManager(); }

NSFont* withTrait(NSFont* font, std::optional<bool> wanted, unsigned trait) {
    if (!wanted) return font;
    return *wanted ? manager()->convertFont_toHaveTrait(font, trait)
                   : manager()->convertFont_toNotHaveTrait(font, trait);
}

}  // namespace

NSFont* NamedStyle::fontFor(NSFont* font) const {
    if (!font) font = NSFont::userFontOfSize(12);
    NSFont* found = family ? manager()->convertFont_toSize(family, font->pointSize()) : font;
    if (family) {
        found = withTrait(found, bool(manager()->traitsOfFont(font) & NSBoldFontMask), NSBoldFontMask);
        found = withTrait(found, bool(manager()->traitsOfFont(font) & NSItalicFontMask), NSItalicFontMask);
    }
    found = withTrait(withTrait(found, isBold, NSBoldFontMask), isItalic, NSItalicFontMask);
    return size ? manager()->convertFont_toSize(found, *size) : found;
}

const NamedStyle* StyleSheet::find(const Styles& styles, NSString* name) {
    if (!name) return nullptr;
    const auto found = styles.find(name->lowercaseString()->toUTF16());
    return found == styles.end() ? nullptr : &found->second;
}

NSDictionary* attributesOfStyle(const NamedStyle& style) {
    auto* attributes = NSMutableDictionary::dictionaryWithDictionary(style.attributes);
    attributes->setObject_forKey(style.fontFor(nullptr), NSFontAttributeName);
    attributes->setObject_forKey(WRSheetParagraphStyle::create(style.paragraph, style.rules).get(),
                                 NSParagraphStyleAttributeName);
    return attributes;
}

namespace {

NSFont* fontOf(NSDictionary* attributes) {
    return cast<NSFont>(attributes->objectForKey(NSFontAttributeName));
}
NSString* nameIn(NSDictionary* attributes, NSString* key) {
    return cast<NSString>(attributes->objectForKey(key));
}
bool areEqual(id one, id other) { return one == other || (one && other && one->isEqual(other)); }

// Puts text into styles.
class StyledText {
  public:
    StyledText(NSAttributedString* text, const StyleSheet& defaults, const StyleSheet* sheet)
        : _text(text->mutableCopy()), _defaults(defaults), _sheet(sheet) {}

    Retained<NSAttributedString> make() {
        const NSUInteger length = _text->length();
        for (NSUInteger place = 0; place < length;) {
            NSRange run;
            NSDictionary* attributes = _text->attributesAtIndex_effectiveRange(place, &run);
            if (!fontOf(attributes))
                _text->setAttributes_range(plain(attributes), run);
            else if (_sheet)
                run = setFormatted(attributes, place);
            place = NSMaxRange(run);
        }
        return _text;
    }

  private:
    // Of text that has styles at most: no formats of its own stand against them. Kept for the next run, with
    // the attributes that it is found by.
    NSDictionary* plain(NSDictionary* attributes) {
        auto& [own, set] = _plain[attributes];
        if (own) return set;
        own.set(attributes);
        NSString* name = nameIn(attributes, PBStyleParagraphAttributeName);
        const NamedStyle* style = nullptr;
        for (NSString* wanted : {name, kPlainStyleName}) {
            if (!style && _sheet) style = _sheet->paragraphStyle(wanted);
            if (!style) style = _defaults.paragraphStyle(wanted);
        }
        auto changed = NSMutableDictionary::initWithDictionary(attributes);
        if (style) changed->addEntriesFromDictionary(attributesOfStyle(*style));
        addCharacterStyle(changed, &_defaults);
        set = changed->copy();
        return set;
    }

    NSRange setFormatted(NSDictionary* attributes, NSUInteger place) {
        const NSRange paragraph = paragraphRangeForRange(_text->string(), {place, 0});
        const NSRange range{place, NSMaxRange(paragraph) - place};
        const NamedStyle* style = _sheet->paragraphStyle(nameIn(attributes, PBStyleParagraphAttributeName));
        // Most of the paragraph is in the formats of the style that it was made with.
        NSRange longest{0, 0};
        for (AttributeRun run : _text->runsInRange(range))
            if (run.range.length > longest.length) longest = run.range;
        const auto usual = Retained<NSDictionary>::retaining(
            _text->attributesAtIndex_effectiveRange(longest.location, nullptr));
        _text->changeAttributesInRange(range, [&](NSDictionary* old) {
            auto changed = NSMutableDictionary::initWithDictionary(old);
            if (style) merge(*style, old, usual, changed);
            addCharacterStyle(changed, nullptr);
            return Retained<NSDictionary>(std::move(changed));
        });
        return range;
    }

    static void merge(const NamedStyle& style, NSDictionary* old, NSDictionary* usual,
                      NSMutableDictionary* changed) {
        NSDictionary* whole = attributesOfStyle(style);
        for (NSDictionaryEntry entry : whole)
            if (areEqual(old->objectForKey(entry.key), usual->objectForKey(entry.key)))
                changed->setObject_forKey(entry.value, entry.key);
        NSFont *own = fontOf(old), *most = fontOf(usual);
        if (!own || !most || own == most) return;
        NSFont* font = fontOf(whole);
        const unsigned difference = manager()->traitsOfFont(own) ^ manager()->traitsOfFont(most);
        const float size = font->pointSize() * own->pointSize() / most->pointSize();
        if (!own->familyName()->isEqualToString(most->familyName()))
            font = manager()->convertFont_toFamily(font, own->familyName());
        for (unsigned trait : {NSBoldFontMask, NSItalicFontMask})
            if (difference & trait) font = withTrait(font, !(manager()->traitsOfFont(font) & trait), trait);
        changed->setObject_forKey(manager()->convertFont_toSize(font, size), NSFontAttributeName);
    }

    void addCharacterStyle(NSMutableDictionary* attributes, const StyleSheet* defaults) {
        NSString* name = nameIn(attributes, PBStyleCharacterAttributeName);
        const NamedStyle* style = _sheet ? _sheet->characterStyle(name) : nullptr;
        if (!style && defaults) style = defaults->characterStyle(name);
        if (!style) return;
        attributes->addEntriesFromDictionary(style->attributes);
        attributes->setObject_forKey(style->fontFor(fontOf(attributes)), NSFontAttributeName);
    }

    Retained<NSMutableAttributedString> _text;
    const StyleSheet& _defaults;
    const StyleSheet* _sheet;
    std::unordered_map<NSDictionary*, std::pair<Retained<NSDictionary>, Retained<NSDictionary>>> _plain;
};

}  // namespace

Retained<NSAttributedString> textInStyles(NSAttributedString* text, const StyleSheet& defaults,
                                          const StyleSheet* sheet) {
    return StyledText(text, defaults, sheet).make();
}

}  // namespace pelvor
