// SPDX-License-Identifier: Apache-2.0
#include "Foundation/StandardFolders.h"

#include <sys/stat.h>

#include <cstdlib>
#include <sstream>

#include "Foundation/DesktopTrash.h"
#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/Files/UserFolders.h"

namespace pelvor {
namespace {

bool isFolder(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The value of a line XDG_DESKTOP_DIR="$HOME/Desktop" in the user's list of folders; only $HOME/ and absolute
// paths are allowed there.
std::string listedFolder(const std::string& key) {
    GrowingBytes bytes;
    if (!readFile(userFolder("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs", bytes,
                  FileReading::regularOnly))
        return {};
    std::istringstream list{std::string(bytes.view())};
    const std::string start = key + "=\"";
    for (std::string line; std::getline(list, line);) {
        if (!line.starts_with(start) || !line.ends_with('"') || line.size() <= start.size()) continue;
        const std::string value = line.substr(start.size(), line.size() - start.size() - 1);
        if (value.starts_with("$HOME/")) return homeFolderOfUser("") + value.substr(5);
        if (value.starts_with('/')) return value;
    }
    return {};
}

std::string listedFolder(const std::string& key, const char* inHome) {
    const std::string listed = listedFolder(key);
    return listed.empty() ? homeFolderOfUser("") + "/" + inHome : listed;
}

std::string temporaryFolder() {
    const char* chosen = std::getenv("TMPDIR");
    const std::string folder = chosen && *chosen == '/' && isFolder(chosen) ? chosen : "/tmp";
    return isFolder(folder) ? folder : "";
}

std::string userFolderOfType(FolderType type) {
    switch (type) {
        case folderType("asup"):
            return userFolder("XDG_DATA_HOME", ".local/share");
        case folderType("cach"):
            return userFolder("XDG_CACHE_HOME", ".cache");
        case folderType("pref"):
            return userFolder("XDG_CONFIG_HOME", ".config");
        case folderType("desk"):
            return listedFolder("XDG_DESKTOP_DIR", "Desktop");
        case folderType("docs"):
            return listedFolder("XDG_DOCUMENTS_DIR", "Documents");
        case folderType("down"):
            return listedFolder("XDG_DOWNLOAD_DIR", "Downloads");
        case folderType("temp"):
            return temporaryFolder();
        case folderType("trsh"):
            return DesktopTrash::ofHome().files();
        default:
            return {};
    }
}

std::string sharedFolderOfType(FolderType type, bool isLocal) {
    if (type == folderType("asup")) return isLocal ? "/usr/local/share" : "/usr/share";
    if (type == folderType("pref")) return isLocal ? "/usr/local/etc" : "/etc";
    return {};
}

NSString* stringOf(const std::string& path) { return path.empty() ? nullptr : stringOfSystemPath(path); }

}  // namespace

NSString* NSHomeDirectory() { return stringOf(homeFolderOfUser("")); }

NSString* NSTemporaryDirectory() { return stringOf(temporaryFolder()); }

NSString* folderOfType(FolderType type, FolderDomain domain) {
    std::string path;
    if (domain == FolderDomainUser) path = userFolderOfType(type);
    if (domain == FolderDomainLocal || domain == FolderDomainSystem)
        path = sharedFolderOfType(type, domain == FolderDomainLocal);
    const bool isTrash = type == folderType("trsh");
    const bool isThere = !path.empty() && (isTrash ? DesktopTrash::ofHome().make() : makeFolders(path, 0700));
    return isThere ? stringOf(path) : nullptr;
}

}  // namespace pelvor
