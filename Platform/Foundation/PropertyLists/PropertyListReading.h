// SPDX-License-Identifier: Apache-2.0
// Reading property lists of any format; for Foundation's own sources.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// The format that the bytes begin as. Bytes that are no list have one too, in which they are then refused.
NSPropertyListFormat propertyListFormatOf(std::string_view bytes);

/// The list that the bytes hold. Throws PropertyListFault for bytes that are no list.
Retained<Object> readPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
