// SPDX-License-Identifier: Apache-2.0
// A system whose calls on files fail, or end the process, when a test wants it.
#pragma once

#include <sys/types.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "ChildProcess.h"

namespace pelvor {

/// What the system's calls do instead of their work.
struct Faults {
    bool refusesUnnamedFiles = false;
    bool refusesCopiesInside = false;  ///< copy_file_range and FICLONE
    bool refusesMoves = false;         ///< to another folder, as between file systems
    bool diesBeforeRenaming = false;
    bool failsToSync = false;
    bool failsToClose = false;
    mode_t rightsWhileWritten = 0;  ///< of the last file that was synchronised

    // The call of this number, counted from 1 since `count` was set to 0, fails. With reason 0 it ends the
    // process; with kShortWrite it does its work, of which a writer does a single byte.
    static constexpr int kShortWrite = -1;
    int number = 0;
    int reason = 0;
    int count = 0;
    const char* struck = nullptr;  ///< that call
};
extern Faults faults;

/// The names in a folder, in order.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

}  // namespace pelvor
