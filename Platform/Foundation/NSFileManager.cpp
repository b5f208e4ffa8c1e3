// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSFileManager.h"

#include <limits.h>
#include <sys/stat.h>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/FileRemoval.h"
#include "Foundation/Files/FileTrees.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSFileManager, foundationLibrary) {
    methods.classLevel<"defaultManager", &NSFileManager::defaultManager>();
    methods.instance<"fileExistsAtPath:", &NSFileManager::fileExistsAtPath>();
    methods.instance<"fileExistsAtPath:isDirectory:", &NSFileManager::fileExistsAtPath_isDirectory>();
    methods.instance<"isReadableFileAtPath:", &NSFileManager::isReadableFileAtPath>();
    methods.instance<"isWritableFileAtPath:", &NSFileManager::isWritableFileAtPath>();
    methods.instance<"isExecutableFileAtPath:", &NSFileManager::isExecutableFileAtPath>();
    methods.instance<"isDeletableFileAtPath:", &NSFileManager::isDeletableFileAtPath>();
    methods
        .instance<"fileAttributesAtPath:traverseLink:", &NSFileManager::fileAttributesAtPath_traverseLink>();
    methods.instance<"fileSystemAttributesAtPath:", &NSFileManager::fileSystemAttributesAtPath>();
    methods.instance<"changeFileAttributes:atPath:", &NSFileManager::changeFileAttributes_atPath>();
    methods.instance<"directoryContentsAtPath:", &NSFileManager::directoryContentsAtPath>();
    methods.instance<"subpathsAtPath:", &NSFileManager::subpathsAtPath>();
    methods.instance<"contentsAtPath:", &NSFileManager::contentsAtPath>();
    methods.instance<"createFileAtPath:contents:attributes:",
                     &NSFileManager::createFileAtPath_contents_attributes>();
    methods.instance<"createDirectoryAtPath:attributes:", &NSFileManager::createDirectoryAtPath_attributes>();
    methods.instance<"createSymbolicLinkAtPath:pathContent:",
                     &NSFileManager::createSymbolicLinkAtPath_pathContent>();
    methods.instance<"pathContentOfSymbolicLinkAtPath:", &NSFileManager::pathContentOfSymbolicLinkAtPath>();
    methods.instance<"currentDirectoryPath", &NSFileManager::currentDirectoryPath>();
    methods.instance<"changeCurrentDirectoryPath:", &NSFileManager::changeCurrentDirectoryPath>();
    methods.instance<"copyPath:toPath:handler:", &NSFileManager::copyPath_toPath_handler>();
    methods.instance<"movePath:toPath:handler:", &NSFileManager::movePath_toPath_handler>();
    methods.instance<"removeFileAtPath:handler:", &NSFileManager::removeFileAtPath_handler>();
    methods.instance<"fileSystemRepresentationWithPath:", &NSFileManager::fileSystemRepresentationWithPath>();
    methods.instance<"stringWithFileSystemRepresentation:length:",
                     &NSFileManager::stringWithFileSystemRepresentation_length>();
}

NSFileManager* NSFileManager::defaultManager() {
    static NSFileManager* const manager = make<NSFileManager>().leak();
    return manager;
}

// MARK: What there is

namespace {

bool readStatus(NSString* path, struct stat& status) {
    const std::string name = systemPath(path);
    return isSystemPath(name) && ::stat(name.c_str(), &status) == 0;
}

bool isAllowed(NSString* path, int access) {
    const std::string name = systemPath(path);
    return isSystemPath(name) && ::faccessat(AT_FDCWD, name.c_str(), access, AT_EACCESS) == 0;
}

}  // namespace

bool NSFileManager::fileExistsAtPath(NSString* path) { return fileExistsAtPath_isDirectory(path, nullptr); }

bool NSFileManager::fileExistsAtPath_isDirectory(NSString* path, bool* isDirectory) {
    struct stat status;
    if (!readStatus(path, status)) return false;
    if (isDirectory) *isDirectory = S_ISDIR(status.st_mode);
    return true;
}

bool NSFileManager::isReadableFileAtPath(NSString* path) { return isAllowed(path, R_OK); }

bool NSFileManager::isWritableFileAtPath(NSString* path) { return isAllowed(path, W_OK); }

bool NSFileManager::isExecutableFileAtPath(NSString* path) { return isAllowed(path, X_OK); }

// In a folder with the sticky mark, only the owners of the file and of the folder, and root, may remove a
// file.
bool NSFileManager::isDeletableFileAtPath(NSString* path) {
    const SystemPlace place(systemPath(path));
    struct stat status, folder;
    if (!place || ::fstatat(place.folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (::faccessat(place.folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return false;
    if (::fstat(place.folder, &folder) != 0 || !(folder.st_mode & S_ISVTX)) return true;
    const uid_t user = ::geteuid();
    return user == 0 || user == status.st_uid || user == folder.st_uid || failWith(EPERM);
}

// MARK: Contents

namespace {

bool readNamesIn(const std::string& path, std::vector<std::string>& names) {
    if (!isSystemPath(path)) return false;
    Descriptor folder = openedAt(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY);
    return folder && readNames(folder, names);
}

void addSubpaths(int folder, const std::string& path, NSMutableArray* subpaths) {
    std::vector<std::string> names;
    readNames(folder, names);
    for (const std::string& name : names) {
        subpaths->addObject(stringOfSystemPath(path + name));
        Descriptor below = openedAt(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (below) addSubpaths(below, path + name + "/", subpaths);
    }
}

}  // namespace

NSArray* NSFileManager::directoryContentsAtPath(NSString* path) {
    std::vector<std::string> names;
    if (!readNamesIn(systemPath(path), names)) return nullptr;
    auto* contents = NSMutableArray::array();
    for (const std::string& name : names) contents->addObject(stringOfSystemPath(name));
    return contents;
}

bool NSFileManager::visitNamesInDirectory(const std::string& path,
                                          const std::function<void(std::string_view)>& visit) {
    if (!isSystemPath(path)) return false;
    Descriptor folder = openedAt(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY);
    return folder && visitNames(folder, visit);
}

NSArray* NSFileManager::subpathsAtPath(NSString* path) {
    const std::string name = systemPath(path);
    if (!isSystemPath(name)) return nullptr;
    Descriptor folder = openedAt(AT_FDCWD, name.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder) return nullptr;
    auto* subpaths = NSMutableArray::array();
    addSubpaths(folder, "", subpaths);
    return subpaths;
}

NSData* NSFileManager::contentsAtPath(NSString* path) { return NSData::dataWithContentsOfFile(path); }

bool NSFileManager::createFileAtPath_contents_attributes(NSString* path, NSData* contents,
                                                         NSDictionary* attributes) {
    const bool isPrivate = attributes && attributes->objectForKey(NSFilePosixPermissions);
    const auto bytes = contents ? contents->span() : std::span<const std::byte>();
    return writeFile(systemPath(path), bytes, isPrivate ? FileWriting::atomicPrivate : FileWriting::atomic) &&
           changeFileAttributes_atPath(attributes, path);
}

// MARK: Folders and links

bool NSFileManager::createDirectoryAtPath_attributes(NSString* path, NSDictionary* attributes) {
    const std::string name = systemPath(path);
    const mode_t rights = attributes && attributes->objectForKey(NSFilePosixPermissions) ? 0700 : 0777;
    return isSystemPath(name) && ::mkdir(name.c_str(), rights) == 0 &&
           changeFileAttributes_atPath(attributes, path);
}

bool NSFileManager::createSymbolicLinkAtPath_pathContent(NSString* path, NSString* otherPath) {
    const std::string name = systemPath(path), target = systemPath(otherPath);
    return isSystemPath(name) && isSystemPath(target) && ::symlink(target.c_str(), name.c_str()) == 0;
}

NSString* NSFileManager::pathContentOfSymbolicLinkAtPath(NSString* path) {
    const std::string name = systemPath(path);
    char target[PATH_MAX];
    const ssize_t length = isSystemPath(name) ? ::readlink(name.c_str(), target, sizeof target) : -1;
    return length < 0 ? nullptr : stringOfSystemPath({target, static_cast<std::size_t>(length)});
}

NSString* NSFileManager::currentDirectoryPath() {
    char path[PATH_MAX];
    return ::getcwd(path, sizeof path) ? stringOfSystemPath(path) : nullptr;
}

bool NSFileManager::changeCurrentDirectoryPath(NSString* path) {
    const std::string name = systemPath(path);
    return isSystemPath(name) && ::chdir(name.c_str()) == 0;
}

// MARK: Trees

namespace {

// Tells a handler, which may be null.
class HandlerWatcher : public TreeWatcher {
  public:
    HandlerWatcher(NSFileManager* manager, id handler)
        : _manager(manager),
          _handler(Retained<Object>::retaining(handler)),
          _hearsPaths(handler && responds(handler, "fileManager:willProcessPath:"_sel) ? handler : nullptr),
          _hearsErrors(handler && responds(handler, "fileManager:shouldProceedAfterError:"_sel) ? handler
                                                                                                : nullptr) {}

    void willProcess(const std::string& path) override {
        if (!_hearsPaths) return;
        AutoreleasePool pool;
        send<void>(_hearsPaths, "fileManager:willProcessPath:"_sel, _manager, stringOfSystemPath(path));
    }

    bool shouldProceed(int reason, const std::string& from, const std::string& to) override {
        if (!_hearsErrors) return false;
        AutoreleasePool pool;
        NSString* path = stringOfSystemPath(from);
        auto* error = NSFileError::errorWithCode_path_isWriting(reason, path, !to.empty());
        auto* report = NSMutableDictionary::dictionary();
        report->setObject_forKey(path, u"Path"_ns);
        report->setObject_forKey(error->localizedReason(), u"Error"_ns);
        if (!to.empty()) report->setObject_forKey(stringOfSystemPath(to), u"ToPath"_ns);
        return send<bool>(_hearsErrors, "fileManager:shouldProceedAfterError:"_sel, _manager, report);
    }

  private:
    static bool responds(id handler, SEL selector) {
        return send<bool>(handler, "respondsToSelector:"_sel, selector);
    }

    Unretained<NSFileManager> _manager;
    Retained<Object> _handler;  // what it is told may end its owner
    id _hearsPaths;
    id _hearsErrors;
};

}  // namespace

bool NSFileManager::copyPath_toPath_handler(NSString* source, NSString* destination, id handler) {
    HandlerWatcher watcher(this, handler);
    return copyTree(systemPath(source), systemPath(destination), watcher);
}

bool NSFileManager::copyFile_toPrivateFile(NSString* source, NSString* destination) {
    TreeWatcher watcher;
    return copyTree(systemPath(source), systemPath(destination), watcher, CopyRights::forOwner);
}

bool NSFileManager::isOwnFileAtPath(NSString* path) {
    const std::string name = systemPath(path);
    struct stat status;
    return isSystemPath(name) && ::lstat(name.c_str(), &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) && status.st_uid == ::geteuid();
}

bool NSFileManager::movePath_toPath_handler(NSString* source, NSString* destination, id handler) {
    HandlerWatcher watcher(this, handler);
    return moveTree(systemPath(source), systemPath(destination), watcher);
}

bool NSFileManager::removeFileAtPath_handler(NSString* path, id handler) {
    HandlerWatcher watcher(this, handler);
    return removeTree(systemPath(path), watcher);
}

// MARK: The system's paths

const char* NSFileManager::fileSystemRepresentationWithPath(NSString* path) {
    if (!path || systemPath(path).find('\0') != std::string::npos) return nullptr;
    return path->fileSystemRepresentation();
}

NSString* NSFileManager::stringWithFileSystemRepresentation_length(const char* bytes, NSUInteger length) {
    requireMemory(bytes, length, "stringWithFileSystemRepresentation:length:", "the bytes");
    return stringOfSystemPath({bytes, length});
}

}  // namespace pelvor
