// SPDX-License-Identifier: Apache-2.0
// Property lists in files; for Foundation's own sources.
#pragma once

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// Returns the list in the file; `format`, unless null, receives its format. An empty file whose name ends in
/// ".strings" is a table without entries. Throws PropertyListFault if the path is null, the file cannot be
/// read, or it holds no list.
Retained<Object> readPropertyListFile(NSString* path, NSPropertyListMutabilityOptions options,
                                      NSPropertyListFormat* format);

/// Writes the list as XML. Returns false if the list is no property list or the file cannot be written.
bool writePropertyListFile(id list, NSString* path, bool isAtomic);

}  // namespace pelvor
