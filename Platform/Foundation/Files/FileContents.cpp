// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

#include "Foundation/Files/FileContents.h"

namespace pelvor {
namespace {

// Owns a file descriptor. Closing it in the destructor does not change `errno`.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : _number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { set(-1); }

    void set(int number) {
        int reason = errno;
        if (_number >= 0) ::close(_number);
        _number = number;
        errno = reason;
    }
    explicit operator bool() const { return _number >= 0; }
    operator int() const { return _number; }
    bool close() { return ::close(std::exchange(_number, -1)) == 0; }

  private:
    int _number;
};

bool fail(int reason) {
    errno = reason;
    return false;
}

bool isPath(const std::string& path) { return path.find('\0') == path.npos || fail(EINVAL); }

bool writeAll(int descriptor, std::span<const std::byte> content) {
    while (!content.empty()) {
        ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

// The number of the descriptor that the path of an own open file stands for, "/proc/self/fd/1"; else -1.
int openDescriptorOf(const std::string& path) {
    static constexpr std::string_view kFolder = "/proc/self/fd/";
    if (!path.starts_with(kFolder) || path.size() == kFolder.size()) return -1;
    int number = 0;
    const char* end = path.data() + path.size();
    auto [place, error] = std::from_chars(path.data() + kFolder.size(), end, number);
    return error == std::errc() && place == end ? number : -1;
}

// An open file is written to where it stands: opening it again would begin at its front and cut it off.
// Opening does not wait, so that a pipe without a reader fails; writing does.
bool writeDirectly(const std::string& path, std::span<const std::byte> content) {
    if (int number = openDescriptorOf(path); number >= 0) {
        Descriptor same(::fcntl(number, F_DUPFD_CLOEXEC, 0));
        return same && writeAll(same, content) && same.close();
    }
    Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
    return file && ::fcntl(file, F_SETFL, 0) == 0 && writeAll(file, content) && file.close();
}

// MARK: Temporary files

// A private file in the folder of the file that it is to replace. Where the file system can do so, the file
// has no name until it is complete, and goes with its process. A file with a name is locked while its process
// lives; whoever wants the name next removes a file that nobody has locked.
class TemporaryFile {
  public:
    TemporaryFile(int folder, std::string target) : _folder(folder), _target(std::move(target)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        int reason = errno;
        if (!_name.empty()) ::unlinkat(_folder, _name.c_str(), 0);
        errno = reason;
    }

    operator int() const { return _file; }
    bool hasName() const { return !_name.empty(); }

    // The rights count for a file without a name, which nobody else can open.
    bool open(mode_t rights) {
        _file.set(::openat(_folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, rights));
        _link = "/proc/self/fd/" + std::to_string(_file);
        if (_file && ::access(_link.c_str(), F_OK) == 0) return lock(0);
        return takeName([this](const char* name) {
            _file.set(::openat(_folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
            return _file && (lock(1) || fail(EEXIST));
        });
    }

    // Takes the place of the target. A file that is new gets its only name here.
    bool replaceTarget(bool isNew) {
        if (!hasName()) {
            if (isNew && link(_target.c_str())) return true;
            if (isNew && errno != EEXIST) return false;
            if (!takeName([this](const char* name) { return link(name); })) return false;
        }
        if (::renameat(_folder, _name.c_str(), _folder, _target.c_str()) != 0) return false;
        _name.clear();
        return true;
    }

  private:
    static constexpr int kMostNames = 1000;

    // False if another process removed the file before it was locked, because that process took the file for
    // one that was left behind. On a file system without locks, no file is taken for one that was left
    // behind.
    bool lock(nlink_t names) {
        struct stat status;
        if (::flock(_file, LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
        return ::fstat(_file, &status) == 0 && status.st_nlink == names;
    }

    bool link(const char* name) {
        return ::linkat(AT_FDCWD, _link.c_str(), _folder, name, AT_SYMLINK_FOLLOW) == 0;
    }

    // Tries names until one is free. They are the same for every write of a target, so that a file that was
    // left is found, and short whatever the length of the target's name.
    template <class Make>
    bool takeName(Make make) {
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
        return fail(EEXIST);
    }

    // The lock keeps the name with its file from the check to the removal.
    bool removeAbandoned(const char* name) {
        Descriptor file(::openat(_folder, name, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat locked, named;
        return file && ::flock(file, LOCK_EX | LOCK_NB) == 0 && ::fstat(file, &locked) == 0 &&
               S_ISREG(locked.st_mode) && ::fstatat(_folder, name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
               locked.st_dev == named.st_dev && locked.st_ino == named.st_ino &&
               ::unlinkat(_folder, name, 0) == 0;
    }

    int _folder;
    std::string _target, _name, _link;
    Descriptor _file;
};

// MARK: Access rights

// What the process gives to a new file; reading the mask is the only way to know it without changing it.
mode_t rightsOfNewFile() {
    std::vector<std::byte> bytes;
    if (!readFile("/proc/self/status", bytes)) return 0600;
    std::string status(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::size_t place = status.find("\nUmask:");
    if (place == status.npos) return 0600;
    return 0666 & ~static_cast<mode_t>(std::strtoul(status.c_str() + place + 7, nullptr, 8));
}

// False when the old file has an access list that the new one cannot be given.
bool copyAccessList(int file, const std::string& old) {
    static constexpr const char* kAccessList = "system.posix_acl_access";
    std::vector<char> list(XATTR_SIZE_MAX);
    ssize_t length = ::lgetxattr(old.c_str(), kAccessList, list.data(), list.size());
    if (length > 0)
        return ::fsetxattr(file, kAccessList, list.data(), static_cast<std::size_t>(length), 0) == 0;
    ::fremovexattr(file, kAccessList);
    return true;
}

// Sets them as far as the user may. A group for which the rights were not meant gets no more rights than
// everybody.
void copyRights(int file, const std::string& old, const struct stat& status) {
    mode_t rights = status.st_mode & 07777;
    bool isGroupKept = true;
    if (::fchown(file, status.st_uid, status.st_gid) != 0) {
        rights &= ~static_cast<mode_t>(S_ISUID);
        isGroupKept = ::fchown(file, static_cast<uid_t>(-1), status.st_gid) == 0;
    }
    if (!isGroupKept) rights &= ~static_cast<mode_t>(S_ISGID);
    if (!copyAccessList(file, old) || !isGroupKept) rights &= 07707 | (rights & 07) << 3;
    (void)!::fchmod(file, rights);
}

// MARK: Replacing

// A file system may tell of a failure only when a descriptor is closed; the lock goes with the last one.
bool finish(int file) { return ::fsync(file) == 0 && Descriptor(::dup(file)).close(); }

bool replaceFile(const std::string& path, std::span<const std::byte> content, bool isPrivate) {
    std::size_t start = path.rfind('/') + 1;
    std::string name = path.substr(start);
    Descriptor folder(::open(start ? path.substr(0, start).c_str() : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat old;
    bool isNew = folder && ::fstatat(folder, name.c_str(), &old, 0) != 0;
    if (!folder || (isNew && errno != ENOENT)) return false;
    if (!isNew && ::faccessat(folder, name.c_str(), W_OK, AT_EACCESS) != 0) return false;

    TemporaryFile file(folder, name);
    if (!file.open(isNew && !isPrivate ? 0666 : 0600) || !writeAll(file, content)) return false;
    if (isPrivate && !isNew)
        (void)!::fchown(file, old.st_uid, static_cast<gid_t>(-1));
    else if (!isPrivate && !isNew)
        copyRights(file, path, old);
    else if (!isPrivate && file.hasName())
        (void)!::fchmod(file, rightsOfNewFile());
    return finish(file) && file.replaceTarget(isNew);
}

// Whether the path means a regular file, or one that does not exist yet; `path` then becomes the file's own
// name, behind all links. The links in /proc, to which /dev/stdout leads, stand for open files, which may
// have no name.
bool meansRegularFile(std::string& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) == 0 ? !S_ISREG(status.st_mode) : errno != ENOENT) return false;
    for (int links = 0; links < 40 && !path.starts_with("/proc/"); ++links) {
        char link[PATH_MAX];
        ssize_t length = ::readlink(path.c_str(), link, sizeof link);
        if (length < 0) return true;
        std::string_view target(link, static_cast<std::size_t>(length));
        path = (target.starts_with('/') ? "" : path.substr(0, path.rfind('/') + 1)).append(target);
    }
    return false;
}

}  // namespace

const char* reasonOfReading() { return errno ? std::strerror(errno) : "it is no regular file"; }

bool readFile(const std::string& path, std::vector<std::byte>& content, FileReading reading) {
    if (!isPath(path)) return false;
    bool isRegularOnly = reading == FileReading::regularOnly;
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | (isRegularOnly ? O_NONBLOCK | O_NOCTTY : 0)));
    struct stat status;
    if (!file || ::fstat(file, &status) != 0) return false;
    if (S_ISDIR(status.st_mode)) return fail(EISDIR);
    if (isRegularOnly && !S_ISREG(status.st_mode)) return fail(0);
    // The size is only a first guess: some files have no size, and others grow.
    std::size_t length = 0;
    content.resize(static_cast<std::size_t>(std::clamp<off_t>(status.st_size, 0, UINT32_MAX)) + 1);
    for (;;) {
        if (length == content.size()) content.resize(length * 2);
        ssize_t count = ::read(file, content.data() + length, content.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length > UINT32_MAX) return fail(EFBIG);
    }
    content.resize(length);
    return true;
}

bool writeFile(const std::string& path, std::span<const std::byte> content, FileWriting writing) {
    if (!isPath(path)) return false;
    std::string target = path;
    // For anything but a regular file, links are followed up to a link to an open file.
    bool isRegular = meansRegularFile(target);
    if (writing == FileWriting::direct || !isRegular)
        return writeDirectly(target.starts_with("/proc/") ? target : path, content);
    return replaceFile(target, content, writing == FileWriting::atomicPrivate);
}

}  // namespace pelvor
