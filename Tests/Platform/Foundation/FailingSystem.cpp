// SPDX-License-Identifier: Apache-2.0
#include "FailingSystem.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace pelvor {

Faults faults;

}  // namespace pelvor

using pelvor::Faults;
using pelvor::faults;

namespace {

// Whether the call is the one that fails.
bool strikes(const char* name) {
    if (faults.number == 0 || ++faults.count != faults.number) return false;
    if (faults.reason == 0) raise(SIGKILL);
    faults.struck = name;
    if (faults.reason == Faults::kShortWrite) return false;
    errno = faults.reason;
    return true;
}

// How many bytes the call writes that was asked last whether it fails.
size_t writtenOf(size_t count) {
    const bool isShort = faults.number != 0 && faults.count == faults.number && faults.reason < 0;
    return isShort && count > 1 ? 1 : count;
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

mode_t rightsOf(int flags, va_list arguments) {
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

#define INSTEAD_OF_THE_SYSTEM extern "C" [[gnu::visibility("default")]]

// A call that does its work or fails.
#define FAILING(type, name, parameters, arguments, ...)         \
    INSTEAD_OF_THE_SYSTEM type name parameters __VA_ARGS__ {    \
        static auto* const real = next<type parameters>(#name); \
        if (strikes(#name)) return static_cast<type>(-1);       \
        return real arguments;                                  \
    }

FAILING(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, writtenOf(count)))
FAILING(ssize_t, pread, (int file, void* bytes, size_t count, off_t place), (file, bytes, count, place))
FAILING(ssize_t, pwrite, (int file, const void* bytes, size_t count, off_t place),
        (file, bytes, writtenOf(count), place))
FAILING(int, mkdir, (const char* path, mode_t rights), (path, rights), noexcept)
FAILING(int, mkdirat, (int folder, const char* path, mode_t rights), (folder, path, rights), noexcept)
FAILING(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags), noexcept)
FAILING(int, linkat, (int from, const char* old, int to, const char* name, int flags),
        (from, old, to, name, flags), noexcept)
FAILING(int, symlinkat, (const char* target, int folder, const char* name), (target, folder, name), noexcept)
FAILING(ssize_t, readlinkat, (int folder, const char* path, char* buffer, size_t size),
        (folder, path, buffer, size), noexcept)
FAILING(int, mknodat, (int folder, const char* path, mode_t mode, dev_t device), (folder, path, mode, device),
        noexcept)
FAILING(int, fchown, (int file, uid_t user, gid_t group), (file, user, group), noexcept)
FAILING(int, fchmod, (int file, mode_t rights), (file, rights), noexcept)
FAILING(int, futimens, (int file, const timespec times[2]), (file, times), noexcept)
FAILING(int, flock, (int file, int operation), (file, operation), noexcept)
FAILING(int, ftruncate, (int file, off_t size), (file, size), noexcept)
FAILING(off_t, lseek, (int file, off_t place, int from), (file, place, from), noexcept)
FAILING(int, fstat, (int file, struct stat* status), (file, status), noexcept)
FAILING(int, fstatat, (int folder, const char* path, struct stat* status, int flags),
        (folder, path, status, flags), noexcept)

INSTEAD_OF_THE_SYSTEM int openat(int folder, const char* path, int flags, ...) {
    static auto* const real = next<int(int, const char*, int, ...)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t rights = rightsOf(flags, arguments);
    va_end(arguments);
    if (strikes("openat")) return -1;
    if (faults.refusesUnnamedFiles && (flags & O_TMPFILE) == O_TMPFILE) return errno = EOPNOTSUPP, -1;
    return real(folder, path, flags, rights);
}

INSTEAD_OF_THE_SYSTEM ssize_t copy_file_range(int from, off_t* source, int to, off_t* target, size_t count,
                                              unsigned flags) {
    static auto* const real = next<ssize_t(int, off_t*, int, off_t*, size_t, unsigned)>("copy_file_range");
    if (strikes("copy_file_range")) return -1;
    if (faults.refusesCopiesInside) return errno = EXDEV, -1;
    return real(from, source, to, target, writtenOf(count), flags);
}

INSTEAD_OF_THE_SYSTEM int ioctl(int file, unsigned long request, ...) noexcept {
    static auto* const real = next<int(int, unsigned long, void*)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (strikes("ioctl")) return -1;
    if (faults.refusesCopiesInside && request == FICLONE) return errno = EOPNOTSUPP, -1;
    return real(file, request, argument);
}

INSTEAD_OF_THE_SYSTEM dirent* readdir(DIR* folder) {
    static auto* const real = next<dirent*(DIR*)>("readdir");
    return strikes("readdir") ? nullptr : real(folder);
}

INSTEAD_OF_THE_SYSTEM int renameat2(int from, const char* old, int to, const char* name,
                                    unsigned flags) noexcept {
    static auto* const real = next<int(int, const char*, int, const char*, unsigned)>("renameat2");
    if (strikes("renameat2")) return -1;
    return faults.refusesMoves && from != to ? errno = EXDEV, -1 : real(from, old, to, name, flags);
}

INSTEAD_OF_THE_SYSTEM int renameat(int from, const char* old, int to, const char* name) noexcept {
    static auto* const real = next<int(int, const char*, int, const char*)>("renameat");
    if (faults.diesBeforeRenaming) raise(SIGKILL);
    return strikes("renameat") ? -1 : real(from, old, to, name);
}

INSTEAD_OF_THE_SYSTEM int fsync(int file) {
    static auto* const real = next<int(int)>("fsync");
    struct stat status;
    if (strikes("fsync")) return -1;
    if (::fstat(file, &status) == 0) faults.rightsWhileWritten = status.st_mode & 07777;
    return faults.failsToSync ? errno = EIO, -1 : real(file);
}

INSTEAD_OF_THE_SYSTEM int close(int file) {
    static auto* const real = next<int(int)>("close");
    const int result = real(file);
    if (strikes("close")) return -1;
    return faults.failsToClose ? errno = ENOSPC, -1 : result;
}
