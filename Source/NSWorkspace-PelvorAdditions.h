// SPDX-License-Identifier: Apache-2.0
// Additions to the workspace: applications by their creator codes.
#pragma once

#include "Foundation/NSWorkspace.h"

namespace pelvor {

struct Category;

/// Returns null. On systems that keep creator codes (four characters, 0x50575254 for PWRT), the result would
/// be the path of the application that opens the files of that creator.
PELVOR_EXPORT NSString* fullPathForApplicationWithCreatorCode(NSWorkspace* workspace, std::uint32_t creator);

extern const Category NSWorkspace_PelvorAdditions_category;

}  // namespace pelvor
