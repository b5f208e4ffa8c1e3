// SPDX-License-Identifier: Apache-2.0
// Where the user's files are by the rules of the desktop; for Foundation's own sources.
#pragma once

#include <sys/types.h>

#include <string>

namespace pelvor {

/// The home folder of the user of that name; an empty name stands for the user of the process, whose
/// environment may tell another folder. Empty if there is no such user.
std::string homeFolderOfUser(const std::string& name);

/// The folder that the environment variable names if it holds an absolute path, else this folder in the home
/// folder.
std::string userFolder(const char* variable, const char* inHome);

/// Makes a folder and those above it that are missing. Returns whether it is there afterwards.
bool makeFolders(const std::string& path, mode_t rights);

}  // namespace pelvor
