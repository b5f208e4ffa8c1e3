// SPDX-License-Identifier: Apache-2.0
// DictionaryShelf: all dictionaries of the machine, by their names.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "SpellChecking/Dictionaries/Dictionary.h"

namespace pelvor {

/// The dictionaries that lie in the folders, each under all its names. One thread; the dictionaries
/// themselves may go to others.
class DictionaryShelf {
  public:
    /// The names, in alphabetical order. Looks through the folders again if one of them has changed.
    const std::vector<DictionaryFiles>& all();
    bool isFilled() const { return !_folders.empty(); }
    /// Returns the name of the dictionary for a name of a language, "en-GB" or "de"; empty if the language
    /// has no dictionary. Goes by the folders as they were when `all` was last called.
    std::string bestName(std::string_view language);
    /// Returns the dictionary of exactly that name, or null.
    std::shared_ptr<Dictionary> dictionary(const std::string& name);

  private:
    const DictionaryFiles* find(std::string_view name) const;
    std::vector<std::int64_t> stamps() const;

    std::vector<std::string> _folders;
    std::vector<std::int64_t> _stamps;
    std::vector<DictionaryFiles> _all;
    std::set<std::string> _complaints;
    std::map<std::pair<FileIdentity, FileIdentity>, std::shared_ptr<Dictionary>> _open;
};

}  // namespace pelvor
