// SPDX-License-Identifier: Apache-2.0
// Reads XML property lists; for NSPropertyListSerialization.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Where the encoding of the bytes is told.
enum class XMLEncoding { declared, utf8 };

/// Returns the list that the document holds. Throws PropertyListFault with line and column for any other
/// document, and for a document type with declarations in it.
Retained<Object> readXMLPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options,
                                     XMLEncoding encoding = XMLEncoding::declared);

}  // namespace pelvor
