// SPDX-License-Identifier: Apache-2.0
// Writes binary property lists; for NSPropertyListSerialization.
#pragma once

#include "Foundation/Values/GrowingBytes.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Appends the list to `bytes`, which must be empty; equal strings, numbers, dates and data of one kind are
/// written once. Throws PropertyListFault for what `walkPropertyList` refuses.
void writeBinaryPropertyList(Object* root, GrowingBytes& bytes);

}  // namespace pelvor
