// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/FileRights.h"

#include <limits.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Foundation/Files/FileContents.h"

namespace pelvor {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

template <class Read>
std::vector<char> accessList(Read read) {
    const ssize_t size = read(nullptr, 0);
    std::vector<char> list(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (size <= 0) return list;
    list.resize(static_cast<std::size_t>(std::max<ssize_t>(read(list.data(), list.size()), 0)));
    return list;
}

}  // namespace

FileRights::FileRights(int file, const struct stat& status)
    : _status(status), _list(accessList([file](char* list, std::size_t size) {
          return ::fgetxattr(file, kAccessList, list, size);
      })) {}

FileRights::FileRights(const std::string& path, const struct stat& status)
    : _status(status), _list(accessList([&path](char* list, std::size_t size) {
          return ::lgetxattr(path.c_str(), kAccessList, list, size);
      })) {}

// False when the other file has an access list that this one cannot be given.
bool FileRights::giveListTo(int file) const {
    if (!_list.empty()) return ::fsetxattr(file, kAccessList, _list.data(), _list.size(), 0) == 0;
    ::fremovexattr(file, kAccessList);
    return true;
}

bool FileRights::giveTo(int file) const {
    mode_t rights = _status.st_mode & 07777;
    bool isGroupKept = true;
    if (::fchown(file, _status.st_uid, _status.st_gid) != 0) {
        rights &= ~static_cast<mode_t>(S_ISUID);
        isGroupKept = ::fchown(file, static_cast<uid_t>(-1), _status.st_gid) == 0;
    }
    if (!isGroupKept) rights &= ~static_cast<mode_t>(S_ISGID);
    if (!giveListTo(file) || !isGroupKept) rights &= 07707 | (rights & 07) << 3;
    return ::fchmod(file, rights) == 0 || errno == EPERM || errno == EOPNOTSUPP;
}

// Reading the mask is the only way to know it without changing it.
mode_t rightsOfNewFile() {
    GrowingBytes bytes;
    if (!readFile("/proc/self/status", bytes)) return 0600;
    std::string status(bytes.view());
    std::size_t place = status.find("\nUmask:");
    if (place == status.npos) return 0600;
    return 0666 & ~static_cast<mode_t>(std::strtoul(status.c_str() + place + 7, nullptr, 8));
}

}  // namespace pelvor
