// SPDX-License-Identifier: Apache-2.0
// Writes XML property lists; for NSPropertyListSerialization.
#pragma once

#include "Foundation/Values/GrowingBytes.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Appends the list as an XML document in UTF-8. Throws PropertyListFault for what `walkPropertyList` refuses
/// and for strings and dates that XML lists cannot hold; `bytes` then hold a part of the document.
void writeXMLPropertyList(Object* root, GrowingBytes& bytes);

}  // namespace pelvor
