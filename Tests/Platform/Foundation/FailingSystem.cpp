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

}  // namespace

#define INSTEAD_OF_THE_SYSTEM extern "C" [[gnu::visibility("default")]]

// A call that does its work or fails. Some are declared with "..." for their last parameter, so each is
// defined under a name of its own, which the linker knows as the system's.
#define REFUSING(type, name, parameters, arguments, reason)          \
    INSTEAD_OF_THE_SYSTEM type failing_##name parameters asm(#name); \
    type failing_##name parameters {                                 \
        static auto* const real = next<type parameters>(#name);      \
        if (strikes(#name)) return static_cast<type>(-1);            \
        if (const int refusal = reason) return errno = refusal, -1;  \
        return real arguments;                                       \
    }
#define FAILING(type, name, parameters, arguments) REFUSING(type, name, parameters, arguments, 0)

FAILING(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, writtenOf(count)))
FAILING(ssize_t, pread, (int file, void* bytes, size_t count, off_t place), (file, bytes, count, place))
FAILING(ssize_t, pwrite, (int file, const void* bytes, size_t count, off_t place),
        (file, bytes, writtenOf(count), place))
FAILING(int, mkdir, (const char* path, mode_t rights), (path, rights))
FAILING(int, mkdirat, (int folder, const char* path, mode_t rights), (folder, path, rights))
FAILING(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
FAILING(int, linkat, (int from, const char* old, int to, const char* name, int flags),
        (from, old, to, name, flags))
FAILING(int, symlinkat, (const char* target, int folder, const char* name), (target, folder, name))
FAILING(ssize_t, readlinkat, (int folder, const char* path, char* buffer, size_t size),
        (folder, path, buffer, size))
FAILING(int, mknodat, (int folder, const char* path, mode_t mode, dev_t device), (folder, path, mode, device))
FAILING(int, fchown, (int file, uid_t user, gid_t group), (file, user, group))
FAILING(int, fchmod, (int file, mode_t rights), (file, rights))
FAILING(int, futimens, (int file, const timespec times[2]), (file, times))
FAILING(int, flock, (int file, int operation), (file, operation))
FAILING(int, ftruncate, (int file, off_t size), (file, size))
FAILING(off_t, lseek, (int file, off_t place, int from), (file, place, from))
FAILING(int, fstat, (int file, struct stat* status), (file, status))
FAILING(int, fstatat, (int folder, const char* path, struct stat* status, int flags),
        (folder, path, status, flags))

REFUSING(int, openat, (int folder, const char* path, int flags, mode_t rights), (folder, path, flags, rights),
         faults.refusesUnnamedFiles && (flags & O_TMPFILE) == O_TMPFILE ? EOPNOTSUPP : 0)
REFUSING(ssize_t, copy_file_range,
         (int from, off_t* source, int to, off_t* target, size_t count, unsigned flags),
         (from, source, to, target, writtenOf(count), flags), faults.refusesCopiesInside ? EXDEV : 0)
REFUSING(int, ioctl, (int file, unsigned long request, void* argument), (file, request, argument),
         (faults.refusesCopiesInside) && request == FICLONE ? EOPNOTSUPP : 0)
REFUSING(int, renameat2, (int from, const char* old, int to, const char* name, unsigned flags),
         (from, old, to, name, flags), (faults.refusesMoves) && from != to ? EXDEV : 0)

INSTEAD_OF_THE_SYSTEM dirent* readdir(DIR* folder) {
    static auto* const real = next<dirent*(DIR*)>("readdir");
    return strikes("readdir") ? nullptr : real(folder);
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
