// SPDX-License-Identifier: Apache-2.0
#include "NSAttributedString-PelvorAdditions.h"

#include <algorithm>

#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableSet.h"
#include "NSString-PelvorAdditions.h"
#include "PBRangeUtil.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSParagraphStyle.h"

namespace pelvor {

// MARK: Names

constinit NSString* const PBStyleNoteReferenceAttributeName = u"PBStyleNoteReference"_ns;
constinit NSString* const PBStyleCharacterAttributeName = u"PBStyleCharacter"_ns;
constinit NSString* const PBStyleParagraphAttributeName = u"PBStyleParagraph"_ns;
constinit NSString* const PBStyleNoteTextAttributeName = u"PBStyleNoteText"_ns;
constinit NSString* const PBFontSubstitutedAttributeName = u"PBFontSubstituted"_ns;
constinit NSString* const PBFontCaseChangeAttributeName = u"PBFontCaseChange"_ns;
constinit NSString* const PBFontSizeAttributeName = u"PBFontSize"_ns;
constinit NSString* const PBExpandedFontAttributeName = u"PBCompressedFont"_ns;
constinit NSString* const PBItalicFontAttributeName = u"PBItalicFont"_ns;
constinit NSString* const PBBoldFontAttributeName = u"PBBoldFont"_ns;
constinit NSString* const PBFloatingContentAttributeName = u"PBFloatingContent"_ns;
constinit NSString* const PBHighlightAttributeName = u"PBHighlight"_ns;
constinit NSString* const PBLanguageAttributeName = u"PBLanguage"_ns;
constinit NSString* const PBModelAttributesAttributeName = u"PBModelAttributes"_ns;
constinit NSString* const PBAutomaticNumberAttributeName = u"PBAutomaticNumber"_ns;
constinit NSString* const PBNewlineBeforeFormFeedAttachmentAttributeName = u"PBNewlineBeforeFeedAttrName"_ns;
constinit NSString* const PBBreakTypeAttributeName = u"PBBreakType"_ns;

constinit NSString* const PBStrokeColorAttributeName = u"NSStrokeColor"_ns;
constinit NSString* const PBShadowAttributeName = u"NSShadow"_ns;
constinit NSString* const PBExpansionAttributeName = u"NSExpansion"_ns;
constinit NSString* const PBStrokeWidthAttributeName = u"NSStrokeWidth"_ns;
constinit NSString* const PBObliquenessAttributeName = u"NSObliqueness"_ns;
constinit NSString* const PBStrikethroughColorAttributeName = u"NSStrikethroughColor"_ns;
constinit NSString* const PBStrikethroughStyleAttributeName = u"NSStrikethrough"_ns;
constinit NSString* const PBToolTipAttributeName = u"NSToolTip"_ns;

constinit NSString* const PBHTMLAnchorDestinationLinkProtocol = u"pelvor-anchor"_ns;

constinit id PBSystemLanguage = nullptr;

// MARK: Method tables

namespace {

void defineAdditions(MethodTable<NSAttributedString>& methods) {
    methods.classLevel<"attributedString", &NSAttributedString_PelvorAdditions::attributedString>();
    methods.classLevel<"attributedStringWithString:",
                       &NSAttributedString_PelvorAdditions::attributedStringWithString>();
    methods.instance<"languageAttributeAtIndex:effectiveRange:", &languageAttributeAtIndex_effectiveRange>();
    methods.instance<"languageAttributeAtIndex:longestEffectiveRange:inRange:",
                     &languageAttributeAtIndex_longestEffectiveRange_inRange>();
    methods.instance<"languageAttributeAtIndex:cleanEffectiveRange:suggestedRange:",
                     &languageAttributeAtIndex_cleanEffectiveRange_suggestedRange>();
    methods.instance<"stylesheet", &stylesheet>();
    methods.instance<"firstAttributes", &firstAttributes>();
    methods.instance<"attributesAtIndex:", &attributesAtIndex>();
    methods.instance<"attachmentAtIndex:", &attachmentAtIndex>();
    methods.instance<"nextAttachmentFromOffset:", &nextAttachmentFromOffset>();
    methods.instance<"nextAttribute:effectiveRange:inRange:", &nextAttribute_effectiveRange_inRange>();
    methods
        .instance<"constrainRange:toSingleAttribute:location:", &constrainRange_toSingleAttribute_location>();
    methods.instance<"constrainRange:toSingleAttribute:mask:", &constrainRange_toSingleAttribute_mask>();
    methods.instance<"attributedStringByAddingUndefinedAttributes:",
                     &attributedStringByAddingUndefinedAttributes>();
    methods.instance<"rangeOfWordAtIndex:isWord:", &rangeOfWordAtIndex_isWord>();
    methods.instance<"nextWordFromIndex:forward:", &nextWordFromIndex_forward>();
    methods.instance<"paragraphRangeForRange:wordCount:charCount:",
                     &paragraphRangeForRange_wordCount_charCount>();
    methods.instance<"paragraphsInRange:wordCount:charCount:", &paragraphsInRange_wordCount_charCount>();
    methods.instance<"rangeOfPluralAttribute:withValue:atIndex:inRange:",
                     &rangeOfPluralAttribute_withValue_atIndex_inRange>();
    methods.instance<"unionPluralAttribute:inRange:", &unionPluralAttribute_inRange>();
}

void defineMutableAdditions(MethodTable<NSMutableAttributedString>& methods) {
    methods.creator<"attributedString", &NSMutableAttributedString_PelvorAdditions::attributedString>();
    methods.creator<"attributedStringWithString:",
                    &NSMutableAttributedString_PelvorAdditions::attributedStringWithString>();
    methods.creator<"newWithString:attributes:",
                    &NSMutableAttributedString_PelvorAdditions::newWithString_attributes>();
    methods.instance<"appendString:withAttributes:", &appendString_withAttributes>();
    methods.instance<"appendString:extendAttributes:", &appendString_extendAttributes>();
    methods.instance<"replaceCharactersInRange:withTextAttachment:attributes:",
                     &replaceCharactersInRange_withTextAttachment_attributes>();
    methods.instance<"replaceCharactersInRange:withTextAttachment:",
                     &replaceCharactersInRange_withTextAttachment>();
    methods.instance<"addUndefinedAttributes:range:", &addUndefinedAttributes_range>();
    methods.instance<"setAttributesPreservingAttachments:inRange:",
                     &setAttributesPreservingAttachments_inRange>();
    methods.instance<"setAttributesFromAttributedString:range:", &setAttributesFromAttributedString_range>();
    methods.instance<"addPluralAttribute:value:range:", &addPluralAttribute_value_range>();
    methods.instance<"removePluralAttribute:value:range:", &removePluralAttribute_value_range>();
}

}  // namespace

constinit const Category NSAttributedString_PelvorAdditions_category =
    Category::of<NSAttributedString, defineAdditions>("PelvorAdditions");
constinit const Category NSMutableAttributedString_PelvorAdditions_category =
    Category::of<NSMutableAttributedString, defineMutableAdditions>("PelvorAdditions");

namespace {

void requireTextIndex(NSAttributedString* text, NSUInteger index, const char* operation) {
    requireArgument(text, operation, "the text");
    requireIndex(index, text->length(), operation);
}

void requireTextRange(NSAttributedString* text, NSRange range, const char* operation) {
    requireArgument(text, operation, "the text");
    requireRange(range, text->length(), operation);
}

}  // namespace

// MARK: Creation

NSAttributedString* NSAttributedString_PelvorAdditions::attributedString() {
    static NSAttributedString* const empty = NSAttributedString::init().leak();
    return empty;
}

NSAttributedString* NSAttributedString_PelvorAdditions::attributedStringWithString(NSString* string) {
    requireArgument(string, "attributedStringWithString:", "the string");
    return NSAttributedString::initWithString(string).autorelease();
}

NSMutableAttributedString* NSMutableAttributedString_PelvorAdditions::attributedString(Class* cls) {
    return NSMutableAttributedString::init(cls).autorelease();
}

NSMutableAttributedString* NSMutableAttributedString_PelvorAdditions::attributedStringWithString(
    NSString* string, Class* cls) {
    requireArgument(string, "attributedStringWithString:", "the string");
    return NSMutableAttributedString::initWithString(string, cls).autorelease();
}

Retained<NSMutableAttributedString> NSMutableAttributedString_PelvorAdditions::newWithString_attributes(
    NSString* string, NSDictionary* attributes, Class* cls) {
    requireArgument(string, "newWithString:attributes:", "the string");
    return NSMutableAttributedString::initWithString_attributes(string, attributes, cls);
}

// MARK: Languages

namespace {

id languageOr(id own) { return own ? own : PBSystemLanguage; }

NSCharacterSet* alphanumerics() {
    static NSCharacterSet* const set = NSCharacterSet::alphanumericCharacterSet()->copy().leak();
    return set;
}

bool isAlphanumericAt(NSString* string, NSUInteger index) {
    return alphanumerics()->characterIsMember(string->characterAtIndex(index));
}

// A scanner that is borrowed from a language for a text.
class BoundaryScanner {
  public:
    BoundaryScanner(id language, NSString* string)
        : _language(language), _scanner(send<id>(language, "acquireBoundaryScanner"_sel)) {
        send<void>(_scanner, "setString:"_sel, string);
    }
    BoundaryScanner(const BoundaryScanner&) = delete;
    BoundaryScanner& operator=(const BoundaryScanner&) = delete;
    ~BoundaryScanner() {
        send<void>(_scanner, "setString:"_sel, static_cast<NSString*>(nullptr));
        send<void>(_language, "relinquishBoundaryScanner:"_sel, _scanner);
    }

    NSUInteger boundary(NSUInteger from, bool isForward) {
        return send<NSUInteger>(_scanner, "offsetOfWordBoundaryFrom:isForwardSearch:"_sel, from, isForward);
    }

  private:
    Unretained<Object> _language;
    Unretained<Object> _scanner;
};

// Where the word at the end of the language's stretch, or before it, ends.
NSUInteger cleanEnd(NSAttributedString* text, NSUInteger start, NSUInteger end, id language) {
    NSString* string = text->string();
    NSUInteger length = string->length();
    BoundaryScanner scanner(language, string);
    NSUInteger before = scanner.boundary(end, false);
    if (before != NSNotFound && before > start && before < length)
        return before + isAlphanumericAt(string, before);
    NSUInteger last = end > 0 ? end - 1 : 0;
    NSUInteger after = std::min(scanner.boundary(last, true), length);
    if (after < length && isAlphanumericAt(string, last) == isAlphanumericAt(string, after)) ++after;
    NSRange same;
    NSRange limit{last, std::max(after, last) - last};
    languageAttributeAtIndex_longestEffectiveRange_inRange(text, last, &same, limit);
    return std::min(after, NSMaxRange(same));
}

}  // namespace

id PBEffectiveLanguageForAttributes(NSDictionary* attributes) {
    return languageOr(attributes ? attributes->objectForKey(PBLanguageAttributeName) : nullptr);
}

NSWritingDirection PBEffectiveWritingDirectionForAttributes(NSDictionary* attributes) {
    id style = attributes ? attributes->objectForKey(NSParagraphStyleAttributeName) : nullptr;
    if (style) {
        auto direction = send<NSWritingDirection>(style, "baseWritingDirection"_sel);
        if (direction != NSWritingDirectionNatural) return direction;
    }
    bool isRightToLeft = send<bool>(PBEffectiveLanguageForAttributes(attributes), "isRightToLeft"_sel);
    return isRightToLeft ? NSWritingDirectionRightToLeft : NSWritingDirectionLeftToRight;
}

id languageAttributeAtIndex_effectiveRange(NSAttributedString* text, NSUInteger index,
                                           NSRange* effectiveRange) {
    requireTextIndex(text, index, "languageAttributeAtIndex:effectiveRange:");
    return languageOr(text->attribute_atIndex_effectiveRange(PBLanguageAttributeName, index, effectiveRange));
}

id languageAttributeAtIndex_longestEffectiveRange_inRange(NSAttributedString* text, NSUInteger index,
                                                          NSRange* longestRange, NSRange limit) {
    constexpr const char* kOperation = "languageAttributeAtIndex:longestEffectiveRange:inRange:";
    requireTextIndex(text, index, kOperation);
    requireTextRange(text, limit, kOperation);
    return languageOr(text->attribute_atIndex_longestEffectiveRange_inRange(PBLanguageAttributeName, index,
                                                                            longestRange, limit));
}

id languageAttributeAtIndex_cleanEffectiveRange_suggestedRange(NSAttributedString* text, NSUInteger index,
                                                               NSRange* cleanRange, NSRange suggestedRange) {
    constexpr const char* kOperation = "languageAttributeAtIndex:cleanEffectiveRange:suggestedRange:";
    requireTextRange(text, suggestedRange, kOperation);
    NSRange clean{};
    id language = PBSystemLanguage;
    if (text->length() > 0) {
        requireTextIndex(text, index, kOperation);
        NSRange same;
        language = languageAttributeAtIndex_longestEffectiveRange_inRange(text, index, &same, suggestedRange);
        NSUInteger end = NSMaxRange(same);
        if (language) end = cleanEnd(text, suggestedRange.location, end, language);
        if (end > 0)
            end =
                std::max(end, NSMaxRange(PBRangeOfComposedCharacterSequenceAtIndex(text->string(), end - 1)));
        clean = {suggestedRange.location, end - suggestedRange.location};
    }
    if (cleanRange) *cleanRange = clean;
    return language;
}

// MARK: Attributes and attachments

id stylesheet(NSAttributedString*) { return nullptr; }

NSDictionary* firstAttributes(NSAttributedString* text) {
    requireArgument(text, "firstAttributes", "the text");
    return text->length() > 0 ? attributesAtIndex(text, 0) : NSDictionary::dictionary();
}

NSDictionary* attributesAtIndex(NSAttributedString* text, NSUInteger index) {
    requireTextIndex(text, index, "attributesAtIndex:");
    return text->attributesAtIndex_effectiveRange(index, nullptr);
}

id attachmentAtIndex(NSAttributedString* text, NSUInteger index) {
    requireTextIndex(text, index, "attachmentAtIndex:");
    if (text->string()->characterAtIndex(index) != NSAttachmentCharacter) return nullptr;
    return text->attribute_atIndex_effectiveRange(NSAttachmentAttributeName, index, nullptr);
}

id nextAttachmentFromOffset(NSAttributedString* text, NSUInteger* offset) {
    static NSCharacterSet* const attachmentCharacter =
        NSCharacterSet::characterSetWithRange({NSAttachmentCharacter, 1})->copy().leak();
    requireArgument(text, "nextAttachmentFromOffset:", "the text");
    requireArgument(offset, "nextAttachmentFromOffset:", "the offset");
    NSString* string = text->string();
    NSUInteger length = string->length();
    for (NSUInteger place = *offset; place < length;) {
        NSRange found = string->rangeOfCharacterFromSet_options_range(attachmentCharacter, NSLiteralSearch,
                                                                      {place, length - place});
        if (found.location == NSNotFound) break;
        id attachment =
            text->attribute_atIndex_effectiveRange(NSAttachmentAttributeName, found.location, nullptr);
        if (attachment) {
            *offset = found.location;
            return attachment;
        }
        place = found.location + 1;
    }
    return nullptr;
}

id nextAttribute_effectiveRange_inRange(NSAttributedString* text, NSString* name, NSRange* effectiveRange,
                                        NSRange range) {
    requireArgument(name, "nextAttribute:effectiveRange:inRange:", "the name");
    requireTextRange(text, range, "nextAttribute:effectiveRange:inRange:");
    NSRange run;
    for (NSUInteger place = range.location; place < NSMaxRange(range); place = NSMaxRange(run)) {
        id value = text->attribute_atIndex_effectiveRange(name, place, &run);
        if (!value) continue;
        if (effectiveRange) *effectiveRange = run;
        return value;
    }
    return nullptr;
}

NSRange constrainRange_toSingleAttribute_location(NSAttributedString* text, NSRange range, NSString* name,
                                                  NSUInteger location) {
    constexpr const char* kOperation = "constrainRange:toSingleAttribute:location:";
    requireTextRange(text, range, kOperation);
    requireTextIndex(text, location, kOperation);
    requireArgument(name, kOperation, "the name");
    NSRange same;
    text->attribute_atIndex_effectiveRange(name, location, &same);
    if (same.location <= range.location && NSMaxRange(same) >= NSMaxRange(range)) return range;
    text->attribute_atIndex_longestEffectiveRange_inRange(name, location, &same, range);
    same = NSIntersectionRange(same, range);
    return same.length > 0 ? same : NSRange{location, 0};
}

NSRange constrainRange_toSingleAttribute_mask(NSAttributedString* text, NSRange range, NSString* name,
                                              NSRange mask) {
    constexpr const char* kOperation = "constrainRange:toSingleAttribute:mask:";
    requireTextRange(text, range, kOperation);
    requireTextRange(text, mask, kOperation);
    requireArgument(name, kOperation, "the name");
    if (mask.location < range.location) raiseBadArgument(kOperation, "the mask begins before the range");
    NSUInteger length = text->length();
    NSRange narrowed = range;
    if (mask.location != range.location) {
        NSRange front{range.location, mask.location - range.location + 1};
        if (NSMaxRange(front) > length) front.length = mask.location + 1 - length;
        NSRange same = constrainRange_toSingleAttribute_location(text, front, name, NSMaxRange(front) - 1);
        if (same.location > range.location) {
            narrowed.location = same.location;
            narrowed.length -= same.location - range.location;
        }
    }
    if (NSMaxRange(mask) >= NSMaxRange(range)) return narrowed;
    NSUInteger last = NSMaxRange(mask) > 0 ? NSMaxRange(mask) - 1 : 0;
    NSRange same =
        constrainRange_toSingleAttribute_location(text, {last, NSMaxRange(range) - last}, name, last);
    if (NSMaxRange(same) < NSMaxRange(narrowed)) narrowed.length = NSMaxRange(same) - narrowed.location;
    return narrowed;
}

// MARK: Words

namespace {

constexpr int kWordGranularity = 1;

// Without a language each character stands for itself.
NSRange wordAt(NSAttributedString* text, NSUInteger index, id language) {
    NSRange one{index, 1};
    return language ? send<NSRange>(language, "rangeWithGranularity:forString:range:"_sel, kWordGranularity,
                                    text, one)
                    : one;
}

}  // namespace

NSRange rangeOfWordAtIndex_isWord(NSAttributedString* text, NSUInteger index, bool* isWord) {
    static NSCharacterSet* const between = [] {
        auto set = NSCharacterSet::whitespaceAndNewlineCharacterSet()->mutableCopy();
        set->formUnionWithCharacterSet(NSCharacterSet::punctuationCharacterSet());
        return set->copy().leak();
    }();
    requireTextIndex(text, index, "rangeOfWordAtIndex:isWord:");
    if (isWord) *isWord = !between->characterIsMember(text->string()->characterAtIndex(index));
    return wordAt(text, index, languageAttributeAtIndex_effectiveRange(text, index, nullptr));
}

NSUInteger nextWordFromIndex_forward(NSAttributedString* text, NSUInteger index, bool isForward) {
    requireArgument(text, "nextWordFromIndex:forward:", "the text");
    if (isForward ? index >= text->length() : index == 0) return index;
    requirePlace(index, text->length(), "nextWordFromIndex:forward:");
    NSUInteger probe = isForward ? index : index - 1;
    id language = languageAttributeAtIndex_effectiveRange(text, probe, nullptr);
    NSUInteger letter = locationOfCharacterFromSet_options_location(
        text->string(), alphanumerics(), isForward ? NSLiteralSearch : NSBackwardsSearch, probe);
    NSRange word = wordAt(text, letter == NSNotFound ? probe : letter, language);
    word = constrainRange_toSingleAttribute_location(text, word, PBLanguageAttributeName, word.location);
    return isForward ? NSMaxRange(word) : word.location;
}

// MARK: Paragraphs

namespace {

struct Counts {
    NSUInteger words = 0;
    NSUInteger characters = 0;

    void write(NSUInteger* wordCount, NSUInteger* charCount) const {
        if (wordCount) *wordCount = words;
        if (charCount) *charCount = characters;
    }
};

// The first paragraph end in the range, language by language; adds to the counts.
NSRange countedParagraph(NSAttributedString* text, NSRange range, Counts& counts) {
    NSRange rest = range;
    while (rest.length > 0) {
        NSRange clean;
        id language =
            languageAttributeAtIndex_cleanEffectiveRange_suggestedRange(text, rest.location, &clean, rest);
        NSRange piece = NSIntersectionRange(clean, rest);
        if (piece.length == 0) piece = rest;
        if (language) {
            NSUInteger words = 0, characters = 0;
            NSRange found = send<NSRange>(language, "paragraphRangeForString:range:wordCount:charCount:"_sel,
                                          text->string(), piece, &words, &characters);
            counts.words += words;
            counts.characters += characters;
            if (found.location != NSNotFound) return {range.location, NSMaxRange(found) - range.location};
        }
        rest = {NSMaxRange(piece), NSMaxRange(rest) - NSMaxRange(piece)};
    }
    return PBNotFoundRange;
}

}  // namespace

NSRange paragraphRangeForRange_wordCount_charCount(NSAttributedString* text, NSRange range,
                                                   NSUInteger* wordCount, NSUInteger* charCount) {
    requireTextRange(text, range, "paragraphRangeForRange:wordCount:charCount:");
    Counts counts;
    NSRange paragraph = countedParagraph(text, range, counts);
    counts.write(wordCount, charCount);
    return paragraph;
}

NSUInteger paragraphsInRange_wordCount_charCount(NSAttributedString* text, NSRange range,
                                                 NSUInteger* wordCount, NSUInteger* charCount) {
    requireTextRange(text, range, "paragraphsInRange:wordCount:charCount:");
    Counts counts;
    NSUInteger paragraphs = 0;
    for (NSRange rest = range; rest.length > 0; ++paragraphs) {
        NSRange paragraph = countedParagraph(text, rest, counts);
        if (paragraph.location == NSNotFound) break;
        rest = {NSMaxRange(paragraph), NSMaxRange(rest) - NSMaxRange(paragraph)};
    }
    counts.write(wordCount, charCount);
    return paragraphs;
}

// MARK: Changes

namespace {

// Does the work, whose edits observers see as one.
template <class Work>
void inBrackets(NSMutableAttributedString* text, Work work) {
    text->beginEditing();
    try {
        work();
    } catch (...) {
        text->endEditing();
        throw;
    }
    text->endEditing();
}

// The run's attributes with those that it lacks.
Retained<NSDictionary> completed(NSDictionary* own, NSDictionary* attributes) {
    Retained<NSMutableDictionary> all;
    for (auto [name, value] : attributes) {
        if (own->objectForKey(name)) continue;
        if (!all) all = own->mutableCopy();
        all->setObject_forKey(value, name);
    }
    return all ? Retained<NSDictionary>(std::move(all)) : Retained<NSDictionary>::retaining(own);
}

Retained<NSDictionary> withValue(NSDictionary* own, NSString* name, id value) {
    auto changed = own->mutableCopy();
    changed->setValue_forKey(value, name);
    return changed;
}

}  // namespace

void appendString_withAttributes(NSMutableAttributedString* text, NSString* string,
                                 NSDictionary* attributes) {
    requireArgument(text, "appendString:withAttributes:", "the text");
    requireArgument(string, "appendString:withAttributes:", "the string");
    text->replaceCharactersInRange_withString_attributes({text->length(), 0}, string, attributes);
}

void appendString_extendAttributes(NSMutableAttributedString* text, NSString* string,
                                   bool extendsAttributes) {
    requireArgument(text, "appendString:extendAttributes:", "the text");
    requireArgument(string, "appendString:extendAttributes:", "the string");
    if (extendsAttributes)
        text->replaceCharactersInRange_withString({text->length(), 0}, string);
    else
        appendString_withAttributes(text, string, nullptr);
}

void replaceCharactersInRange_withTextAttachment(NSMutableAttributedString* text, NSRange range,
                                                 id attachment) {
    requireArgument(attachment, "replaceCharactersInRange:withTextAttachment:", "the attachment");
    requireTextRange(text, range, "replaceCharactersInRange:withTextAttachment:");
    replaceCharactersInRange_withTextAttachment_attributes(text, range, attachment, nullptr);
}

void replaceCharactersInRange_withTextAttachment_attributes(NSMutableAttributedString* text, NSRange range,
                                                            id attachment, NSDictionary* attributes) {
    constexpr const char* kOperation = "replaceCharactersInRange:withTextAttachment:attributes:";
    requireArgument(attachment, kOperation, "the attachment");
    requireTextRange(text, range, kOperation);
    inBrackets(text, [&] {
        if (range.length != 1 || text->string()->characterAtIndex(range.location) != NSAttachmentCharacter)
            text->replaceCharactersInRange_withString(range, u"\uFFFC"_ns);
        NSRange character{range.location, 1};
        if (attributes) text->setAttributes_range(attributes, character);
        text->addAttribute_value_range(NSAttachmentAttributeName, attachment, character);
    });
}

NSAttributedString* attributedStringByAddingUndefinedAttributes(NSAttributedString* text,
                                                                NSDictionary* attributes) {
    requireArgument(text, "attributedStringByAddingUndefinedAttributes:", "the text");
    bool isComplete = true;
    for (AttributeRun run : text->runs())
        isComplete = isComplete && completed(run.attributes, attributes) == run.attributes;
    if (isComplete) return text;
    NSMutableAttributedString* changed = text->mutableCopy().autorelease();
    addUndefinedAttributes_range(changed, attributes, {0, changed->length()});
    return changed;
}

void addUndefinedAttributes_range(NSMutableAttributedString* text, NSDictionary* attributes, NSRange range) {
    requireTextRange(text, range, "addUndefinedAttributes:range:");
    if (!attributes || attributes->count() == 0) return;
    text->changeAttributesInRange(range, [=](NSDictionary* own) { return completed(own, attributes); });
}

void setAttributesPreservingAttachments_inRange(NSMutableAttributedString* text, NSDictionary* attributes,
                                                NSRange range) {
    requireTextRange(text, range, "setAttributesPreservingAttachments:inRange:");
    auto plain =
        withValue(attributes ? attributes : NSDictionary::dictionary(), NSAttachmentAttributeName, nullptr);
    text->changeAttributesInRange(range, [&](NSDictionary* own) {
        id attachment = own->objectForKey(NSAttachmentAttributeName);
        return attachment ? withValue(plain, NSAttachmentAttributeName, attachment) : plain;
    });
}

void setAttributesFromAttributedString_range(NSMutableAttributedString* text, NSAttributedString* other,
                                             NSRange range) {
    constexpr const char* kOperation = "setAttributesFromAttributedString:range:";
    requireArgument(other, kOperation, "the attributed string");
    requireTextRange(text, range, kOperation);
    auto source = other->copy();  // `other` may be the text itself
    inBrackets(text, [&] {
        for (AttributeRun run : source->runsInRange({0, std::min(range.length, source->length())}))
            text->setAttributes_range(run.attributes,
                                      {range.location + run.range.location, run.range.length});
    });
}

// MARK: Plural attributes

namespace {

NSSet* setIn(NSDictionary* attributes, NSString* name) { return cast<NSSet>(attributes->objectForKey(name)); }

bool holds(NSDictionary* attributes, NSString* name, id value) {
    NSSet* set = setIn(attributes, name);
    return set && set->containsObject(value);
}

Retained<NSDictionary> withPlural(NSDictionary* own, NSString* name, id value) {
    if (holds(own, name, value)) return Retained<NSDictionary>::retaining(own);
    auto set = NSMutableSet::init();
    set->unionSet(setIn(own, name));
    set->addObject(value);
    return withValue(own, name, set->copy().get());
}

Retained<NSDictionary> withoutPlural(NSDictionary* own, NSString* name, id value) {
    if (!holds(own, name, value)) return Retained<NSDictionary>::retaining(own);
    auto set = setIn(own, name)->mutableCopy();
    set->removeObject(value);
    return withValue(own, name, set->count() > 0 ? set->copy().get() : nullptr);
}

void requirePlural(NSString* name, id value, const char* operation) {
    requireArgument(name, operation, "the name");
    requireArgument(value, operation, "the value");
}

}  // namespace

void addPluralAttribute_value_range(NSMutableAttributedString* text, NSString* name, id value,
                                    NSRange range) {
    constexpr const char* kOperation = "addPluralAttribute:value:range:";
    requirePlural(name, value, kOperation);
    requireTextRange(text, range, kOperation);
    text->changeAttributesInRange(range, [=](NSDictionary* own) { return withPlural(own, name, value); });
}

void removePluralAttribute_value_range(NSMutableAttributedString* text, NSString* name, id value,
                                       NSRange range) {
    constexpr const char* kOperation = "removePluralAttribute:value:range:";
    requirePlural(name, value, kOperation);
    requireTextRange(text, range, kOperation);
    text->changeAttributesInRange(range, [=](NSDictionary* own) { return withoutPlural(own, name, value); });
}

NSRange rangeOfPluralAttribute_withValue_atIndex_inRange(NSAttributedString* text, NSString* name, id value,
                                                         NSUInteger index, NSRange limit) {
    constexpr const char* kOperation = "rangeOfPluralAttribute:withValue:atIndex:inRange:";
    requirePlural(name, value, kOperation);
    requireTextRange(text, limit, kOperation);
    auto holdsAt = [&](NSUInteger place, NSRange* run) {
        return holds(text->attributesAtIndex_effectiveRange(place, run), name, value);
    };
    NSUInteger start = index, end = index;
    NSRange run;
    while (end < NSMaxRange(limit) && holdsAt(end, &run)) end = NSMaxRange(run);
    if (end == index) return PBNotFoundRange;
    while (start > limit.location && holdsAt(start - 1, &run)) start = run.location;
    return {start, end - start};
}

NSSet* unionPluralAttribute_inRange(NSAttributedString* text, NSString* name, NSRange range) {
    requireArgument(name, "unionPluralAttribute:inRange:", "the name");
    requireTextRange(text, range, "unionPluralAttribute:inRange:");
    NSSet* first = nullptr;
    NSMutableSet* all = nullptr;
    NSRange same;
    for (NSUInteger place = range.location; place < NSMaxRange(range); place = NSMaxRange(same)) {
        auto* set =
            cast<NSSet>(text->attribute_atIndex_longestEffectiveRange_inRange(name, place, &same, range));
        if (!set || set->count() == 0) continue;
        if (first && !all) all = NSMutableSet::setWithSet(first);
        if (all) all->unionSet(set);
        if (!first) first = set;
    }
    return all ? all : first;
}

}  // namespace pelvor
