// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/TemporaryFile.h"

#include <sys/file.h>

#include <cstdio>

#include "Foundation/Files/FileRemoval.h"

namespace pelvor {
namespace {

constexpr int kMostNames = 1000;

bool isEntry(int opened, int folder, const char* name) {
    struct stat locked, named;
    return ::fstat(opened, &locked) == 0 && ::fstatat(folder, name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           locked.st_dev == named.st_dev && locked.st_ino == named.st_ino &&
           (S_ISREG(locked.st_mode) || S_ISDIR(locked.st_mode));
}

int lockWithoutWaiting(int opened) {
    return uninterrupted([&] { return ::flock(opened, LOCK_EX | LOCK_NB); });
}

}  // namespace

bool renameExclusively(int fromFolder, const char* from, int toFolder, const char* to) {
    if (::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // The file system cannot do it. What is no folder gets the new name by a link, which replaces nothing.
    struct stat status;
    if (::fstatat(fromFolder, from, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (!S_ISDIR(status.st_mode) && ::linkat(fromFolder, from, toFolder, to, 0) == 0)
        return ::unlinkat(fromFolder, from, 0) == 0;
    if (!S_ISDIR(status.st_mode) && errno == EEXIST) return false;
    if (::fstatat(toFolder, to, &status, AT_SYMLINK_NOFOLLOW) == 0) return failWith(EEXIST);
    return errno == ENOENT && ::renameat(fromFolder, from, toFolder, to) == 0;
}

// MARK: Names

bool TemporaryEntry::lock(bool hasName) {
    if (lockWithoutWaiting(_opened) != 0) return errno != EWOULDBLOCK;
    struct stat status;
    return ::fstat(_opened, &status) == 0 && (!hasName || status.st_nlink > 0);
}

// The next try removes what is left under the name, if that is not another process's by now.
bool TemporaryEntry::giveUp() {
    _opened.set(-1);
    return failWith(EEXIST);
}

bool TemporaryEntry::takeName(const std::function<bool(const char*)>& make) {
    for (int number = 0; number < kMostNames;) {
        char name[64];
        std::snprintf(name, sizeof name, ".pelvor-%016zx-%d", std::hash<std::string>()(_target), number);
        if (make(name)) {
            _name = name;
            return true;
        }
        if (errno != EEXIST) return false;
        if (!removeAbandoned(name)) ++number;
    }
    return failWith(EEXIST);
}

// The lock keeps the name with its file from the check to the removal. Some file systems lock only what is
// open for writing, which a folder never is.
bool TemporaryEntry::removeAbandoned(const char* name) {
    Descriptor entry = openedAt(_folder, name, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!entry && errno == EISDIR)
        entry.set(openedAt(_folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW).release());
    return entry && lockWithoutWaiting(entry) == 0 && isEntry(entry, _folder, name) &&
           removeOwnEntry(_folder, name);
}

bool TemporaryEntry::takeTarget() {
    if (!renameExclusively(_folder, _name.c_str(), _folder, _target.c_str())) return false;
    _name.clear();
    return true;
}

// MARK: Files

TemporaryFile::~TemporaryFile() {
    int reason = errno;
    if (!_name.empty()) ::unlinkat(_folder, _name.c_str(), 0);
    errno = reason;
}

bool TemporaryFile::open(mode_t rights) {
    _opened.set(openedAt(_folder, ".", O_TMPFILE | O_WRONLY, rights).release());
    _link = "/proc/self/fd/" + std::to_string(_opened);
    if (_opened && ::access(_link.c_str(), F_OK) == 0) return lock(false);
    return takeName([this](const char* name) {
        _opened.set(openedAt(_folder, name, O_WRONLY | O_CREAT | O_EXCL, 0600).release());
        return _opened && (lock(true) || giveUp());
    });
}

bool TemporaryFile::link(const char* name) {
    return ::linkat(AT_FDCWD, _link.c_str(), _folder, name, AT_SYMLINK_FOLLOW) == 0;
}

bool TemporaryFile::takeTarget() { return hasName() ? TemporaryEntry::takeTarget() : link(_target.c_str()); }

// A file that is new gets its only name here.
bool TemporaryFile::replaceTarget(bool isNew) {
    if (!hasName()) {
        if (isNew && link(_target.c_str())) return true;
        if (isNew && errno != EEXIST) return false;
        if (!takeName([this](const char* name) { return link(name); })) return false;
    }
    if (::renameat(_folder, _name.c_str(), _folder, _target.c_str()) != 0) return false;
    _name.clear();
    return true;
}

// MARK: Folders

TemporaryTree::~TemporaryTree() {
    int reason = errno;
    if (!_name.empty()) removeOwnEntry(_folder, _name.c_str());
    errno = reason;
}

bool TemporaryTree::open() {
    return takeName([this](const char* name) {
        if (::mkdirat(_folder, name, 0700) != 0) return false;
        _opened.set(openedAt(_folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW).release());
        if (_opened) return lock(true) || giveUp();
        int reason = errno;
        ::unlinkat(_folder, name, AT_REMOVEDIR);
        return failWith(reason);
    });
}

}  // namespace pelvor
