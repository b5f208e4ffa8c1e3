// SPDX-License-Identifier: Apache-2.0
// The string tables of Resources, which the build makes a source of.
#pragma once

#include <span>
#include <string_view>

namespace pelvor {

struct LibraryTable {
    std::string_view language;  ///< "de"
    std::string_view strings;   ///< an old-style property list
};

/// English first.
extern const std::span<const LibraryTable> libraryTables;

}  // namespace pelvor
