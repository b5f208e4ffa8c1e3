// SPDX-License-Identifier: Apache-2.0
// The folder of the library or program that some code is in.
#pragma once

#include <dlfcn.h>
#include <link.h>

#include <filesystem>

namespace pelvor {

/// The folder of the file that holds the code at the address; empty if there is none. The program itself is
/// the file that runs, not the name or link that it was called by.
inline std::filesystem::path folderOfCode(const void* address) {
    Dl_info info;
    void* map = nullptr;
    std::error_code error;
    if (!::dladdr1(address, &info, &map, RTLD_DL_LINKMAP)) return {};
    std::filesystem::path file = static_cast<const link_map*>(map)->l_name;
    if (file.empty()) file = std::filesystem::read_symlink("/proc/self/exe", error);
    return std::filesystem::absolute(file, error).parent_path();
}

}  // namespace pelvor
