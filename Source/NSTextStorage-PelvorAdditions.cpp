// SPDX-License-Identifier: Apache-2.0
#include "NSTextStorage-PelvorAdditions.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableDictionary.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

constinit NSString* const PBListBulletAttributesAttributeName = u"PBListBulletAttributes"_ns;

namespace {

void defineDisplayAndModelAdditions(MethodTable<NSTextStorage>& methods) {
    methods.instance<"getParagraphStart:end:contentsEnd:forRange:",
                     static_cast<void (*)(NSTextStorage*, NSUInteger*, NSUInteger*, NSUInteger*, NSRange)>(
                         &getParagraphStart_end_contentsEnd_forRange)>();
    methods.instance<"paragraphRangeForRange:",
                     static_cast<NSRange (*)(NSTextStorage*, NSRange)>(&paragraphRangeForRange)>();
    methods.instance<"paragraphContentRangeForRange:",
                     static_cast<NSRange (*)(NSTextStorage*, NSRange)>(&paragraphContentRangeForRange)>();
    methods.instance<"longestIsKeepWithNextParagraphRangeBeforeIndex:",
                     &longestIsKeepWithNextParagraphRangeBeforeIndex>();
    methods.instance<"typingAttributesAtIndex:", &typingAttributesAtIndex>();
    methods.instance<"typingAttributesForDeletedRange:", &typingAttributesForDeletedRange>();
    methods.instance<"attributesForRange:", &attributesForRange>();
    methods.instance<"effectiveWritingDirectionForRange:", &effectiveWritingDirectionForRange>();
    methods.instance<"languageAttributeForRange:", &languageAttributeForRange>();
    methods.instance<"pelvorContentSortKey", &pelvorContentSortKey>();
}

void defineLongestEffectiveRangeAdditions(MethodTable<NSTextStorage>& methods) {
    methods.instance<"valueForCalculator:atIndex:longestEffectiveRange:withComparator:inRange:",
                     &valueForCalculator_atIndex_longestEffectiveRange_withComparator_inRange>();
}

}  // namespace

constinit const Category NSTextStorage_DisplayAndModelAdditions_category =
    Category::of<NSTextStorage, defineDisplayAndModelAdditions>("DisplayAndModelAdditions");
constinit const Category NSTextStorage_LongestEffectiveRangeAdditions_category =
    Category::of<NSTextStorage, defineLongestEffectiveRangeAdditions>("LongestEffectiveRangeAdditions");

namespace {

NSString* textOf(NSTextStorage* storage, const char* operation) {
    requireArgument(storage, operation, "the text storage");
    return storage->string();
}

}  // namespace

// MARK: Paragraphs. The string refuses ranges outside the text, in words of its own.

void getParagraphStart_end_contentsEnd_forRange(NSTextStorage* storage, NSUInteger* start, NSUInteger* end,
                                                NSUInteger* contentsEnd, NSRange range) {
    NSString* text = textOf(storage, "getParagraphStart:end:contentsEnd:forRange:");
    getParagraphStart_end_contentsEnd_forRange(text, start, end, contentsEnd, range);
}

NSRange paragraphRangeForRange(NSTextStorage* storage, NSRange range) {
    return paragraphRangeForRange(textOf(storage, "paragraphRangeForRange:"), range);
}

NSRange paragraphContentRangeForRange(NSTextStorage* storage, NSRange range) {
    return paragraphContentRangeForRange(textOf(storage, "paragraphContentRangeForRange:"), range);
}

namespace {

// The styles of hosts have the message; those of the platform have not.
bool isKeepWithNext(id style) {
    return style && style->respondsToSelector("isKeepWithNext"_sel) &&
           send<bool>(style, "isKeepWithNext"_sel);
}

}  // namespace

NSRange longestIsKeepWithNextParagraphRangeBeforeIndex(NSTextStorage* storage, NSUInteger index) {
    static NSCharacterSet* const formFeed = NSCharacterSet::characterSetWithRange({u'\f', 1})->copy().leak();
    constexpr const char* kOperation = "longestIsKeepWithNextParagraphRangeBeforeIndex:";
    NSString* text = textOf(storage, kOperation);
    requirePlace(index, text->length(), kOperation);
    NSUInteger start = index;
    while (start > 0) {
        NSRange run;
        id style = storage->attribute_atIndex_effectiveRange(NSParagraphStyleAttributeName, start - 1, &run);
        if (!isKeepWithNext(style)) break;
        NSRange found = text->rangeOfCharacterFromSet_options_range(
            formFeed, NSLiteralSearch | NSBackwardsSearch, {run.location, start - run.location});
        start = found.location == NSNotFound ? run.location : NSMaxRange(found);
        if (found.location != NSNotFound) break;
    }
    return {start, index - start};
}

// MARK: Attributes at a place

namespace {

NSDictionary* typingAttributes(NSTextStorage* storage, NSUInteger index, const char* operation) {
    const NSUInteger length = textOf(storage, operation)->length();
    if (length == 0) return nullptr;
    requirePlace(index, length, operation);
    return storage->attributesAtIndex_effectiveRange(index > 0 ? index - 1 : 0, nullptr);
}

NSDictionary* attributesAtIndex(NSTextStorage* storage, NSUInteger index, const char* operation) {
    requireIndex(index, textOf(storage, operation)->length(), operation);
    return storage->attributesAtIndex_effectiveRange(index, nullptr);
}

NSDictionary* attributesFor(NSTextStorage* storage, NSRange range, const char* operation) {
    if (range.length == 0) return typingAttributes(storage, range.location, operation);
    return attributesAtIndex(storage, range.location, operation);
}

}  // namespace

NSDictionary* typingAttributesAtIndex(NSTextStorage* storage, NSUInteger index) {
    return typingAttributes(storage, index, "typingAttributesAtIndex:");
}

NSDictionary* typingAttributesForDeletedRange(NSTextStorage* storage, NSRange range) {
    return attributesAtIndex(storage, range.location, "typingAttributesForDeletedRange:");
}

NSDictionary* attributesForRange(NSTextStorage* storage, NSRange range) {
    return attributesFor(storage, range, "attributesForRange:");
}

NSWritingDirection effectiveWritingDirectionForRange(NSTextStorage* storage, NSRange range) {
    return PBEffectiveWritingDirectionForAttributes(
        attributesFor(storage, range, "effectiveWritingDirectionForRange:"));
}

id languageAttributeForRange(NSTextStorage* storage, NSRange range) {
    return PBEffectiveLanguageForAttributes(attributesFor(storage, range, "languageAttributeForRange:"));
}

NSDictionary* PBPacifyTypingAttributes(NSDictionary* attributes) {
    NSString* const untyped[] = {PBListBulletAttributesAttributeName,
                                 NSAttachmentAttributeName,
                                 PBFloatingContentAttributeName,
                                 PBStyleNoteReferenceAttributeName,
                                 NSLinkAttributeName,
                                 PBBreakTypeAttributeName,
                                 PBToolTipAttributeName};
    NSMutableDictionary* rest = nullptr;
    for (NSString* name : untyped) {
        if (!attributes || !attributes->objectForKey(name)) continue;
        if (!rest) rest = attributes->mutableCopy().autorelease();
        rest->removeObjectForKey(name);
    }
    return rest ? rest : attributes;
}

// MARK: Stretches of computed values

void* valueForCalculator_atIndex_longestEffectiveRange_withComparator_inRange(
    NSTextStorage* storage, PBAttrCalcFunc calculator, NSUInteger index, NSRange* longestRange,
    PBAttrValueCompFunc comparator, NSRange limit) {
    constexpr const char* kOperation =
        "valueForCalculator:atIndex:longestEffectiveRange:withComparator:inRange:";
    requireIndex(index, textOf(storage, kOperation)->length(), kOperation);
    requireArgument(reinterpret_cast<const void*>(calculator), kOperation, "the calculator");
    requireArgument(reinterpret_cast<const void*>(comparator), kOperation, "the comparator");
    NSRange stretch;
    void* value = calculator(storage, index, &stretch);
    NSUInteger start = stretch.location, end = NSMaxRange(stretch);
    const NSUInteger last = std::min(NSMaxRange(limit), storage->length());
    auto isEqualAt = [&](NSUInteger place) {
        return comparator(storage, value, calculator(storage, place, &stretch));
    };
    while (start > limit.location && isEqualAt(start - 1)) start = stretch.location;
    while (end < last && isEqualAt(end)) end = NSMaxRange(stretch);
    NSRange longest = NSIntersectionRange(limit, {start, end - start});
    if (longestRange) *longestRange = longest.length > 0 ? longest : NSRange{index, 0};
    return value;
}

// MARK: Sorting

NSString* pelvorContentSortKey(NSTextStorage* storage) { return textOf(storage, "pelvorContentSortKey"); }

bool _PBIsNumericString(NSString* string) {
    requireArgument(string, "_PBIsNumericString", "the string");
    static NSCharacterSet* const others = [] {
        auto numeric = NSCharacterSet::whitespaceAndNewlineCharacterSet()->mutableCopy();
        numeric->formUnionWithCharacterSet(NSCharacterSet::decimalDigitCharacterSet());
        numeric->addCharactersInString(u".-$"_ns);
        return numeric->invertedSet()->copy().leak();
    }();
    return string->rangeOfCharacterFromSet(others).location == NSNotFound &&
           string->rangeOfCharacterFromSet(NSCharacterSet::decimalDigitCharacterSet()).location != NSNotFound;
}

namespace {

int compareNumbers(double first, double second) { return first > second ? 1 : first < second ? -1 : 0; }

int compareContents(NSString* first, NSString* second) {
    bool isFirstNumber = _PBIsNumericString(first), isSecondNumber = _PBIsNumericString(second);
    if (isFirstNumber && isSecondNumber) return compareNumbers(first->doubleValue(), second->doubleValue());
    if (isFirstNumber != isSecondNumber) return isFirstNumber ? -1 : 1;
    return first->caseInsensitiveCompare(second);
}

}  // namespace

int _PBCompareTextStorageContent(id first, id second, void* isAscending) {
    requireArgument(isAscending, "_PBCompareTextStorageContent", "the order");
    auto keyOf = [](id storage) { return send<NSString*>(storage, "pelvorContentSortKey"_sel); };
    int order = compareContents(keyOf(first), keyOf(second));
    return *static_cast<bool*>(isAscending) ? order : -order;
}

void PBSortTextStorages(NSMutableArray* textStorages, bool isAscending) {
    if (textStorages) textStorages->sortUsingFunction_context(&_PBCompareTextStorageContent, &isAscending);
}

}  // namespace pelvor
