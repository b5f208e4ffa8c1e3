// SPDX-License-Identifier: Apache-2.0
// Strings with the escapes of URLs.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

struct Category;

/// The text with "%XX" in place of each byte, in the encoding, of the characters that a URL may not contain,
/// and of "%", "#", "[" and "]": "a b" becomes "a%20b". Null if the text does not fit the encoding. A null
/// string raises NSInvalidArgumentException here and below.
PELVOR_EXPORT NSString* stringByAddingPercentEscapesUsingEncoding(NSString* string,
                                                                  NSStringEncoding encoding);
/// The text whose bytes in the encoding the escapes stand for. Null if a "%" stands without two hexadecimal
/// digits, if the string has characters that are not ASCII, or if the bytes are not valid in the encoding.
PELVOR_EXPORT NSString* stringByReplacingPercentEscapesUsingEncoding(NSString* string,
                                                                     NSStringEncoding encoding);

extern const Category NSString_URL_category;

}  // namespace pelvor
