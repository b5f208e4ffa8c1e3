// SPDX-License-Identifier: Apache-2.0
// FontMemory: the fonts that fontconfig listed, kept from one start of a program to the next.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Text/Fonts/FontCatalogue.h"

namespace pelvor {

/// A typeface with all names of its family.
struct ListedFont {
    FontEntry entry;
    std::vector<std::string> families;
};

/// What is kept.
struct FontList {
    std::vector<ListedFont> fonts;
    /// Generic families, each with the place of the font that the configuration ranks first.
    std::vector<std::pair<std::string, std::size_t>> best;
};

/// A file that holds a list of fonts together with what the list depends on: variables of the environment,
/// and the times of files and folders. Reading fontconfig's settings takes longer than the rest of what a
/// program does with fonts until its first text is to be seen.
class PELVOR_EXPORT FontMemory {
  public:
    explicit FontMemory(std::string path) : _path(std::move(path)) {}
    /// The file among the user's caches, for all programs.
    static FontMemory ofUser();

    /// Nothing if there is no such file, or if anything that the list depends on is another now.
    std::optional<FontList> read() const;
    /// Writes the list, which depends on these files and folders, there or not. Where that cannot be done,
    /// nothing is kept.
    void write(const FontList& list, const std::vector<std::string>& dependencies) const;

  private:
    std::string _path;
};

}  // namespace pelvor
