// SPDX-License-Identifier: Apache-2.0
// Puts text into named styles, and takes it out of them.
//
//     const StyleSheet& sheet = *styled.sheet;
//     setParagraphStyle(text, paragraphRangeForRange(text->string(), selection), sheet, u"heading 1"_ns);
//     setCharacterStyle(text, selection, sheet, u"emphasis"_ns);
//
// What most of a paragraph has counts as the paragraph's formats; what differs, such as bold words, stays
// when the paragraph gets another style. A name that is not in the sheet raises NSInvalidArgumentException.
#pragma once

#include "Text/TextAttributes.h"
#include "Writer/Pages/StyleSheet.h"

namespace pelvor {

/// Null if the attributes have no font.
inline NSFont* fontOf(NSDictionary* attributes) {
    return cast<NSFont>(attributes->objectForKey(NSFontAttributeName));
}
/// The name of the style under that key; null if there is none.
inline NSString* nameIn(NSDictionary* attributes, NSString* key) {
    return cast<NSString>(attributes->objectForKey(key));
}

/// The attributes of the longest run of the range, of those runs that are in no character style if there are
/// any. Empty for an empty range. Borrowed.
PELVOR_EXPORT NSDictionary* usualAttributes(NSAttributedString* text, NSRange range);

/// The attributes `old` of text in a paragraph most of which has `usual`, when the paragraph is put into the
/// style.
PELVOR_EXPORT Retained<NSMutableDictionary> attributesInStyle(const NamedStyle& style, NSDictionary* old,
                                                              NSDictionary* usual);
/// Adds what the character style sets.
PELVOR_EXPORT void addStyle(const NamedStyle& style, NSMutableDictionary* attributes);

// The same for styles of a sheet by their names, which the attributes then have. What a style of the sheet
// set before goes.

PELVOR_EXPORT Retained<NSMutableDictionary> attributesInParagraphStyle(const StyleSheet& sheet,
                                                                       NSString* name, NSDictionary* old,
                                                                       NSDictionary* usual);
/// Null as name stands for no character style.
PELVOR_EXPORT Retained<NSMutableDictionary> attributesInCharacterStyle(const StyleSheet& sheet,
                                                                       NSString* name, NSDictionary* old,
                                                                       NSDictionary* usual);
/// Those of the paragraph style alone, with what is no format: languages, links, attachments and the like.
/// The old paragraph style object stays unless the whole paragraph is cleared.
PELVOR_EXPORT Retained<NSMutableDictionary> clearedAttributes(const StyleSheet& sheet, NSDictionary* old,
                                                              bool isWholeParagraph);

// Whole texts and parts of them

/// The range consists of whole paragraphs.
PELVOR_EXPORT void setParagraphStyle(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet,
                                     NSString* name);
PELVOR_EXPORT void setCharacterStyle(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet,
                                     NSString* name);
PELVOR_EXPORT void clearFormats(NSMutableAttributedString* text, NSRange range, const StyleSheet& sheet);

}  // namespace pelvor
