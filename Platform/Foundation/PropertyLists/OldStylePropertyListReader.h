// SPDX-License-Identifier: Apache-2.0
// Reads old-style property lists and string tables; for NSPropertyListSerialization and NSString.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Returns the text of bytes in UTF-8, or in UTF-16 with a byte-order mark, without the mark. Throws
/// PropertyListFault for bytes that are neither.
std::u16string decodeOldStyleText(std::string_view bytes);

/// Returns the list that the text holds: { } for a dictionary, ( ) for an array, < > for data, strings with
/// and without quotes, or the entries of a dictionary without braces, which is a string table. Text without
/// any of these is an empty table. Throws PropertyListFault with line and column for any other text.
Retained<Object> readOldStylePropertyList(std::u16string_view text, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
