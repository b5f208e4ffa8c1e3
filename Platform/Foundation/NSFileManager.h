// SPDX-License-Identifier: Apache-2.0
// NSFileManager: what files and folders there are, and making, copying, moving and removing them.
#pragma once

#include <functional>

#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;
class NSData;
class NSDictionary;

// Keys of a file's attributes. Those marked with * can be changed.
inline constexpr NSString* NSFileType = u"NSFileType"_ns;                          ///< a type, see below
inline constexpr NSString* NSFileSize = u"NSFileSize"_ns;                          ///< in bytes
inline constexpr NSString* NSFileModificationDate = u"NSFileModificationDate"_ns;  ///< * an NSDate
inline constexpr NSString* NSFileCreationDate = u"NSFileCreationDate"_ns;  ///< an NSDate; may be missing
inline constexpr NSString* NSFilePosixPermissions = u"NSFilePosixPermissions"_ns;        ///< * a number, 0644
inline constexpr NSString* NSFileOwnerAccountID = u"NSFileOwnerAccountID"_ns;            ///< * a number
inline constexpr NSString* NSFileGroupOwnerAccountID = u"NSFileGroupOwnerAccountID"_ns;  ///< * a number
inline constexpr NSString* NSFileOwnerAccountName = u"NSFileOwnerAccountName"_ns;        ///< may be missing
inline constexpr NSString* NSFileGroupOwnerAccountName =
    u"NSFileGroupOwnerAccountName"_ns;                                         ///< may be missing
inline constexpr NSString* NSFileReferenceCount = u"NSFileReferenceCount"_ns;  ///< how many names it has
/// A number of the file system that the file is on; among the attributes of the file system, too.
inline constexpr NSString* NSFileSystemNumber = u"NSFileSystemNumber"_ns;
/// A number that no other file of that file system has.
inline constexpr NSString* NSFileSystemFileNumber = u"NSFileSystemFileNumber"_ns;

// Values of NSFileType.
inline constexpr NSString* NSFileTypeRegular = u"NSFileTypeRegular"_ns;
inline constexpr NSString* NSFileTypeDirectory = u"NSFileTypeDirectory"_ns;
inline constexpr NSString* NSFileTypeSymbolicLink = u"NSFileTypeSymbolicLink"_ns;
inline constexpr NSString* NSFileTypeSocket = u"NSFileTypeSocket"_ns;
inline constexpr NSString* NSFileTypeCharacterSpecial = u"NSFileTypeCharacterSpecial"_ns;
inline constexpr NSString* NSFileTypeBlockSpecial = u"NSFileTypeBlockSpecial"_ns;
inline constexpr NSString* NSFileTypePipe = u"NSFileTypePipe"_ns;

// Keys of a file system's attributes. Sizes are in bytes.
inline constexpr NSString* NSFileSystemSize = u"NSFileSystemSize"_ns;
inline constexpr NSString* NSFileSystemFreeSize =
    u"NSFileSystemFreeSize"_ns;  ///< what the user may still fill
inline constexpr NSString* NSFileSystemNodes = u"NSFileSystemNodes"_ns;
inline constexpr NSString* NSFileSystemFreeNodes = u"NSFileSystemFreeNodes"_ns;

/// What files and folders there are, and making, copying, moving and removing them.
///
///     NSFileManager* files = NSFileManager::defaultManager();
///     if (!files->copyPath_toPath_handler(draft, letter, nullptr))
///         complain(NSFileError::lastWriteErrorAtPath(letter)->localizedReason());
///
/// Operations that fail return false or null, and leave the reason in `errno`; they never raise. Null is a
/// path to nowhere, as the empty path is. A path with the character U+0000 is refused. A name that is not
/// UTF-8 becomes a string with a lone half for each byte that does not fit, and such a string leads to the
/// file again. Borrowed results; any thread.
///
/// Operations on a tree tell their handler, if it has these methods:
///
///     (void)fileManager:(NSFileManager*) willProcessPath:(NSString*)
///     (bool)fileManager:(NSFileManager*) shouldProceedAfterError:(NSDictionary*)
///
/// The second one is asked about every entry that fails, with its path as "Path", in a copy or move where it
/// was to go as "ToPath", and the reason in the user's language as "Error"; it returns whether to go on with
/// the other entries. Without a handler, the first failure ends the operation. Handlers are not retained, and
/// may raise.
class PELVOR_EXPORT NSFileManager : public NSObject {
    PELVOR_CLASS(NSFileManager, NSObject);

  public:
    static NSFileManager* defaultManager();

    // What there is. Links are followed, so that a link to nowhere does not exist.

    bool fileExistsAtPath(NSString* path);
    /// `isDirectory`, unless null, is set if there is a file.
    bool fileExistsAtPath_isDirectory(NSString* path, bool* isDirectory);
    bool isReadableFileAtPath(NSString* path);
    bool isWritableFileAtPath(NSString* path);
    bool isExecutableFileAtPath(NSString* path);
    /// Returns whether the rights of its folder let the user remove the entry, which may be a link.
    bool isDeletableFileAtPath(NSString* path);

    // Attributes

    /// Returns the attributes of the file, or of the link itself unless `traverseLink`; null if there is
    /// none.
    NSDictionary* fileAttributesAtPath_traverseLink(NSString* path, bool traverseLink);
    NSDictionary* fileSystemAttributesAtPath(NSString* path);
    /// Changes those attributes of the file, behind all links, that are given and can be changed; others are
    /// left alone. Owner, group, permissions and date are set in this order. Returns false at the first one
    /// whose value is of another class or that cannot be set, and leaves the rest as it was.
    bool changeFileAttributes_atPath(NSDictionary* attributes, NSString* path);

    // Contents

    /// Returns the names in the folder in the order of their bytes, without "." and "..".
    NSArray* directoryContentsAtPath(NSString* path);
    /// Returns the paths of all that is below the folder, starting behind the folder's own path: each folder,
    /// then what is in it. Links are not followed. A folder that cannot be read counts as empty, but the
    /// first.
    NSArray* subpathsAtPath(NSString* path);
    NSData* contentsAtPath(NSString* path);
    /// Writes a file as `NSData::writeToFile_atomically` does, and sets the attributes, which may be null.
    /// Null contents are empty. With permissions given, nobody but the user can open the file before they are
    /// set.
    bool createFileAtPath_contents_attributes(NSString* path, NSData* contents, NSDictionary* attributes);

    // Folders and links

    /// Makes a folder in a folder that is there. Returns false with EEXIST if the path exists.
    bool createDirectoryAtPath_attributes(NSString* path, NSDictionary* attributes);
    /// Makes a link to the other path, which need not exist.
    bool createSymbolicLinkAtPath_pathContent(NSString* path, NSString* otherPath);
    /// Returns the path that the link was made with; null if there is no link.
    NSString* pathContentOfSymbolicLinkAtPath(NSString* path);
    NSString* currentDirectoryPath();
    bool changeCurrentDirectoryPath(NSString* path);

    // Trees. A folder counts with all that is in it, a symbolic link itself. What is at the destination
    // already is never touched: then `errno` is EEXIST.

    /// Copies a file or a folder. Rights, times, the user's extended attributes, symbolic links, holes and
    /// hard links within a folder are kept, owner and access list as far as the user may set them; pipes,
    /// sockets and devices are made anew. The copy gets its name when it is complete, so that a failure
    /// leaves nothing behind, and a process that is killed leaves at most a hidden folder, which the next
    /// copy to that place removes. A folder cannot be copied or moved into itself.
    bool copyPath_toPath_handler(NSString* source, NSString* destination, id handler);
    /// Moves a file or a folder. On one file system this is one step. To another one, the source is copied
    /// and is removed when the copy is on the disk; an entry that cannot be copied ends the move whatever the
    /// handler says.
    bool movePath_toPath_handler(NSString* source, NSString* destination, id handler);
    /// Removes a file or a folder. What was removed before a failure is gone.
    bool removeFileAtPath_handler(NSString* path, id handler);

    // C++ only
    /// Copies a file, or the files of a folder, for the user alone: nobody else may ever read the copies. No
    /// handler.
    bool copyFile_toPrivateFile(NSString* source, NSString* destination);
    /// Hands over the names in the folder as the system's bytes, in the order in which the system has them.
    bool visitNamesInDirectory(const std::string& path, const std::function<void(std::string_view)>& visit);
    /// Whether the entry is a regular file or a folder, no link, that belongs to the user of the process.
    bool isOwnFileAtPath(NSString* path);

    // The system's paths

    /// Returns the path as zero-terminated bytes, which live as long as the current autorelease pool; null
    /// for null and for a path with U+0000.
    const char* fileSystemRepresentationWithPath(NSString* path);
    NSString* stringWithFileSystemRepresentation_length(const char* bytes, NSUInteger length);

  protected:
    NSFileManager() = default;
    ~NSFileManager() = default;
};

}  // namespace pelvor
