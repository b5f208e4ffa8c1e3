// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/StyleSheet.h"

#include <unordered_map>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Text/NSFontManager.h"
#include "Text/TextAttributes.h"
#include "Writer/Pages/StyleChange.h"

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

NSArray* StyleSheet::namesOf(const Styles& styles) {
    auto* names = NSMutableArray::array();
    for (const auto& [name, style] : styles) names->addObject(NSString::of(name));
    return names;
}

void StyleSheet::addMissingStyles(const StyleSheet& other) {
    _paragraphStyles.insert(other._paragraphStyles.begin(), other._paragraphStyles.end());
    _characterStyles.insert(other._characterStyles.begin(), other._characterStyles.end());
}

NSDictionary* attributesOfStyle(const NamedStyle& style) {
    auto* attributes = NSMutableDictionary::dictionaryWithDictionary(style.attributes);
    attributes->setObject_forKey(style.fontFor(nullptr), NSFontAttributeName);
    attributes->setObject_forKey(WRSheetParagraphStyle::create(style.paragraph, style.rules).get(),
                                 NSParagraphStyleAttributeName);
    return attributes;
}

namespace {

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
        const auto usual = Retained<NSDictionary>::retaining(usualAttributes(_text, range));
        _text->changeAttributesInRange(range, [&](NSDictionary* old) {
            auto changed =
                style ? attributesInStyle(*style, old, usual) : NSMutableDictionary::initWithDictionary(old);
            addCharacterStyle(changed, nullptr);
            return Retained<NSDictionary>(std::move(changed));
        });
        return range;
    }

    void addCharacterStyle(NSMutableDictionary* attributes, const StyleSheet* defaults) {
        NSString* name = nameIn(attributes, PBStyleCharacterAttributeName);
        const NamedStyle* style = _sheet ? _sheet->characterStyle(name) : nullptr;
        if (!style && defaults) style = defaults->characterStyle(name);
        if (!style) return;
        addStyle(*style, attributes);
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
