// SPDX-License-Identifier: Apache-2.0
// Loading the code of bundles into the process; for Foundation's own sources.
#pragma once

#include <string>

namespace pelvor {

/// Why the file cannot be loaded as code of this process, as far as its headers tell: that it is not there,
/// not for this machine, or cut off, which the system's loader would find out by a crash. "" for a sound one.
std::string faultInCodeFile(const std::string& path);

/// What came of loading code.
struct CodeFile {
    void* handle = nullptr;            ///< for `dlsym`; none if it could not be loaded
    std::string fault;                 ///< why not
    bool isPartlyConstructed = false;  ///< a constructor threw: the code is there, but never to be used
};

/// Loads the file, with its constructors run and every symbol found. Its own symbols stay its own.
CodeFile loadCodeFile(const std::string& path);

/// The address of a function that the file itself exports, not one of its dependencies; none when it has
/// none.
void* exportedFunction(void* handle, const char* name);

/// Where the file that holds the address begins in memory; none if no file does.
const void* codeBase(const void* address);
/// That file's path as the system's loader knows it; "" if no file holds the address.
std::string codePath(const void* address);

}  // namespace pelvor
