// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/StyleChange.h"

#include <algorithm>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Runtime/NSException.h"
#include "Text/NSFontManager.h"

namespace pelvor {
namespace {

NSFontManager* manager() { return NSFontManager::sharedFontManager(); }

unsigned traitsOf(NSDictionary* attributes) { return manager()->traitsOfFont(fontOf(attributes)); }
bool areEqual(id one, id other) { return one == other || (one && other && one->isEqual(other)); }

NSFont* withTrait(NSFont* font, unsigned trait, bool wanted) {
    return wanted ? manager()->convertFont_toHaveTrait(font, trait)
                  : manager()->convertFont_toNotHaveTrait(font, trait);
}

const NamedStyle& styleNamed(const NamedStyle* found, NSString* name, const char* operation) {
    if (!found)
        raiseException(NSInvalidArgumentException, u"%s: the name \"%@\" is not in the style sheet"_ns,
                       operation, name);
    return *found;
}

// The old value gives way to that of the paragraph.
void restore(NSString* key, NSDictionary* usual, NSMutableDictionary* changed) {
    if (id value = usual->objectForKey(key))
        changed->setObject_forKey(value, key);
    else
        changed->removeObjectForKey(key);
}

// Takes back what the character style has set.
void removeStyle(const NamedStyle& style, NSDictionary* usual, NSMutableDictionary* changed) {
    for (NSDictionaryEntry entry : style.attributes)
        if (areEqual(changed->objectForKey(entry.key), entry.value))
            restore(cast<NSString>(entry.key), usual, changed);
    NSFont *font = fontOf(changed), *most = fontOf(usual);
    if (!font || !most) return;
    if (style.family) font = manager()->convertFont_toFamily(font, most->familyName());
    if (style.isBold) font = withTrait(font, NSBoldFontMask, traitsOf(usual) & NSBoldFontMask);
    if (style.isItalic) font = withTrait(font, NSItalicFontMask, traitsOf(usual) & NSItalicFontMask);
    if (style.size) font = manager()->convertFont_toSize(font, most->pointSize());
    changed->setObject_forKey(font, NSFontAttributeName);
}

// Calls the function with the part of each paragraph that is in the range, and with the whole paragraph.
template <class Function>
void eachParagraph(NSMutableAttributedString* text, NSRange range, Function function) {
    text->beginEditing();
    for (NSUInteger place = range.location; place < NSMaxRange(range);) {
        const NSRange paragraph = paragraphRangeForRange(text->string(), {place, 0});
        const NSUInteger end = std::min(NSMaxRange(paragraph), NSMaxRange(range));
        function(NSRange{place, end - place}, paragraph);
        place = end;
    }
    text->endEditing();
}

}  // namespace

NSDictionary* usualAttributes(NSAttributedString* text, NSRange range) {
    AttributeRun longest{{0, 0}, NSDictionary::dictionary()};
    bool isPlain = false;
    for (AttributeRun run : text->runsInRange(range)) {
        const bool isRunPlain = !run.attributes->objectForKey(PBStyleCharacterAttributeName);
        if (isRunPlain < isPlain) continue;
        if (isRunPlain == isPlain && run.range.length <= longest.range.length) continue;
        longest = run;
        isPlain = isRunPlain;
    }
    return longest.attributes;
}

Retained<NSMutableDictionary> attributesInStyle(const NamedStyle& style, NSDictionary* old,
                                                NSDictionary* usual) {
    auto changed = NSMutableDictionary::initWithDictionary(old);
    NSDictionary* whole = attributesOfStyle(style);
    for (NSDictionaryEntry entry : whole)
        if (areEqual(old->objectForKey(entry.key), usual->objectForKey(entry.key)))
            changed->setObject_forKey(entry.value, entry.key);
    NSFont *own = fontOf(old), *most = fontOf(usual);
    if (!own || !most || own == most) return changed;
    NSFont* font = fontOf(whole);
    const unsigned difference = traitsOf(old) ^ traitsOf(usual);
    const float size = font->pointSize() * own->pointSize() / most->pointSize();
    if (!own->familyName()->isEqualToString(most->familyName()))
        font = manager()->convertFont_toFamily(font, own->familyName());
    for (unsigned trait : {NSBoldFontMask, NSItalicFontMask})
        if (difference & trait) font = withTrait(font, trait, !(manager()->traitsOfFont(font) & trait));
    changed->setObject_forKey(manager()->convertFont_toSize(font, size), NSFontAttributeName);
    return changed;
}

void addStyle(const NamedStyle& style, NSMutableDictionary* attributes) {
    attributes->addEntriesFromDictionary(style.attributes);
    attributes->setObject_forKey(style.fontFor(fontOf(attributes)), NSFontAttributeName);
}

// MARK: Named styles

Retained<NSMutableDictionary> attributesInParagraphStyle(const StyleSheet& sheet, NSString* name,
                                                         NSDictionary* old, NSDictionary* usual) {
    const NamedStyle& style = styleNamed(sheet.paragraphStyle(name), name, "setParagraphStyle");
    const NamedStyle* before = sheet.paragraphStyle(nameIn(old, PBStyleParagraphAttributeName));
    auto changed = attributesInStyle(style, old, usual);
    if (before)
        for (NSDictionaryEntry entry : before->attributes)
            if (!style.attributes->objectForKey(entry.key) &&
                areEqual(old->objectForKey(entry.key), entry.value))
                changed->removeObjectForKey(entry.key);
    changed->setObject_forKey(name, PBStyleParagraphAttributeName);
    return changed;
}

Retained<NSMutableDictionary> attributesInCharacterStyle(const StyleSheet& sheet, NSString* name,
                                                         NSDictionary* old, NSDictionary* usual) {
    const NamedStyle* style =
        name ? &styleNamed(sheet.characterStyle(name), name, "setCharacterStyle") : nullptr;
    auto changed = NSMutableDictionary::initWithDictionary(old);
    if (const NamedStyle* before = sheet.characterStyle(nameIn(old, PBStyleCharacterAttributeName)))
        removeStyle(*before, usual, changed);
    changed->removeObjectForKey(PBStyleCharacterAttributeName);
    if (!style) return changed;
    addStyle(*style, changed);
    changed->setObject_forKey(name, PBStyleCharacterAttributeName);
    return changed;
}

Retained<NSMutableDictionary> clearedAttributes(const StyleSheet& sheet, NSDictionary* old,
                                                bool isWholeParagraph) {
    static NSString* const kKept[] = {
        NSAttachmentAttributeName,     NSLanguageAttributeName,        NSLinkAttributeName,
        NSToolTipAttributeName,        PBLanguageAttributeName,        PBStyleParagraphAttributeName,
        PBBreakTypeAttributeName,      PBFloatingContentAttributeName, PBStyleNoteReferenceAttributeName,
        PBAutomaticNumberAttributeName};
    const NamedStyle* style = sheet.paragraphStyle(nameIn(old, PBStyleParagraphAttributeName));
    if (!style) style = sheet.paragraphStyle(kPlainStyleName);
    auto changed = style ? NSMutableDictionary::initWithDictionary(attributesOfStyle(*style))
                         : NSMutableDictionary::init();
    for (NSString* key : kKept)
        if (id value = old->objectForKey(key)) changed->setObject_forKey(value, key);
    if (!isWholeParagraph) restore(NSParagraphStyleAttributeName, old, changed);
    return changed;
}

// MARK: Texts

void setParagraphStyle(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet,
                       NSString* name) {
    eachParagraph(text, range, [&](NSRange part, NSRange paragraph) {
        const auto usual = Retained<NSDictionary>::retaining(usualAttributes(text, paragraph));
        text->changeAttributesInRange(part, [&](NSDictionary* old) {
            return Retained<NSDictionary>(attributesInParagraphStyle(sheet, name, old, usual));
        });
    });
}

void setCharacterStyle(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet,
                       NSString* name) {
    eachParagraph(text, range, [&](NSRange part, NSRange paragraph) {
        const auto usual = Retained<NSDictionary>::retaining(usualAttributes(text, paragraph));
        text->changeAttributesInRange(part, [&](NSDictionary* old) {
            return Retained<NSDictionary>(attributesInCharacterStyle(sheet, name, old, usual));
        });
    });
}

void clearFormats(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet) {
    eachParagraph(text, range, [&](NSRange part, NSRange paragraph) {
        const bool isWhole = part.length == paragraph.length;
        text->changeAttributesInRange(part, [&](NSDictionary* old) {
            return Retained<NSDictionary>(clearedAttributes(sheet, old, isWhole));
        });
    });
}

}  // namespace pelvor
