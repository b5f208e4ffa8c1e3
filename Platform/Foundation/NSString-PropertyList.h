// SPDX-License-Identifier: Apache-2.0
// Reading a string as the text of a property list.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// Reads the string as a property list in XML or in the old style. The list is borrowed; it is null if the
/// text is no property list. Both operations raise NSInvalidArgumentException if the string is null.
///
///     id list = propertyList(u"{ columns = 80; margins = (20, 25); }"_ns);  // a dictionary
PELVOR_EXPORT id propertyList(NSString* string);
/// Reads the string as a dictionary in the old style, or as a string table, which is such a dictionary
/// without the braces around it. The dictionary is borrowed; it is empty if the text has no entries, and null
/// if the text is anything else.
///
///     propertyListFromStringsFileFormat(u"\"_Open\" = \"Öffnen\";"_ns);  // one entry
PELVOR_EXPORT NSDictionary* propertyListFromStringsFileFormat(NSString* string);

}  // namespace pelvor
