// SPDX-License-Identifier: Apache-2.0
// Reads binary property lists; for NSPropertyListSerialization.
#pragma once

#include <string_view>

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Whether the bytes begin as a binary list does, of whatever version.
bool hasBinaryPropertyListMagic(std::string_view bytes);

/// The list that the bytes hold. Unique identifiers are read as numbers. An array or dictionary that is
/// referred to repeatedly is one object in an immutable list; in a mutable one each reference gets its own.
/// Throws PropertyListFault, with the byte's offset, for anything that is no list or lies beyond the limits.
Retained<Object> readBinaryPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options);

}  // namespace pelvor
