// SPDX-License-Identifier: Apache-2.0
// The fast road for XML property lists in the form that programs write; for NSPropertyListSerialization.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// The list that the document holds if it is UTF-8 in the plain form that programs write: the usual header,
/// tags without attributes, no comments, sections or instructions, and no mistake of any kind. None for every
/// other document: it takes the parser to say what that is. What is answered here, `readXMLPropertyList`
/// would answer too.
Retained<Object> readPlainXMLPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
