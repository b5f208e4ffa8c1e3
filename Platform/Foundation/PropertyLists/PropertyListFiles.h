// SPDX-License-Identifier: Apache-2.0
// Property lists in files; for Foundation's own sources.
#pragma once

#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

/// The list in the file; none if the file cannot be read or holds no list.
Retained<Object> readPropertyListFile(NSString* path, NSPropertyListMutabilityOptions options);

/// Writes the list as XML; false if it is no property list or the file cannot be written.
bool writePropertyListFile(id list, NSString* path, bool isAtomic);

}  // namespace pelvor
