// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/UserFolders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace pelvor {

std::string homeFolderOfUser(const std::string& name) {
    if (const char* home = std::getenv("HOME"); name.empty() && home && *home == '/') return home;
    std::vector<char> buffer(16384);
    passwd entry, *found = nullptr;
    if (name.empty())
        getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
    else
        getpwnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found);
    return found && found->pw_dir ? found->pw_dir : "";
}

std::string userFolder(const char* variable, const char* inHome) {
    if (const char* folder = std::getenv(variable); folder && *folder == '/') return folder;
    const std::string home = homeFolderOfUser("");
    return (home.starts_with('/') ? home : "") + "/" + inHome;
}

bool makeFolders(const std::string& path, mode_t rights) {
    for (std::size_t end = path.find('/', 1); end != path.npos; end = path.find('/', end + 1))
        ::mkdir(path.substr(0, end).c_str(), rights);
    if (::mkdir(path.c_str(), rights) == 0) return true;
    struct stat status;
    return errno == EEXIST && ::stat(path.c_str(), &status) == 0 &&
           (S_ISDIR(status.st_mode) || (errno = ENOTDIR, false));
}

}  // namespace pelvor
