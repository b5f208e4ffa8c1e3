// SPDX-License-Identifier: Apache-2.0
// Loading the code of bundles into the process; for Foundation's own sources.
#pragma once

#include <string>

namespace pelvor {

/// Returns why the file cannot be loaded as code of this process, as far as the file's headers tell: the file
/// is missing, is for another kind of machine, or is cut off, at which the system's loader would crash.
/// Returns "" for a sound file.
std::string faultInCodeFile(const std::string& path);

/// The result of loading code.
struct CodeFile {
    void* handle = nullptr;            ///< for `dlsym`; null if the file could not be loaded
    std::string fault;                 ///< why the file could not be loaded
    bool isPartlyConstructed = false;  ///< a constructor threw: the code is there, but never to be used
};

/// Loads the file, finds every symbol and runs the constructors. Other code does not see the file's symbols.
CodeFile loadCodeFile(const std::string& path);

/// Returns the address of a function that the file itself exports; null if only a dependency of the file, or
/// no file, exports the function.
void* exportedFunction(void* handle, const char* name);

/// Returns where the file that holds the address begins in memory; null if no file holds the address.
const void* codeBase(const void* address);
/// Returns the path of the file that holds the address, as the system's loader knows the path; "" if no file
/// does.
std::string codePath(const void* address);

}  // namespace pelvor
