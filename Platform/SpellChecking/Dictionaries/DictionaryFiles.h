// SPDX-License-Identifier: Apache-2.0
// The files of dictionaries: where they lie, and which of them can be used.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Foundation/NSStringEncoding.h"
#include "SpellChecking/Dictionaries/FileHead.h"

namespace pelvor {

struct DictionaryFiles {
    std::string name;  ///< "en_GB"
    std::string words, affixes;
    /// Names that stand for one dictionary, such as links, have equal identities.
    std::pair<FileIdentity, FileIdentity> identity;
    /// The name that the files themselves have, behind all links.
    std::string ownName;
};

/// The folders in which dictionaries lie. Where two have a dictionary of one name, the first folder counts.
/// NSSpellChecker.h lists the folders.
std::vector<std::string> dictionaryFolders();

/// Returns the dictionaries in the folders in the order of their names, the first one of each name. Calls
/// `complain` for every file that ought to be a dictionary and cannot be used, with its path and the reason.
std::vector<DictionaryFiles> dictionariesIn(
    const std::vector<std::string>& folders,
    const std::function<void(const std::string& path, const std::string& reason)>& complain);

// What the files begin with

/// The name of the encoding in a file of affixes, "UTF-8"; "ISO8859-1" for a file without one.
std::string encodingNameInAffixes(std::string_view head);
/// The encoding of the name in a dictionary; 0 if it is unknown.
NSStringEncoding encodingOfDictionary(std::string_view name);
/// Whether the first line is the count of the words in a file of that size. Hunspell believes any count and
/// takes memory for the words.
bool beginsWithWordCount(std::string_view head, std::uint64_t size);

}  // namespace pelvor
