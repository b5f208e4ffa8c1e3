// SPDX-License-Identifier: Apache-2.0
// Attributes of files and file systems.
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <cmath>
#include <vector>

#include "Foundation/Files/SystemPath.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"

namespace pelvor {
namespace {

NSString* typeOf(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFDIR:
            return NSFileTypeDirectory;
        case S_IFLNK:
            return NSFileTypeSymbolicLink;
        case S_IFSOCK:
            return NSFileTypeSocket;
        case S_IFCHR:
            return NSFileTypeCharacterSpecial;
        case S_IFBLK:
            return NSFileTypeBlockSpecial;
        case S_IFIFO:
            return NSFileTypePipe;
        default:
            return NSFileTypeRegular;
    }
}

NSDate* dateOf(const struct statx_timestamp& time) {
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(time.tv_sec) + time.tv_nsec / 1e9);
}

std::string nameOfUser(unsigned number) {
    std::vector<char> buffer(16384);
    passwd entry, *found = nullptr;
    ::getpwuid_r(number, &entry, buffer.data(), buffer.size(), &found);
    return found ? found->pw_name : "";
}

std::string nameOfGroup(unsigned number) {
    std::vector<char> buffer(65536);
    group entry, *found = nullptr;
    ::getgrgid_r(number, &entry, buffer.data(), buffer.size(), &found);
    return found ? found->gr_name : "";
}

// Most files have the owner of the file before. Null for a number without a name.
NSString* nameOf(unsigned number, std::string (*look)(unsigned), std::pair<unsigned, std::string>& last) {
    if (last.first != number || last.second.empty()) last = {number, look(number)};
    return last.second.empty() ? nullptr : NSString::ofUTF8(last.second);
}

NSNumber* number(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong(value); }

NSDictionary* attributesOf(const struct statx& status) {
    auto* attributes = NSMutableDictionary::dictionary();
    const auto set = [attributes](NSString* key, id value) {
        if (value) attributes->setObject_forKey(value, key);
    };
    set(NSFileType, typeOf(status.stx_mode));
    set(NSFileSize, number(status.stx_size));
    set(NSFileModificationDate, dateOf(status.stx_mtime));
    if (status.stx_mask & STATX_BTIME) set(NSFileCreationDate, dateOf(status.stx_btime));
    set(NSFilePosixPermissions, number(status.stx_mode & 07777));
    set(NSFileOwnerAccountID, number(status.stx_uid));
    set(NSFileGroupOwnerAccountID, number(status.stx_gid));
    thread_local std::pair<unsigned, std::string> lastUser, lastGroup;
    set(NSFileOwnerAccountName, nameOf(status.stx_uid, nameOfUser, lastUser));
    set(NSFileGroupOwnerAccountName, nameOf(status.stx_gid, nameOfGroup, lastGroup));
    set(NSFileReferenceCount, number(status.stx_nlink));
    set(NSFileSystemNumber, number(makedev(status.stx_dev_major, status.stx_dev_minor)));
    set(NSFileSystemFileNumber, number(status.stx_ino));
    return attributes;
}

// Sets one attribute if the dictionary has it. False for a value of another class too.
template <class Value, class Set>
bool change(NSDictionary* attributes, NSString* key, Set set) {
    id given = attributes->objectForKey(key);
    if (!given) return true;
    auto* value = cast<Value>(given);
    return value ? set(value) : failWith(EINVAL);
}

bool setModificationDate(const char* path, double seconds) {
    // As far as a file system's clock may go; a date that is no number is refused too.
    if (!(std::abs(seconds) < 1e11)) return failWith(EINVAL);
    const double whole = std::floor(seconds);
    const timespec times[] = {{0, UTIME_OMIT},
                              {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)}};
    return ::utimensat(AT_FDCWD, path, times, 0) == 0;
}

}  // namespace

NSDictionary* NSFileManager::fileAttributesAtPath_traverseLink(NSString* path, bool traverseLink) {
    const std::string name = systemPath(path);
    struct statx status;
    if (!isSystemPath(name) || ::statx(AT_FDCWD, name.c_str(), traverseLink ? 0 : AT_SYMLINK_NOFOLLOW,
                                       STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        return nullptr;
    return attributesOf(status);
}

NSDictionary* NSFileManager::fileSystemAttributesAtPath(NSString* path) {
    const std::string name = systemPath(path);
    struct statvfs status;
    struct stat file;
    if (!isSystemPath(name) || ::statvfs(name.c_str(), &status) != 0 || ::stat(name.c_str(), &file) != 0)
        return nullptr;
    return NSDictionary::of({{NSFileSystemSize, number(status.f_blocks * status.f_frsize)},
                             {NSFileSystemFreeSize, number(status.f_bavail * status.f_frsize)},
                             {NSFileSystemNodes, number(status.f_files)},
                             {NSFileSystemFreeNodes, number(status.f_favail)},
                             {NSFileSystemNumber, number(file.st_dev)}});
}

// The owner comes before the rights, since a new owner takes some of them away; the date comes last.
bool NSFileManager::changeFileAttributes_atPath(NSDictionary* attributes, NSString* path) {
    const std::string bytes = systemPath(path);
    if (!isSystemPath(bytes)) return false;
    if (!attributes) return true;
    const char* name = bytes.c_str();
    constexpr auto kNobody = static_cast<uid_t>(-1);
    return change<NSNumber>(
               attributes, NSFileOwnerAccountID,
               [=](NSNumber* user) { return ::chown(name, user->unsignedIntValue(), kNobody) == 0; }) &&
           change<NSNumber>(
               attributes, NSFileGroupOwnerAccountID,
               [=](NSNumber* group) { return ::chown(name, kNobody, group->unsignedIntValue()) == 0; }) &&
           change<NSNumber>(
               attributes, NSFilePosixPermissions,
               [=](NSNumber* rights) { return ::chmod(name, rights->unsignedIntValue() & 07777) == 0; }) &&
           change<NSDate>(attributes, NSFileModificationDate, [=](NSDate* date) {
               return setModificationDate(name, date->timeIntervalSince1970());
           });
}

}  // namespace pelvor
