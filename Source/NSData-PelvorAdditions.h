// SPDX-License-Identifier: Apache-2.0
// Data as Base64 and hexadecimal text and back; finding bytes in data.
#pragma once

#include "Foundation/NSData.h"
#include "Foundation/NSString.h"

namespace pelvor {

struct Category;

// The results are mutable where `cls` is.
struct PELVOR_EXPORT NSData_PelvorAdditions {
    /// The bytes that the Base64 text stands for. Characters that are not in the alphabet are passed over,
    /// and so is everything after a group with padding. Empty data for text that is not ASCII. Raises
    /// "Base64Error" for text that ends inside a group of four.
    static Retained<NSData> initWithBase64String(NSString* string, Class* cls = NSData::classObject());
    static NSData* dataWithBase64String(NSString* string, Class* cls = NSData::classObject());
    /// The bytes of hexadecimal digits of either case, after white space and "0x"; of an odd number of digits
    /// the first is a byte of its own. Only the low eight bits of each digit's unit count. None if there is
    /// anything but digits, white space at the end too.
    static Retained<NSData> initWithHexString(NSString* string, Class* cls = NSData::classObject());
    static NSData* dataWithHexString(NSString* string, Class* cls = NSData::classObject());
};

inline constexpr char Base64Error[] = "Base64Error";

/// Base64 text in ASCII. Each line ends with a line feed once it has `lineLength` characters or more, counted
/// in groups of four, the last line too; with 0 there are no line feeds. Raises NSMallocException for text
/// whose length does not fit NSUInteger.
PELVOR_EXPORT NSData* base64DataWithLineLength(NSData* data, NSUInteger lineLength);
/// The same text without line feeds.
PELVOR_EXPORT NSString* base64String(NSData* data);

/// "0x" and two digits a byte. Raises NSMallocException for text whose length does not fit NSUInteger.
PELVOR_EXPORT NSString* lowercaseHexString(NSData* data);
PELVOR_EXPORT NSString* unadornedLowercaseHexString(NSData* data);
PELVOR_EXPORT NSString* _lowercaseHexStringWithPrefix_length(NSData* data, const unichar* prefix,
                                                             NSUInteger prefixLength);

/// Where the bytes first stand inside the range; {NSNotFound, 0} if nowhere or if they are none. Raises
/// NSRangeException for a range that is not inside the data.
PELVOR_EXPORT NSRange rangeOfBytes_length_range(NSData* data, const void* bytes, NSUInteger length,
                                                NSRange range);
PELVOR_EXPORT NSRange rangeOfBytes_length(NSData* data, const void* bytes, NSUInteger length);
PELVOR_EXPORT NSRange rangeOfData_range(NSData* data, NSData* pattern, NSRange range);
PELVOR_EXPORT NSRange rangeOfData(NSData* data, NSData* pattern);

extern const Category NSData_PelvorAdditions_category;

}  // namespace pelvor
