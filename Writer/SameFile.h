// SPDX-License-Identifier: Apache-2.0
// Whether two paths lead to one file.
#pragma once

#include <filesystem>

#include "Foundation/NSString.h"

namespace pelvor {

/// Whether there is a file to which both paths lead, by links or by other names.
inline bool isSameFile(NSString* path, NSString* other) {
    std::error_code error;
    return std::filesystem::equivalent(path->fileSystemRepresentation(), other->fileSystemRepresentation(),
                                       error);
}

}  // namespace pelvor
