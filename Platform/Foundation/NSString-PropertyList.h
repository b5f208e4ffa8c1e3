// SPDX-License-Identifier: Apache-2.0
// The property list that a string's text is.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// The list that the text is, in XML or the old style, or none; borrowed.
PELVOR_EXPORT id propertyList(NSString* string);
/// The dictionary that the text is, with braces or, as a string table, without; none if the text is anything
/// else. Text without entries is an empty table. Borrowed.
PELVOR_EXPORT NSDictionary* propertyListFromStringsFileFormat(NSString* string);

}  // namespace pelvor
