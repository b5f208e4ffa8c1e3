// SPDX-License-Identifier: Apache-2.0
// The fast road for XML property lists in the form that programs write; for NSPropertyListSerialization.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Returns the list that the document holds if the document is in UTF-8 and in the plain form that programs
/// write: the usual header, tags without attributes, no comments, sections or instructions, and no mistake of
/// any kind. Returns null for every other document, which the parser has to read. `readXMLPropertyList`
/// returns an equal list for every document that is read here.
Retained<Object> readPlainXMLPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
