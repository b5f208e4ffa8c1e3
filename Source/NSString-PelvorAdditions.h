// SPDX-License-Identifier: Apache-2.0
// What a word processor asks of strings: words, paragraphs and characters around a place, derived strings,
// numbers at an index, and code points.
//
//     NSString* text = u"It costs $1,250.99 today."_ns;
//     NSRange price = wordRangeForRange_includePreviousWord(text, {11, 0}, false);  // {9, 9}, "$1,250.99"
//     NSString* lines = stringByHardWrappingToLineLength(text, 12);
//
// Positions and lengths count UTF-16 units. The strings and sets that are returned are borrowed. A range or
// an index outside the string raises NSRangeException, and a null argument NSInvalidArgumentException, where
// nothing else is said.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSCharacterSet;
class NSSet;
struct Category;

struct PELVOR_EXPORT NSString_PelvorAdditions {
    /// A string of one code point: one unit, or a surrogate pair for a code point above 0xFFFF. A value above
    /// 0x10FFFF becomes some pair.
    static NSString* stringWithCodepoint(std::uint32_t codepoint);
    static NSString* stringWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count);
    /// Null if memory runs out or there are more units than NSUInteger can count. Mutable if `cls` is a class
    /// of mutable strings.
    static Retained<NSString> initWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count,
                                                       Class* cls = NSString::classObject());
    /// Null if the bytes are not valid in the encoding. Mutable if `cls` is a class of mutable strings.
    static NSString* stringWithData_encoding(NSData* data, NSStringEncoding encoding,
                                             Class* cls = NSString::classObject());
    /// A string of one unit. Mutable if `cls` is a class of mutable strings.
    static NSString* stringWithCharacter(unichar character, Class* cls = NSString::classObject());
};

// MARK: Ranges

/// The words and quantities that the range touches: from the start of the word or quantity at the first unit
/// of the range to the end of the word or quantity at its last unit. A word consists of letters, and may have
/// an apostrophe between two letters. A quantity consists of digits, with commas and points between them and
/// money signs before them: "1,000.50", "$.99". The result is empty if there is neither at the range. A
/// location at the end of the string stands for the last unit. With `includePreviousWord`, the result begins
/// with the previous word if exactly one separator is between the two words.
PELVOR_EXPORT NSRange wordRangeForRange_includePreviousWord(NSString* string, NSRange range,
                                                            bool includePreviousWord);
/// The part of the range from the first letter, mark or number in it to the last; {NSNotFound, 0} if the
/// range contains none of these.
PELVOR_EXPORT NSRange rangeOfTrimmedWordForRange(NSString* string, NSRange range);
/// The location of the first member of the set at or after `location`; with NSBackwardsSearch, the location
/// of the last unit of the last member at or before `location`. NSNotFound if there is no such member. A
/// location beyond the end stands for the end.
PELVOR_EXPORT NSUInteger locationOfCharacterFromSet_options_location(NSString* string, NSCharacterSet* set,
                                                                     NSStringCompareOptions options,
                                                                     NSUInteger location);
/// The part of the range from the first character in it that is no white space to the last. If the range has
/// only white space, the result is empty, at the location of the range.
PELVOR_EXPORT NSRange nonwhitespaceRangeForRange(NSString* string, NSRange range);

/// The paragraphs that the range touches, with the break at their end.
PELVOR_EXPORT NSRange paragraphRangeForRange(NSString* string, NSRange range);
/// The paragraphs that the range touches, without the break at their end.
PELVOR_EXPORT NSRange paragraphContentRangeForRange(NSString* string, NSRange range);
/// For the paragraphs that the range touches, writes where the first one starts (`start`), where the
/// paragraph behind them starts (`end`), and where the break at their end stands (`contentsEnd`), which is
/// NSNotFound at the end of the text. Each of the pointers may be null. CR LF is one break, but a place
/// between the two units counts as the start of a paragraph.
PELVOR_EXPORT void getParagraphStart_end_contentsEnd_forRange(NSString* string, NSUInteger* start,
                                                              NSUInteger* end, NSUInteger* contentsEnd,
                                                              NSRange range);

/// The range, widened to whole composed characters at both ends; an empty range stays as it is.
PELVOR_EXPORT NSRange rangeOfComposedCharactersForRange(NSString* string, NSRange range);
/// The range of the unit at the index, or of the surrogate pair that the unit is half of. A surrogate that
/// stands alone takes the unit in the place of its other half along. For an index at or beyond the end of the
/// string, the range is empty, at the end.
PELVOR_EXPORT NSRange rangeOfCharacterAtIndex(NSString* string, NSUInteger index);

// C++ only
/// The range of the composed character at the index and of the composed characters that overlap it. For an
/// index at or beyond the end of the string, the range is empty, at the end.
PELVOR_EXPORT NSRange PBRangeOfComposedCharacterSequenceAtIndex(NSString* string, NSUInteger index);

/// Whether `rangeOfString` finds the other string. True for null and for an empty string, too.
PELVOR_EXPORT bool containsString(NSString* string, NSString* other);

// MARK: Derived strings. Where nothing changes, the result may be the receiver itself.

/// The string in the case of the pattern: in upper case for a pattern such as "HELLO", capitalised for
/// "Hello", and unchanged for "hello".
PELVOR_EXPORT NSString* stringByMatchingCase(NSString* string, NSString* pattern);
/// The string with upper-case letters in lower case and lower-case letters in upper case, unit by unit, by
/// the rules of the process's locale. Only the low byte of the letter that a letter turns into is taken, so
/// letters beyond U+00FF come out wrong.
PELVOR_EXPORT NSString* toggledcaseString(NSString* string);
/// The string's first `length` units at most, cut at the last white space in them and trimmed of spaces and
/// tabs.
PELVOR_EXPORT NSString* stringByPrettyTruncationToLength(NSString* string, NSUInteger length);
/// The string with a line feed inserted wherever a line would reach `length` units. If the word at that place
/// has fewer than `length` - 1 units, the line feed stands in front of the white space before the word;
/// otherwise it stands inside the word. The unit behind an inserted line feed is not counted. Surrogate pairs
/// are not divided.
PELVOR_EXPORT NSString* stringByHardWrappingToLineLength(NSString* string, NSUInteger length);
/// The string without white space at its front and end.
PELVOR_EXPORT NSString* stringByRemovingSurroundingWhitespace(NSString* string);
/// The string with the replacement for each occurrence of the target, which is found as by `rangeOfString`.
PELVOR_EXPORT NSString* stringByReplacingAllOccurrencesOfString_withString(NSString* string, NSString* target,
                                                                           NSString* replacement);
/// The string with the replacement for each member of the set.
PELVOR_EXPORT NSString* stringByReplacingAllOccurrencesOfCharactersInSet_withString(NSString* string,
                                                                                    NSCharacterSet* set,
                                                                                    NSString* replacement);
/// The string after conversion to the encoding and back: characters that the encoding lacks are replaced by
/// similar ones. Null for an unknown encoding.
PELVOR_EXPORT NSString* stringByLossyConversionToEncoding(NSString* string, NSStringEncoding encoding);
/// The set of the pieces between separators. An empty piece behind a separator at the end is left out. For an
/// empty separator or null the set holds the string itself.
PELVOR_EXPORT NSSet* setWithComponentsSeparatedByString(NSString* string, NSString* separator);
/// A copy of the string's units, without a zero at the end, which lives as long as the current autorelease
/// pool. Null for an empty string.
PELVOR_EXPORT unichar* characterBuffer(NSString* string);

// MARK: Numbers at an index, as NSScanner reads them. `effectiveRange` becomes the range that was read, empty
// at the index if there is no number; it may be null.

/// Returns 0 if there is no number. A number beyond the bounds of the type becomes the nearest bound.
PELVOR_EXPORT std::int32_t intValueAtIndex_effectiveRange(NSString* string, NSUInteger index,
                                                          NSRange* effectiveRange);
/// Reads hexadecimal digits, with or without "0x" before them; 63 if there is no number.
PELVOR_EXPORT std::int32_t hexIntValueAtIndex_effectiveRange(NSString* string, NSUInteger index,
                                                             NSRange* effectiveRange);
/// The hexadecimal number at the start of the string; 63 if the string does not begin with one.
PELVOR_EXPORT std::int32_t hexIntValue(NSString* string);

// MARK: Code points

/// Writes the code points of a range of units and returns their number. The buffer, which may be null, has
/// room for one code point a unit. A first half of a pair takes whatever unit follows in the range as its
/// second half; a half that is left alone is a code point of its own.
PELVOR_EXPORT NSUInteger getCodepoints_range(NSString* string, std::uint32_t* codepoints, NSRange range);
/// How many code points `getCodepoints_range` writes.
PELVOR_EXPORT NSUInteger countCodepointsInRange(NSString* string, NSRange range);

extern const Category NSString_PelvorAdditions_category;

}  // namespace pelvor
