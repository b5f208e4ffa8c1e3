// SPDX-License-Identifier: Apache-2.0
// Names in folders, and removing files and folders; for Foundation's own sources.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/Files/FileTrees.h"

namespace pelvor {

/// Reads the names in a folder, in the order of their bytes, without "." and "..". Returns false with the
/// reason in `errno` on failure.
bool readNames(int folder, std::vector<std::string>& names);

/// Hands over the same names one by one, in the order in which the system has them.
bool visitNames(int folder, const std::function<void(std::string_view)>& visit);

/// Removes a file, a symbolic link, or a folder with all that is in it.
bool removeTree(const std::string& path, TreeWatcher& watcher);

/// Removes what this process made, also where it may not write any more.
bool removeOwnEntry(int folder, const char* name);

}  // namespace pelvor
