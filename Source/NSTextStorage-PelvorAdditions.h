// SPDX-License-Identifier: Apache-2.0
// What a word processor asks of text storages: paragraphs, the attributes of what is typed, stretches of
// computed values, and an order of texts.
//
//     NSDictionary* attributes = PBPacifyTypingAttributes(typingAttributesAtIndex(storage, caret));
//     auto typed = NSAttributedString::initWithString_attributes(text, attributes);
//     storage->insertAttributedString_atIndex(typed, caret);
//
// What is returned is borrowed. An index or a range outside the text raises NSRangeException.
#pragma once

#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace pelvor {

struct Category;
class NSMutableArray;

/// The attributes of a list's bullet. They are not typed on.
extern PELVOR_EXPORT NSString* const PBListBulletAttributesAttributeName;  // "PBListBulletAttributes"

// MARK: Paragraphs, as the string of the text storage has them

/// The pointer to what is not wanted may be null.
PELVOR_EXPORT void getParagraphStart_end_contentsEnd_forRange(NSTextStorage* storage, NSUInteger* start,
                                                              NSUInteger* end, NSUInteger* contentsEnd,
                                                              NSRange range);
/// The paragraphs that the range touches, with the break at their end.
PELVOR_EXPORT NSRange paragraphRangeForRange(NSTextStorage* storage, NSRange range);
/// The paragraphs that the range touches, without the break at their end.
PELVOR_EXPORT NSRange paragraphContentRangeForRange(NSTextStorage* storage, NSRange range);
/// The text directly before the index that stays with the paragraph at the index: from the start of the first
/// of the runs before the index whose paragraph styles all say `isKeepWithNext`, or from behind the last form
/// feed in them. Paragraph styles without that message do not keep with the next.
PELVOR_EXPORT NSRange longestIsKeepWithNextParagraphRangeBeforeIndex(NSTextStorage* storage,
                                                                     NSUInteger index);

// MARK: Attributes at a place. Of a range only the location is looked at, and whether the range is empty.

/// The attributes that text takes on that is typed at the index: those of the character before it, or of the
/// first character at the front. Null for an empty text, whatever the index.
PELVOR_EXPORT NSDictionary* typingAttributesAtIndex(NSTextStorage* storage, NSUInteger index);
/// The attributes of the first character that is deleted.
PELVOR_EXPORT NSDictionary* typingAttributesForDeletedRange(NSTextStorage* storage, NSRange range);
/// The attributes at the range's location; for an empty range those that are typed there.
PELVOR_EXPORT NSDictionary* attributesForRange(NSTextStorage* storage, NSRange range);
/// The writing direction and the language of `attributesForRange`.
PELVOR_EXPORT NSWritingDirection effectiveWritingDirectionForRange(NSTextStorage* storage, NSRange range);
PELVOR_EXPORT id languageAttributeForRange(NSTextStorage* storage, NSRange range);

/// The attributes without those that newly typed text must not have: bullets of lists, attachments, floating
/// contents, references to notes, links, breaks and tool tips. The same dictionary if there are none of
/// these; null for null.
PELVOR_EXPORT NSDictionary* PBPacifyTypingAttributes(NSDictionary* attributes);

// MARK: Stretches of computed values

/// Returns a value for the character at the index, an object or any other pointer, and writes the stretch
/// around the index over which the value holds to `range`.
using PBAttrCalcFunc = void* (*)(NSTextStorage* storage, NSUInteger index, NSRange* range);
/// Whether two values count as equal.
using PBAttrValueCompFunc = bool (*)(NSTextStorage* storage, void* first, void* second);

/// The value at the index. `longestRange`, which may be null, becomes the longest stretch around the index
/// inside the limit over which the values are equal to the first one.
PELVOR_EXPORT void* valueForCalculator_atIndex_longestEffectiveRange_withComparator_inRange(
    NSTextStorage* storage, PBAttrCalcFunc calculator, NSUInteger index, NSRange* longestRange,
    PBAttrValueCompFunc comparator, NSRange limit);

// MARK: Sorting

/// What text storages are sorted by: the plain text.
PELVOR_EXPORT NSString* pelvorContentSortKey(NSTextStorage* storage);
/// Sorts the text storages of the array by the strings that they return for `pelvorContentSortKey`. Numbers
/// come first, in the order of their values, then text, whatever its case. Descending is the other way round.
/// The value of a number is what `doubleValue` reads, which is 0 where a dollar sign stands first.
PELVOR_EXPORT void PBSortTextStorages(NSMutableArray* textStorages, bool isAscending);

// C++ only, and private

/// Whether the string consists of digits, white space, points, hyphens and dollar signs, with one digit at
/// least.
PELVOR_EXPORT bool _PBIsNumericString(NSString* string);
/// The comparison of `PBSortTextStorages`; `isAscending` points to a bool.
PELVOR_EXPORT int _PBCompareTextStorageContent(id first, id second, void* isAscending);

extern const Category NSTextStorage_DisplayAndModelAdditions_category;
extern const Category NSTextStorage_LongestEffectiveRangeAdditions_category;

}  // namespace pelvor
