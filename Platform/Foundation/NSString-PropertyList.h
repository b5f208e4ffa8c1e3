// SPDX-License-Identifier: Apache-2.0
// The property list that a string's text is.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// Returns the list that the text is, in XML or the old style; borrowed. Returns null if the text is no list.
/// Both operations raise NSInvalidArgumentException if the string is null.
PELVOR_EXPORT id propertyList(NSString* string);
/// Returns the dictionary that the text is, with braces or, as a string table, without; borrowed. Text
/// without entries is an empty table. Returns null if the text is anything else.
PELVOR_EXPORT NSDictionary* propertyListFromStringsFileFormat(NSString* string);

}  // namespace pelvor
