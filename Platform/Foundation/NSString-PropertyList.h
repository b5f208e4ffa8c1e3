// SPDX-License-Identifier: Apache-2.0
// Reading a string as the text of a property list.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// Reads the string as a property list in XML or in the old style. The list is borrowed and immutable; null
/// if the text is no property list. Raises NSInvalidArgumentException if the string is null.
///
///     id list = propertyList(u"{ columns = 80; margins = (20, 25); }"_ns);  // a dictionary
PELVOR_EXPORT id propertyList(NSString* string);
/// Reads the string as a dictionary in the old style, or as a string table: the entries of a dictionary
/// without the braces around them. The dictionary is borrowed and immutable. It is empty if the text has no
/// entries. Null if the text is neither a dictionary nor a string table. Raises NSInvalidArgumentException if
/// the string is null.
///
///     propertyListFromStringsFileFormat(u"\"_Open\" = \"Öffnen\";"_ns);  // one entry
PELVOR_EXPORT NSDictionary* propertyListFromStringsFileFormat(NSString* string);

}  // namespace pelvor
