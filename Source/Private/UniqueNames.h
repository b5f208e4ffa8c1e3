// SPDX-License-Identifier: Apache-2.0
// Names that nothing in a folder has; for the additions to the file manager.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>

namespace pelvor {

class NSString;

/// The names in a folder, as the system's bytes. The first questions ask the system; whoever has more is
/// answered from a list of the folder, and the system is asked about a name that the list lacks.
class TakenNames {
  public:
    explicit TakenNames(std::string folder) : _folder(std::move(folder)) {}

    bool contains(const std::string& name);

  private:
    bool isThere(const std::string& name) const;
    bool isListed(const std::string& name);

    std::string _folder;
    int _questions = 0;
    std::unordered_set<std::string> _names;
};

/// Returns the name if it is free, else the first free one with the suffix, a format with one conversion of
/// an integer, between base and extension; no value if the numbers up to 99,997 are taken.
std::optional<std::string> uniqueName(const std::string& base, const std::string& extension, NSString* suffix,
                                      const std::function<bool(const std::string&)>& isTaken);

}  // namespace pelvor
