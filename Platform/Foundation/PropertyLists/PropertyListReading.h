// SPDX-License-Identifier: Apache-2.0
// Reading property lists of any format; for Foundation's own sources.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Returns the format as which the bytes begin. Bytes that are no list have a format too; its reader refuses
/// them.
NSPropertyListFormat propertyListFormatOf(std::string_view bytes);

/// Returns the list that the bytes hold. Throws PropertyListFault for bytes that are no list.
Retained<Object> readPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
