// SPDX-License-Identifier: Apache-2.0
// Data as Base64 and hexadecimal text and back, and finding bytes in data.
//
//     NSString* text = base64String(data);
//     NSData* same = NSData_PelvorAdditions::dataWithBase64String(text);
//     NSRange place = rangeOfData(data, pattern);  // {NSNotFound, 0} if the pattern is not there
//
// Objects that are not `Retained` are borrowed. A null string raises NSInvalidArgumentException, text whose
// length does not fit NSUInteger raises NSMallocException.
#pragma once

#include "Foundation/NSData.h"
#include "Foundation/NSString.h"

namespace pelvor {

struct Category;

/// The results are mutable if `cls` is a class of mutable data.
struct PELVOR_EXPORT NSData_PelvorAdditions {
    /// The bytes that the Base64 text stands for. Characters outside the alphabet are skipped, and so is
    /// everything behind a group with padding. Empty data for text that is not ASCII. Raises "Base64Error"
    /// for text that ends inside a group of four.
    static Retained<NSData> initWithBase64String(NSString* string, Class* cls = NSData::classObject());
    static NSData* dataWithBase64String(NSString* string, Class* cls = NSData::classObject());
    /// The bytes that hexadecimal digits of either case stand for; white space and "0x" may come before them.
    /// If the number of digits is odd, the first digit is a byte of its own. Only the low eight bits of each
    /// unit count. The result is null if the text contains anything else, such as white space at the end.
    static Retained<NSData> initWithHexString(NSString* string, Class* cls = NSData::classObject());
    static NSData* dataWithHexString(NSString* string, Class* cls = NSData::classObject());
};

/// The name of the exception for Base64 text that ends too early.
inline constexpr char Base64Error[] = "Base64Error";

/// Base64 text in ASCII. A line feed follows as soon as a line has `lineLength` characters or more, counted
/// in groups of four, and so also behind a last line that is full. With 0 there are no line feeds.
PELVOR_EXPORT NSData* base64DataWithLineLength(NSData* data, NSUInteger lineLength);
/// Base64 text without line feeds.
PELVOR_EXPORT NSString* base64String(NSData* data);

/// "0x" and two digits for each byte.
PELVOR_EXPORT NSString* lowercaseHexString(NSData* data);
/// Two digits for each byte.
PELVOR_EXPORT NSString* unadornedLowercaseHexString(NSData* data);
/// The prefix and two digits for each byte. Raises NSInvalidArgumentException for a null prefix with a
/// length.
PELVOR_EXPORT NSString* _lowercaseHexStringWithPrefix_length(NSData* data, const unichar* prefix,
                                                             NSUInteger prefixLength);

/// The range where the bytes first stand inside the given range; {NSNotFound, 0} if they stand nowhere or
/// their number is 0. Null data counts as empty. Raises NSRangeException for a range that is not inside the
/// data, and NSInvalidArgumentException for null bytes with a length.
PELVOR_EXPORT NSRange rangeOfBytes_length_range(NSData* data, const void* bytes, NSUInteger length,
                                                NSRange range);
PELVOR_EXPORT NSRange rangeOfBytes_length(NSData* data, const void* bytes, NSUInteger length);
PELVOR_EXPORT NSRange rangeOfData_range(NSData* data, NSData* pattern, NSRange range);
PELVOR_EXPORT NSRange rangeOfData(NSData* data, NSData* pattern);

extern const Category NSData_PelvorAdditions_category;

}  // namespace pelvor
