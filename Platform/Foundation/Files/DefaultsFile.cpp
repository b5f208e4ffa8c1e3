// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/DefaultsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <vector>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/UserFolders.h"
#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {
namespace {

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

DefaultsFile::DefaultsFile(const std::string& domain)
    : _folder(userFolder("XDG_CONFIG_HOME", ".config") + "/pelvor"),
      _path(_folder + "/" + domain + ".plist") {}

DefaultsFile::Lock::Lock(const DefaultsFile& file)
    : _folder(::open(file._folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (_folder >= 0 && ::flock(_folder, LOCK_EX) != 0 && errno == EINTR) continue;
}

DefaultsFile::Lock::~Lock() {
    if (_folder >= 0) ::close(_folder);
}

int DefaultsFile::readStatus(struct stat& status) const {
    if (::stat(_path.c_str(), &status) == 0) return 0;
    status = {};
    return errno;
}

bool DefaultsFile::hasChanged() const {
    if (_state == State::unreadable) return true;
    struct stat now;
    readStatus(now);
    return !isSameFile(now, _known);
}

DefaultsFile::State DefaultsFile::load() {
    _content = nullptr;
    int failure = readStatus(_known);
    if (failure == ENOENT || failure == ENOTDIR) return _state = State::missing;
    GrowingBytes bytes;
    if (!readFile(_path, bytes, FileReading::regularOnly)) {
        NSLog(u"NSUserDefaults: the settings in %s cannot be read: %s"_ns, _path, reasonOfFileError(errno));
        return _state = State::unreadable;
    }
    NSPropertyListError* error = nullptr;
    NSPropertyListFormat format;
    id list = NSPropertyListSerialization::propertyListWithData_options_format_error(
        NSData::of(std::as_bytes(std::span(bytes.view()))), NSPropertyListImmutable, &format, &error);
    if (auto* dictionary = cast<NSDictionary>(list)) {
        _content.set(dictionary);
        return _state = State::read;
    }
    id reason = error ? static_cast<id>(error) : u"they are a list, but no dictionary"_ns;
    NSLog(u"NSUserDefaults: the settings in %s are damaged and count as empty: %@"_ns, _path, reason);
    return _state = State::damaged;
}

bool DefaultsFile::makeFolder() const { return makeFolders(_folder, 0700); }

// The new name is one that no other file has; the tenth damaged file takes the place of the ninth.
bool DefaultsFile::keepDamagedFile() const {
    std::string name = _path + ".damaged";
    for (int i = 2;
         i <= 9 && ::renameat2(AT_FDCWD, _path.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) != 0; ++i) {
        if (errno != EEXIST) break;
        name = _path + ".damaged-" + std::to_string(i);
    }
    bool isInPlace = ::access(_path.c_str(), F_OK) == 0;
    return !isInPlace || ::rename(_path.c_str(), name.c_str()) == 0;
}

bool DefaultsFile::save(NSDictionary* content) {
    NSData* data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        content, NSPropertyListXMLFormat_v1_0, 0, nullptr);
    bool isKept = _state != State::damaged || keepDamagedFile();
    if (!data || !isKept || !writeFile(_path, data->span(), FileWriting::atomicPrivate)) {
        const char* reason = data ? reasonOfFileError(errno, FileUse::writing) : "they are no property list";
        NSLog(u"NSUserDefaults: the settings cannot be written to %s: %s"_ns, _path, reason);
        return false;
    }
    _state = State::read;
    _content.set(content);
    readStatus(_known);
    return true;
}

}  // namespace pelvor
