// SPDX-License-Identifier: Apache-2.0
// Places that people keep files in.
#pragma once

#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

struct FolderPlace {
    Retained<NSString> title, path;
};

/// The user's home and documents, the root of all files, and media that are mounted where desktops mount
/// them. No medium is looked at.
std::vector<FolderPlace> folderPlaces();

}  // namespace pelvor
