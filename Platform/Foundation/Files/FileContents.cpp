// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/FileContents.h"

#include <limits.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "Foundation/Files/FileRights.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/Files/TemporaryFile.h"

namespace pelvor {
namespace {

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
    Descriptor file =
        openedAt(AT_FDCWD, path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY, 0666);
    return file && ::fcntl(file, F_SETFL, 0) == 0 && writeAll(file, content) && file.close();
}

// MARK: Replacing

// A file system may tell of a failure only when a descriptor is closed; the lock goes with the last one.
bool finish(int file, bool isOnDisk) {
    return (!isOnDisk || uninterrupted([&] { return ::fsync(file); }) == 0) &&
           Descriptor(::dup(file)).close();
}

bool replaceFile(const std::string& path, std::span<const std::byte> content, FileWriting writing) {
    const bool isPrivate = writing != FileWriting::atomic;
    std::size_t start = path.rfind('/') + 1;
    std::string name = path.substr(start);
    Descriptor folder = openedAt(AT_FDCWD, start ? path.substr(0, start).c_str() : ".", O_PATH | O_DIRECTORY);
    struct stat old;
    bool isNew = folder && ::fstatat(folder, name.c_str(), &old, 0) != 0;
    if (!folder || (isNew && errno != ENOENT)) return false;
    if (!isNew && ::faccessat(folder, name.c_str(), W_OK, AT_EACCESS) != 0) return false;

    TemporaryFile file(folder, name);
    if (!file.open(isNew && !isPrivate ? 0666 : 0600) || !writeAll(file, content)) return false;
    if (isPrivate && !isNew) (void)!::fchown(file, old.st_uid, static_cast<gid_t>(-1));
    if (!isPrivate && isNew && file.hasName()) (void)!::fchmod(file, rightsOfNewFile());
    if (!isPrivate && !isNew && !FileRights(path, old).giveTo(file)) return false;
    return finish(file, writing != FileWriting::atomicCache) && file.replaceTarget(isNew);
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

bool readFile(const std::string& path, GrowingBytes& content, FileReading reading) {
    if (!isSystemPath(path)) return false;
    bool isRegularOnly = reading == FileReading::regularOnly;
    Descriptor file =
        openedAt(AT_FDCWD, path.c_str(), O_RDONLY | (isRegularOnly ? O_NONBLOCK | O_NOCTTY : 0));
    struct stat status;
    if (!file || ::fstat(file, &status) != 0) return false;
    if (S_ISDIR(status.st_mode)) return failWith(EISDIR);
    if (isRegularOnly && !S_ISREG(status.st_mode)) return failWith(0);
    // The size is only a first guess: some files have no size, and others grow.
    constexpr std::size_t kStep = 4096;
    auto room = static_cast<std::size_t>(std::clamp<off_t>(status.st_size, 0, UINT32_MAX)) + 1;
    if (room == 1) room = kStep;
    for (;;) {
        ssize_t count = ::read(file, content.room(room), room);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) return true;
        content.advance(static_cast<std::size_t>(count));
        if (content.size() > UINT32_MAX) return failWith(EFBIG);
        room -= static_cast<std::size_t>(count);
        if (room == 0) room = std::max(kStep, content.size());
    }
}

bool writeAll(int file, std::span<const std::byte> content) {
    while (!content.empty()) {
        ssize_t written = ::write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeFile(const std::string& path, std::span<const std::byte> content, FileWriting writing) {
    if (!isSystemPath(path)) return false;
    std::string target = path;
    // For anything but a regular file, links are followed up to a link to an open file.
    bool isRegular = meansRegularFile(target);
    if (writing == FileWriting::direct || !isRegular)
        return writeDirectly(target.starts_with("/proc/") ? target : path, content);
    return replaceFile(target, content, writing);
}

}  // namespace pelvor
