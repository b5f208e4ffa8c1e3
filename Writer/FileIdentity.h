// SPDX-License-Identifier: Apache-2.0
// Tells one content of a file from another.
#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

/// A file by its number, size and time. All zeros: there is no file.
struct FileIdentity {
    std::uint64_t inode = 0, size = 0;
    std::int64_t seconds = 0, nanoseconds = 0;  ///< of the last change

    /// The file as it is now; zeros for null and for a file that cannot be asked.
    static FileIdentity ofFile(NSString* path) {
        AutoreleasePool pool;
        struct stat state;
        if (!path || stat(path->fileSystemRepresentation(), &state) != 0) return {};
        return {state.st_ino, static_cast<std::uint64_t>(state.st_size), state.st_mtim.tv_sec,
                state.st_mtim.tv_nsec};
    }
    bool isThere() const { return inode != 0; }
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

}  // namespace pelvor
