// SPDX-License-Identifier: Apache-2.0
#include "NSFileManager-PelvorAdditions.h"

#include <limits.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <span>

#include "Foundation/DesktopTrash.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSLock.h"
#include "PBUtil.h"
#include "Private/UniqueNames.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

void defineAdditions(MethodTable<NSFileManager>& methods) {
    methods.classLevel<"didLoad", &NSFileManager_PelvorAdditions::didLoad>();
    methods.instance<"uniqueFileName:withSuffix:inFolder:", &uniqueFileName_withSuffix_inFolder>();
    methods.instance<"uniqueFileName:inFolder:", &uniqueFileName_inFolder>();
    methods.instance<"tempFilePathWithFileName:", &tempFilePathWithFileName>();
    methods.instance<"tempArchiveForFileAtPath:", &tempArchiveForFileAtPath>();
    methods.instance<"findSystemFolderType:forDomain:", &findSystemFolderType_forDomain>();
    methods.instance<"ourApplicationSupportFolderForDomain:", &ourApplicationSupportFolderForDomain>();
    methods
        .instance<"createDirectoryRecursiveAtPath:attributes:", &createDirectoryRecursiveAtPath_attributes>();
    methods.instance<"touchFile:", &touchFile>();
    methods.instance<"moveFileAtPath:toPath:", &moveFileAtPath_toPath>();
    methods.instance<"copyFileAtPath:toPath:", &copyFileAtPath_toPath>();
    methods.instance<"trashFileAtPath:", &trashFileAtPath>();
    methods.instance<"trashFileAtPath:placeInTrash:", &trashFileAtPath_placeInTrash>();
    methods.instance<"isAliasAtPath:", &isAliasAtPath>();
    methods.instance<"resolvedPathForAliasAtPath:", &resolvedPathForAliasAtPath>();
    methods.instance<"isFileHiddenAtPath:", &isFileHiddenAtPath>();
    methods.instance<"readAccessForFileAtPath:", &readAccessForFileAtPath>();
}

void requireManager(NSFileManager* manager, const char* operation) {
    requireArgument(manager, operation, "the receiver");
}

// The system's bytes; empty, as a path to nowhere, for null and for what the system has no name for.
std::string bytesOf(NSString* path) {
    const char* bytes = NSFileManager::defaultManager()->fileSystemRepresentationWithPath(path);
    return bytes ? bytes : "";
}

NSString* stringOf(const std::string& bytes) {
    return NSFileManager::defaultManager()->stringWithFileSystemRepresentation_length(
        bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

NameParts partsOf(NSString* name) {
    std::string whole = bytesOf(name);
    whole.resize(whole.find_last_not_of('/') + 1);
    return {whole, bytesOf(name->stringByDeletingPathExtension()), bytesOf(name->pathExtension())};
}

// Whether there is an entry, which may be a link to nowhere.
bool isThere(NSString* path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(bytesOf(path), error));
}

NSString* folderOf(NSString* path) { return path ? path->stringByDeletingLastPathComponent() : nullptr; }

// The folder that the system knows: that of a bare name is the current one.
NSString* systemFolderOf(NSString* path) {
    NSString* folder = folderOf(path);
    return folder && folder->length() == 0 ? u"."_ns : folder;
}

}  // namespace

constinit const Category NSFileManager_PelvorAdditions_category =
    Category::of<NSFileManager, defineAdditions>("PelvorAdditions");

// MARK: Messages

namespace {

struct Message {
    int code;
    NSString* key;
};

constexpr Message kResults[] = {
    {PBFileOperationSuccess, u"_success"_ns},
    {PBFileOperationNoSource, u"_the file does not exist"_ns},
    {PBFileOperationDestinationTaken, u"_the file already exists"_ns},
    {PBFileOperationNoFolder, u"_the enclosing folder does not exist"_ns},
    {PBFileOperationDenied, u"_permission was denied"_ns},
    {PBFileOperationFailure, u"_unknown file error"_ns},
};

constexpr Message kAccesses[] = {
    {PBFileIsReadable, u"_is readable"_ns},
    {PBFileFolderMissing, u"_enclosing folder does not exist"_ns},
    {PBFileFolderDenied, u"_permission denied to enclosing folder"_ns},
    {PBFileMissing, u"_file does not exist"_ns},
    {PBFileDenied, u"_permission denied"_ns},
};

NSString* messageFor(int code, std::span<const Message> messages, NSString* otherKey) {
    for (const Message& message : messages)
        if (message.code == code) return _PBDoLocalize(message.key, nullptr);
    return _PBDoLocalize(otherKey, nullptr);
}

}  // namespace

NSString* PBLocalizedMessageForFileOperationResult(int result) {
    return messageFor(result, kResults, u"_unknown file error"_ns);
}

NSString* PBLocalizedMessageForFileAccessType(int access) { return messageFor(access, kAccesses, u""_ns); }

// MARK: Names

NSString* uniqueFileName_withSuffix_inFolder(NSFileManager* manager, NSString* fileName, NSString* suffix,
                                             NSString* folder) {
    requireManager(manager, "uniqueFileName:withSuffix:inFolder:");
    const std::string place = bytesOf(folder);
    if (bytesOf(fileName).empty() || place.empty() || !suffix) return nullptr;
    const auto name = uniqueName(place, partsOf(fileName), suffix);
    return name ? stringOf(*name) : nullptr;
}

NSString* uniqueFileName_inFolder(NSFileManager* manager, NSString* fileName, NSString* folder) {
    requireManager(manager, "uniqueFileName:inFolder:");
    return uniqueFileName_withSuffix_inFolder(manager, fileName, u" (%d)"_ns, folder);
}

NSString* tempFilePathWithFileName(NSFileManager* manager, NSString* fileName) {
    requireManager(manager, "tempFilePathWithFileName:");
    if (!fileName) return nullptr;
    NSString* folder = NSTemporaryDirectory() ? NSTemporaryDirectory() : u"/tmp"_ns;
    NSString* name = uniqueFileName_withSuffix_inFolder(manager, fileName, u"-%d"_ns, folder);
    return name ? folder->stringByAppendingPathComponent(name) : nullptr;
}

// MARK: Folders

NSString* findSystemFolderType_forDomain(NSFileManager* manager, FolderType type, FolderDomain domain) {
    requireManager(manager, "findSystemFolderType:forDomain:");
    return folderOfType(type, domain);
}

NSString* ourApplicationSupportFolderForDomain(NSFileManager* manager, FolderDomain domain) {
    requireManager(manager, "ourApplicationSupportFolderForDomain:");
    NSString* folder = folderOfType(folderType("asup"), domain);
    return folder ? folder->stringByAppendingPathComponent(u"Pelvor Writer"_ns) : nullptr;
}

bool createDirectoryRecursiveAtPath_attributes(NSFileManager* manager, NSString* path,
                                               NSDictionary* attributes) {
    requireManager(manager, "createDirectoryRecursiveAtPath:attributes:");
    NSString* parent = folderOf(path);
    if (!parent || parent->length() == 0) return errno = ENOENT, false;
    if (path->length() >= PATH_MAX) return errno = ENAMETOOLONG, false;
    if (!manager->fileExistsAtPath(parent) &&
        !createDirectoryRecursiveAtPath_attributes(manager, parent, attributes))
        return false;
    return manager->createDirectoryAtPath_attributes(path, attributes);
}

// MARK: Files

bool touchFile(NSFileManager* manager, NSString* path) {
    requireManager(manager, "touchFile:");
    return manager->changeFileAttributes_atPath(NSDictionary::of({{NSFileModificationDate, NSDate::date()}}),
                                                path);
}

namespace {

int resultOfFailure(NSFileManager* manager, NSString* source, NSString* destination) {
    if (!isThere(source)) return PBFileOperationNoSource;
    if (isThere(destination)) return PBFileOperationDestinationTaken;
    NSString* folder = systemFolderOf(destination);
    if (!manager->fileExistsAtPath(folder)) return PBFileOperationNoFolder;
    if (!manager->isWritableFileAtPath(folder)) return PBFileOperationDenied;
    if (!manager->isReadableFileAtPath(source)) return PBFileOperationDenied;
    return manager->isWritableFileAtPath(systemFolderOf(source)) ? PBFileOperationFailure
                                                                 : PBFileOperationDenied;
}

// The result of an operation, for whose failure `errno` keeps its reason.
int resultOf(bool isDone, NSFileManager* manager, NSString* source, NSString* destination) {
    if (isDone) return PBFileOperationSuccess;
    const int reason = errno;
    const int result = resultOfFailure(manager, source, destination);
    errno = reason;
    return result;
}

// Room for the suffix, for the extension's full stop, and for what the name of the trash's own text has
// behind it.
constexpr std::size_t kLongestTrashName = 255 - sizeof(".trashinfo") - sizeof("-99999") - 1;

// The parts of the file's name, of which the base is shortened until the trash can keep it.
NameParts nameForTrash(NSString* path) {
    NameParts parts = partsOf(path->lastPathComponent());
    if (parts.name.size() <= kLongestTrashName) return parts;
    if (parts.extension.size() > kLongestTrashName / 2) parts.extension.clear();
    NSString* base = stringOf(parts.base);
    while (bytesOf(base).size() + parts.extension.size() > kLongestTrashName)
        base = base->substringToIndex(
            base->rangeOfComposedCharacterSequenceAtIndex(base->length() - 1).location);
    parts.base = bytesOf(base);
    parts.name = parts.base + (parts.extension.empty() ? "" : "." + parts.extension);
    return parts;
}

// The place of the file that was thrown away; no value, with the reason in `errno`, where it was not.
std::optional<std::string> putIntoTrash(const DesktopTrash& trash, const std::string& source,
                                        const NameParts& parts) {
    while (trash.make()) {
        auto name = uniqueName(trash.files(), parts, u"-%d"_ns,
                               [&](const std::string& candidate) { return trash.hasName(candidate); });
        if (!name) return errno = EEXIST, std::nullopt;
        if (trash.put(source, *name)) return trash.files() + "/" + *name;
        // Another program may have taken the name meanwhile.
        if (errno != EEXIST) break;
    }
    return {};
}

bool isWithoutRoom() { return errno == ENOSPC || errno == EDQUOT; }

}  // namespace

int moveFileAtPath_toPath(NSFileManager* manager, NSString* source, NSString* destination) {
    requireManager(manager, "moveFileAtPath:toPath:");
    const bool isDone = manager->movePath_toPath_handler(source, destination, nullptr);
    return resultOf(isDone, manager, source, destination);
}

int copyFileAtPath_toPath(NSFileManager* manager, NSString* source, NSString* destination) {
    requireManager(manager, "copyFileAtPath:toPath:");
    const bool isDone = manager->copyPath_toPath_handler(source, destination, nullptr);
    return resultOf(isDone, manager, source, destination);
}

int trashFileAtPath_placeInTrash(NSFileManager* manager, NSString* path, NSString** placeInTrash) {
    requireManager(manager, "trashFileAtPath:placeInTrash:");
    if (placeInTrash) *placeInTrash = nullptr;
    if (!isThere(path)) return errno = ENOENT, PBFileOperationNoSource;
    const std::string source = bytesOf(path);
    const NameParts parts = nameForTrash(path);
    DesktopTrash trash = DesktopTrash::ofFile(source);
    auto place = putIntoTrash(trash, source, parts);
    if (!place && isWithoutRoom()) place = putIntoTrash(trash = DesktopTrash::ofHome(), source, parts);
    if (place) {
        if (placeInTrash) *placeInTrash = stringOf(*place);
        return PBFileOperationSuccess;
    }
    const int reason = errno;
    const bool hasName = reason != EEXIST && manager->fileExistsAtPath(stringOf(trash.files()));
    errno = reason;
    // The name in the trash was free.
    NSString* destination = stringOf(trash.files())->stringByAppendingPathComponent(u" "_ns);
    return hasName ? resultOf(false, manager, path, destination) : PBFileOperationFailure;
}

int trashFileAtPath(NSFileManager* manager, NSString* path) {
    requireManager(manager, "trashFileAtPath:");
    return trashFileAtPath_placeInTrash(manager, path, nullptr);
}

// MARK: Aliases and access

bool isAliasAtPath(NSFileManager* manager, NSString* path) {
    requireManager(manager, "isAliasAtPath:");
    return manager->pathContentOfSymbolicLinkAtPath(path) != nullptr;
}

NSString* resolvedPathForAliasAtPath(NSFileManager* manager, NSString* path) {
    requireManager(manager, "resolvedPathForAliasAtPath:");
    if (!isAliasAtPath(manager, path)) return nullptr;
    std::error_code error;
    const std::string target = fs::canonical(bytesOf(path), error).string();
    return error ? nullptr : stringOf(target);
}

bool isFileHiddenAtPath(NSFileManager* manager, NSString* path) {
    requireManager(manager, "isFileHiddenAtPath:");
    return path && path->lastPathComponent()->hasPrefix(u"."_ns);
}

namespace {

// Which folder of the path, from the root on, is in the way of reading.
int accessAlong(NSFileManager* manager, NSString* path) {
    if (!path) return PBFileIsReadable;
    NSString* prefix = u""_ns;
    for (id component : path->pathComponents()) {
        prefix = prefix->stringByAppendingPathComponent(static_cast<NSString*>(component));
        if (!manager->fileExistsAtPath(prefix)) return PBFileFolderMissing;
        if (!manager->isReadableFileAtPath(prefix)) return PBFileFolderDenied;
    }
    return PBFileIsReadable;
}

}  // namespace

int readAccessForFileAtPath(NSFileManager* manager, NSString* path) {
    requireManager(manager, "readAccessForFileAtPath:");
    if (manager->isReadableFileAtPath(path)) return PBFileIsReadable;
    if (manager->fileExistsAtPath(path)) return PBFileDenied;
    if (manager->isReadableFileAtPath(systemFolderOf(path))) return PBFileMissing;
    return accessAlong(manager, path);
}

// MARK: The load-time sequence

namespace {

unsigned creationMask = 022;
// These objects are retained, and not released at the end of the process.
NSLock* namesLock = nullptr;
NSLock* scratchLock = nullptr;
NSString* scratchPath = nullptr;

}  // namespace

void NSFileManager_PelvorAdditions::didLoad() {
    creationMask = ::umask(022);
    ::umask(creationMask);
    if (!namesLock) namesLock = NSLock::init().leak();
    if (!scratchLock) scratchLock = NSLock::init().leak();
}

unsigned NSFileManager_PelvorAdditions::fileCreationMask() { return creationMask; }

NSLock* NSFileManager_PelvorAdditions::temporaryNamesLock() { return namesLock; }

NSLock* NSFileManager_PelvorAdditions::scratchFolderLock() { return scratchLock; }

NSString* NSFileManager_PelvorAdditions::scratchFolder() { return scratchPath; }

void NSFileManager_PelvorAdditions::setScratchFolder(NSString* path) {
    NSString* previous = std::exchange(scratchPath, path ? path->copy().leak() : nullptr);
    if (previous) previous->release();
}

}  // namespace pelvor
