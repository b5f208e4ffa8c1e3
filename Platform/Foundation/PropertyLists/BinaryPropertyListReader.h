// SPDX-License-Identifier: Apache-2.0
// Reads binary property lists; for NSPropertyListSerialization.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Returns whether the bytes begin as a binary list of any version does.
bool hasBinaryPropertyListMagic(std::string_view bytes);

/// Returns the list that the bytes hold. Unique identifiers are read as numbers. An array or dictionary to
/// which the list refers repeatedly is one object in an immutable list; in a mutable list each reference gets
/// an object of its own. Throws PropertyListFault, with the byte's offset, for bytes that are no list or lie
/// beyond the limits.
Retained<Object> readBinaryPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
