// SPDX-License-Identifier: Apache-2.0
// What a word processor asks of strings: words, paragraphs and characters around a place, strings derived
// from others, numbers at an index, code points.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSCharacterSet;
class NSSet;
struct Category;

struct PELVOR_EXPORT NSString_PelvorAdditions {
    /// One unit, or two for a code point above 0xFFFF; those above 0x10FFFF are folded into some pair.
    static NSString* stringWithCodepoint(std::uint32_t codepoint);
    static NSString* stringWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count);
    /// None if there is no room, or the units are more than NSUInteger can count. Mutable if `cls` is. Raises
    /// NSInvalidArgumentException for a count without code points.
    static Retained<NSString> initWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count,
                                                       Class* cls = NSString::classObject());
    /// None if the bytes are not valid in the encoding. Mutable if `cls` is. Raises
    /// NSInvalidArgumentException for no data.
    static NSString* stringWithData_encoding(NSData* data, NSStringEncoding encoding,
                                             Class* cls = NSString::classObject());
    /// One unit. Mutable if `cls` is.
    static NSString* stringWithCharacter(unichar character, Class* cls = NSString::classObject());
};

// Everywhere: positions and lengths count units; a range outside the string raises NSRangeException; strings
// answered are borrowed.

// MARK: Ranges

/// The word or the quantity that holds the range: what the unit at its location belongs to, and on from its
/// last unit. A word is letters, with apostrophes between letters; a quantity is digits with commas and
/// points between them and money signs before: "1,000.50", "$.99". Empty where there is neither. At the end
/// of the string it is the word before. With `includePreviousWord` it begins with the word before the one
/// separator in front of it.
PELVOR_EXPORT NSRange wordRangeForRange_includePreviousWord(NSString* string, NSRange range,
                                                            bool includePreviousWord);
/// From the first to the last letter, mark or number in the range; {NSNotFound, 0} for none.
PELVOR_EXPORT NSRange rangeOfTrimmedWordForRange(NSString* string, NSRange range);
/// The first member at or after the location; with NSBackwardsSearch the last one at or before it, as the
/// index of its last unit. NSNotFound for none.
PELVOR_EXPORT NSUInteger locationOfCharacterFromSet_options_location(NSString* string, NSCharacterSet* set,
                                                                     NSStringCompareOptions options,
                                                                     NSUInteger location);
/// From the first to the last character of the range that is no white space; for none, empty at its location.
PELVOR_EXPORT NSRange nonwhitespaceRangeForRange(NSString* string, NSRange range);

/// The paragraphs that the range touches, with the break at their end and without it.
PELVOR_EXPORT NSRange paragraphRangeForRange(NSString* string, NSRange range);
PELVOR_EXPORT NSRange paragraphContentRangeForRange(NSString* string, NSRange range);
/// Where they start, where the next one starts, and where the break at their end is, NSNotFound for none;
/// what is not wanted may be no pointer. CR LF is one break at its front, but a caret between the two stands
/// at the start of a paragraph.
PELVOR_EXPORT void getParagraphStart_end_contentsEnd_forRange(NSString* string, NSUInteger* start,
                                                              NSUInteger* end, NSUInteger* contentsEnd,
                                                              NSRange range);

/// The range with the whole of the composed characters at its ends; an empty one as it is.
PELVOR_EXPORT NSRange rangeOfComposedCharactersForRange(NSString* string, NSRange range);
/// The unit at the index, or the pair that it is half of; at or past the end, empty at the end. A lone half
/// counts the unit that stands where its other half would.
PELVOR_EXPORT NSRange rangeOfCharacterAtIndex(NSString* string, NSUInteger index);

// C++ only
/// The composed character at the index and those that overlap it; at or past the end, empty at the end.
PELVOR_EXPORT NSRange PBRangeOfComposedCharacterSequenceAtIndex(NSString* string, NSUInteger index);

/// True for none and for an empty string, too.
PELVOR_EXPORT bool containsString(NSString* string, NSString* other);

// MARK: Derived strings. The receiver itself may be the answer where nothing changes.

/// With the case of the pattern: all upper-case like "HELLO", capitalised like "Hello", or as it is.
PELVOR_EXPORT NSString* stringByMatchingCase(NSString* string, NSString* pattern);
/// Upper-case letters as lower-case ones and the other way round, unit by unit and as the process's locale
/// has them; of what a letter turns into, only the low byte is taken.
PELVOR_EXPORT NSString* toggledcaseString(NSString* string);
/// At most `length` units: cut at the last white space in them, and trimmed of spaces and tabs.
PELVOR_EXPORT NSString* stringByPrettyTruncationToLength(NSString* string, NSUInteger length);
/// With line feeds put in where a line would reach `length` units: before the white space in front of a word
/// of less than `length` - 1 units, else where the line reaches the length. The unit after the line feed is
/// not counted. Pairs stay whole.
PELVOR_EXPORT NSString* stringByHardWrappingToLineLength(NSString* string, NSUInteger length);
PELVOR_EXPORT NSString* stringByRemovingSurroundingWhitespace(NSString* string);
/// Finds the target as `rangeOfString` does.
PELVOR_EXPORT NSString* stringByReplacingAllOccurrencesOfString_withString(NSString* string, NSString* target,
                                                                           NSString* replacement);
PELVOR_EXPORT NSString* stringByReplacingAllOccurrencesOfCharactersInSet_withString(NSString* string,
                                                                                    NSCharacterSet* set,
                                                                                    NSString* replacement);
/// What the text becomes in the encoding and back: characters that it lacks are replaced by something like
/// them. None for an unknown encoding.
PELVOR_EXPORT NSString* stringByLossyConversionToEncoding(NSString* string, NSStringEncoding encoding);
/// The different pieces between separators; the empty piece after a separator at the end is left out. The
/// receiver alone for an empty separator or none.
PELVOR_EXPORT NSSet* setWithComponentsSeparatedByString(NSString* string, NSString* separator);
/// The units in a buffer of its own that lives as long as the current autorelease pool, without a zero at its
/// end; none for an empty string.
PELVOR_EXPORT unichar* characterBuffer(NSString* string);

// MARK: Numbers at an index, as NSScanner reads them; `effectiveRange`, if given, is what was read

/// The nearest number for one that is too large; 0 for none.
PELVOR_EXPORT std::int32_t intValueAtIndex_effectiveRange(NSString* string, NSUInteger index,
                                                          NSRange* effectiveRange);
/// The same for hexadecimal digits, with or without "0x"; 63 for none.
PELVOR_EXPORT std::int32_t hexIntValueAtIndex_effectiveRange(NSString* string, NSUInteger index,
                                                             NSRange* effectiveRange);
PELVOR_EXPORT std::int32_t hexIntValue(NSString* string);

// MARK: Code points

/// How many code points the range of units holds; they are written if there is a buffer. A lone half is one
/// of its own; a first half takes whatever unit follows it in the range.
PELVOR_EXPORT NSUInteger getCodepoints_range(NSString* string, std::uint32_t* codepoints, NSRange range);
PELVOR_EXPORT NSUInteger countCodepointsInRange(NSString* string, NSRange range);

extern const Category NSString_PelvorAdditions_category;

}  // namespace pelvor
