// SPDX-License-Identifier: Apache-2.0
// PropertyListFault: why a property list cannot be read or written; for the readers and writers themselves.
#pragma once

#include <cstddef>
#include <string>

namespace pelvor {

/// Thrown inside the readers and writers, and turned into an NSPropertyListError where they are called. Lines
/// and columns count from 1; 0 means that the format has no lines. Offsets count bytes, or units of a string.
struct PropertyListFault {
    std::string reason;
    std::size_t line = 0;
    std::size_t column = 0;
    std::size_t offset = 0;
    std::string keyPath = {};  ///< the place of an object that cannot be written, "styles.2.name"
    int fileError = 0;         ///< why the file could not be read, as a number of `errno`; 0 if it was read
};

}  // namespace pelvor
