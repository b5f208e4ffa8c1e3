// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/FileTrees.h"

#include <limits.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "Foundation/Files/FileRemoval.h"
#include "Foundation/Files/FileRights.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/Files/TemporaryFile.h"

namespace pelvor {
namespace {

// MARK: Contents

constexpr off_t kPiece = 1 << 20;

// Through memory, up to `end` or the end of the file.
bool copyThroughMemory(int from, int to, off_t place, off_t end) {
    const auto piece = std::make_unique_for_overwrite<char[]>(kPiece);
    while (place < end) {
        const auto wanted = static_cast<std::size_t>(std::min(end - place, kPiece));
        const ssize_t count = uninterrupted([&] { return ::pread(from, piece.get(), wanted, place); });
        if (count <= 0) return count == 0;
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = uninterrupted([&] {
                return ::pwrite(to, piece.get() + done, static_cast<std::size_t>(count - done), place);
            });
            if (written < 0) return false;
            done += written;
            place += written;
        }
    }
    return true;
}

// Inside the kernel, which copies nothing where files can share blocks. What the kernel cannot do, memory
// can.
bool copyPart(int from, int to, off_t place, off_t end) {
    while (place < end) {
        off_t source = place, target = place;
        const ssize_t count = uninterrupted([&] {
            return ::copy_file_range(from, &source, to, &target, static_cast<std::size_t>(end - place), 0);
        });
        if (count < 0 && (errno == ENOSPC || errno == EIO || errno == EDQUOT || errno == EFBIG)) return false;
        if (count <= 0) return copyThroughMemory(from, to, place, end);
        place += count;
    }
    return true;
}

}  // namespace

bool copyContent(int from, int to, long long size) {
    if (size == 0) return copyThroughMemory(from, to, 0, LLONG_MAX);  // it may have a content all the same
    if (::ioctl(to, FICLONE, from) == 0) return true;
    off_t place = 0, written = 0;
    while (place < size) {
        const off_t data = ::lseek(from, place, SEEK_DATA);
        if (data < 0 && errno == ENXIO) break;  // there are only holes up to the end
        off_t end = data < 0 ? -1 : ::lseek(from, data, SEEK_HOLE);
        const off_t start = end < 0 ? place : data;
        if (end < 0) end = size;  // the file system does not tell its holes
        if (!copyPart(from, to, start, std::min<off_t>(end, size))) return false;
        place = written = end;
    }
    return written >= size || ::ftruncate(to, size) == 0;
}

namespace {

// MARK: What goes with the content

bool setTimes(int folder, const char* name, const struct stat& status, int flags) {
    const timespec times[] = {status.st_atim, status.st_mtim};
    return ::utimensat(folder, name, times, flags) == 0;
}

// The notes of users and programs on a file, as far as the other file system can keep them.
void copyNotes(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    std::vector<char> names(static_cast<std::size_t>(size)), value(XATTR_SIZE_MAX);
    const ssize_t length = ::flistxattr(from, names.data(), names.size());
    for (const char* name = names.data(); name < names.data() + length; name += std::strlen(name) + 1) {
        if (std::strncmp(name, "user.", 5) != 0) continue;
        const ssize_t count = ::fgetxattr(from, name, value.data(), value.size());
        if (count >= 0) (void)::fsetxattr(to, name, value.data(), static_cast<std::size_t>(count), 0);
    }
}

bool finishCopy(int from, int to, const struct stat& status, CopyRights rights) {
    copyNotes(from, to);
    if (rights == CopyRights::asSource && !FileRights(from, status).giveTo(to)) return false;
    const timespec times[] = {status.st_atim, status.st_mtim};
    return ::futimens(to, times) == 0;
}

// MARK: Copying

// Copies one entry with all that is in it.
class TreeCopier {
  public:
    TreeCopier(TreeWatcher& watcher, CopyRights rights, bool isSafe)
        : _watcher(watcher), _rights(rights), _isSafe(isSafe) {}

    // The entry that the copy is about, under its final name.
    bool copyTop(const SystemPlace& from, const SystemPlace& to, const std::string& fromPath,
                 const std::string& toPath) {
        _watcher.willProcess(fromPath);
        if (copyTopEntry(from, to, fromPath, toPath)) return true;
        const int reason = errno;
        if (!_isOver) _watcher.shouldProceed(reason, fromPath, toPath);
        return failWith(reason);
    }

  private:
    bool copyTopEntry(const SystemPlace& from, const SystemPlace& to, const std::string& fromPath,
                      const std::string& toPath) {
        struct stat status, taken;
        if (::fstatat(from.folder, from.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
        if (::fstatat(to.folder, to.name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0) return failWith(EEXIST);
        if (S_ISDIR(status.st_mode)) return copyTopFolder(from, to, status, fromPath, toPath);
        if (!S_ISREG(status.st_mode)) return copyOther(from.folder, from.name, to.folder, to.name, status);
        Descriptor source = openSource(from.folder, from.name);
        TemporaryFile copy(to.folder, to.name);
        return source && copy.open(0600) && copyContent(source, copy, status.st_size) &&
               finishCopy(source, copy, status, _rights) && makeSafe(copy) && copy.takeTarget();
    }

    bool copyTopFolder(const SystemPlace& from, const SystemPlace& to, const struct stat& status,
                       const std::string& fromPath, const std::string& toPath) {
        if (isInside(to.folder, status)) return failWith(EINVAL);
        Descriptor source = openedAt(from.folder, from.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        TemporaryTree copy(to.folder, to.name);
        if (!source || !copy.open()) return false;
        _top = copy;
        return copyContents(source, copy, fromPath, toPath, "") && finishFolder(source, copy, status) &&
               copy.takeTarget();
    }

    // Whether the folder is the one with that status, or one below it.
    static bool isInside(int folder, const struct stat& outer) {
        Descriptor place = openedAt(folder, ".", O_PATH | O_DIRECTORY);
        struct stat status, above;
        while (place && ::fstat(place, &status) == 0) {
            if (status.st_dev == outer.st_dev && status.st_ino == outer.st_ino) return true;
            place.set(openedAt(place, "..", O_PATH | O_DIRECTORY).release());
            if (!place || ::fstat(place, &above) != 0) return false;
            if (above.st_dev == status.st_dev && above.st_ino == status.st_ino) return false;
        }
        return false;
    }

    bool copyContents(int from, int to, const std::string& fromPath, const std::string& toPath,
                      const std::string& inside) {
        std::vector<std::string> names;
        if (!readNames(from, names)) return false;
        return std::ranges::all_of(names, [&](const std::string& name) {
            return copyChild(from, to, name, fromPath + "/" + name, toPath + "/" + name, inside + name);
        });
    }

    // False when the entry failed and the watcher did not want to go on.
    bool copyChild(int from, int to, const std::string& name, const std::string& fromPath,
                   const std::string& toPath, const std::string& inside) {
        _watcher.willProcess(fromPath);
        if (copyEntry(from, to, name, fromPath, toPath, inside)) return true;
        if (_isOver) return false;
        const int reason = errno;
        _isOver = !_watcher.shouldProceed(reason, fromPath, toPath);
        errno = reason;
        return !_isOver;
    }

    bool copyEntry(int from, int to, const std::string& name, const std::string& fromPath,
                   const std::string& toPath, const std::string& inside) {
        struct stat status;
        if (::fstatat(from, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
        if (!S_ISDIR(status.st_mode) && status.st_nlink > 1 && linkToCopy(to, name, status, inside))
            return true;
        if (S_ISREG(status.st_mode)) return copyFile(from, to, name, status);
        if (!S_ISDIR(status.st_mode)) return copyOther(from, name, to, name, status);
        if (::mkdirat(to, name.c_str(), 0700) != 0) return false;
        Descriptor source = openedAt(from, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        Descriptor copy = openedAt(to, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        return source && copy && copyContents(source, copy, fromPath, toPath, inside + "/") &&
               finishFolder(source, copy, status);
    }

    // Another name of a file that has been copied already.
    bool linkToCopy(int to, const std::string& name, const struct stat& status, const std::string& inside) {
        auto [place, isNew] = _copies.try_emplace({status.st_dev, status.st_ino}, inside);
        return !isNew && ::linkat(_top, place->second.c_str(), to, name.c_str(), 0) == 0;
    }

    bool copyFile(int from, int to, const std::string& name, const struct stat& status) {
        Descriptor source = openSource(from, name);
        if (!source) return false;
        Descriptor copy = openedAt(to, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (copy && copyContent(source, copy, status.st_size) && finishCopy(source, copy, status, _rights) &&
            makeSafe(copy) && copy.close())
            return true;
        const int reason = errno;
        ::unlinkat(to, name.c_str(), 0);
        return failWith(reason);
    }

    // What is no regular file any more is not waited for.
    static Descriptor openSource(int folder, const std::string& name) {
        Descriptor source = openedAt(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
        struct stat status;
        if (!source || (::fstat(source, &status) == 0 && S_ISREG(status.st_mode))) return source;
        errno = EBUSY;
        return Descriptor();
    }

    // Links, pipes, sockets and devices.
    static bool copyOther(int from, const std::string& name, int to, const std::string& newName,
                          const struct stat& status) {
        if (S_ISLNK(status.st_mode)) {
            char target[PATH_MAX];
            const ssize_t length = ::readlinkat(from, name.c_str(), target, sizeof target - 1);
            if (length < 0) return false;
            target[length] = '\0';
            if (::symlinkat(target, to, newName.c_str()) != 0) return false;
        } else if (::mknodat(to, newName.c_str(), status.st_mode, status.st_rdev) != 0) {
            return false;
        }
        (void)!::fchownat(to, newName.c_str(), status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW);
        if (!S_ISLNK(status.st_mode)) (void)!::fchmodat(to, newName.c_str(), status.st_mode & 0777, 0);
        setTimes(to, newName.c_str(), status, AT_SYMLINK_NOFOLLOW);
        return true;
    }

    bool finishFolder(int from, int to, const struct stat& status) {
        return finishCopy(from, to, status, CopyRights::asSource) && makeSafe(to);
    }

    bool makeSafe(int file) {
        return !_isSafe || uninterrupted([&] { return ::fsync(file); }) == 0;
    }

    TreeWatcher& _watcher;
    CopyRights _rights;
    bool _isSafe;
    bool _isOver = false;
    int _top = -1;  // the folder that the names of copies begin at
    std::map<std::pair<dev_t, ino_t>, std::string> _copies;
};

bool copyPlaces(const std::string& from, const std::string& to, TreeWatcher& watcher, CopyRights rights,
                bool isSafe) {
    SystemPlace source(from);
    if (!source) return false;
    SystemPlace target(to);
    return target && TreeCopier(watcher, rights, isSafe).copyTop(source, target, from, to);
}

// MARK: Moving

// Whether the user may remove an entry, so that a copy does not end as a second one. Each folder below has to
// be writable too.
bool isRemovable(int folder, const std::string& name) {
    struct stat status;
    if (::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return false;
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (!S_ISDIR(status.st_mode)) return true;
    Descriptor opened = openedAt(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    std::vector<std::string> names;
    if (!opened || !readNames(opened, names)) return false;
    return std::ranges::all_of(names, [&](const std::string& child) { return isRemovable(opened, child); });
}

// An entry that does not come ends the move, whatever the watcher wants: it would be removed uncopied.
class MoveWatcher : public TreeWatcher {
  public:
    MoveWatcher(TreeWatcher& watcher, const std::string& top) : _watcher(watcher), _top(top) {}
    void willProcess(const std::string& path) override {
        if (path != _top) _watcher.willProcess(path);
    }
    bool shouldProceed(int reason, const std::string& from, const std::string& to) override {
        _watcher.shouldProceed(reason, from, to);
        return false;
    }

  private:
    TreeWatcher& _watcher;
    const std::string& _top;
};

bool moveToOtherFileSystem(const SystemPlace& source, const std::string& from, const std::string& to,
                           TreeWatcher& watcher) {
    MoveWatcher moving(watcher, from);
    if (!isRemovable(source.folder, source.name)) return false;
    if (!copyPlaces(from, to, moving, CopyRights::asSource, true)) return false;
    TreeWatcher removing;
    return removeTree(from, removing);
}

}  // namespace

bool copyTree(const std::string& from, const std::string& to, TreeWatcher& watcher, CopyRights rights) {
    return copyPlaces(from, to, watcher, rights, false);
}

bool moveTree(const std::string& from, const std::string& to, TreeWatcher& watcher) {
    SystemPlace source(from);
    if (!source) return false;
    SystemPlace target(to);
    if (!target) return false;
    watcher.willProcess(from);
    if (renameExclusively(source.folder, source.name.c_str(), target.folder, target.name.c_str()))
        return true;
    if (errno == EXDEV) return moveToOtherFileSystem(source, from, to, watcher);
    const int reason = errno;
    watcher.shouldProceed(reason, from, to);
    return failWith(reason);
}

}  // namespace pelvor
