// SPDX-License-Identifier: Apache-2.0
// Additions to the workspace: applications by their creator codes.
#pragma once

#include "Foundation/NSWorkspace.h"

namespace pelvor {

struct Category;

/// Returns the path of the application that opens the files of a creator, a code of four characters such as
/// 0x50575254 for PWRT. This system keeps no creator codes, so that there is
/// no such application: the result is always null.
PELVOR_EXPORT NSString* fullPathForApplicationWithCreatorCode(NSWorkspace* workspace, std::uint32_t creator);

extern const Category NSWorkspace_PelvorAdditions_category;

}  // namespace pelvor
