// SPDX-License-Identifier: Apache-2.0
// Unique and temporary names, the trash, aliases, folders of the system, and why an operation on a file
// failed.
//
//     NSFileManager* files = NSFileManager::defaultManager();
//     int result = moveFileAtPath_toPath(files, draft, letter);
//     if (result != PBFileOperationSuccess) complain(PBLocalizedMessageForFileOperationResult(result));
//
// The results are few. Behind a failure, NSFileError::lastWriteErrorAtPath(letter) tells what the system
// said: that the disk is full, where the result is just `PBFileOperationFailure`.
//
// Nothing here raises but for a null file manager, which raises NSInvalidArgumentException; null is a path to
// nowhere. Objects are borrowed. Main thread.
#pragma once

#include "Foundation/NSFileManager.h"
#include "Foundation/StandardFolders.h"

namespace pelvor {

struct Category;
class NSLock;

/// What became of a move, a copy, or a file that was thrown away.
enum PBFileOperationResult : int {
    PBFileOperationSuccess = 0,
    PBFileOperationNoSource = 1,          ///< the source does not exist
    PBFileOperationDestinationTaken = 2,  ///< the destination exists already
    PBFileOperationNoFolder = 3,          ///< the destination's folder does not exist
    PBFileOperationDenied = 4,            ///< permission was denied
    PBFileOperationFailure = 5            ///< any other failure
};

/// Whether and why not a file can be read.
enum PBFileAccess : int {
    PBFileIsReadable = 0,
    PBFileFolderMissing = 2,  ///< a folder of the path does not exist
    PBFileFolderDenied = 4,   ///< a folder of the path cannot be read
    PBFileMissing = 8,        ///< the file does not exist; its folder can be read
    PBFileDenied = 16         ///< the file exists and cannot be read
};

/// The text for a result in the user's language: "the file already exists". Numbers that are no result have
/// the text of `PBFileOperationFailure`.
PELVOR_EXPORT NSString* PBLocalizedMessageForFileOperationResult(int result);
/// The text for an access in the user's language: "permission denied"; "" for numbers that are no access.
PELVOR_EXPORT NSString* PBLocalizedMessageForFileAccessType(int access);

// Names

/// Returns a name that nothing in the folder has: the name itself if it is free, else "Report-1.txt",
/// "Report-2.txt" and so on for the suffix "-%d", which stands before the extension and has one conversion of
/// an integer. Returns null if all numbers up to 99,997 are taken, and for null.
PELVOR_EXPORT NSString* uniqueFileName_withSuffix_inFolder(NSFileManager* manager, NSString* fileName,
                                                           NSString* suffix, NSString* folder);
/// The same with the suffix " (%d)".
PELVOR_EXPORT NSString* uniqueFileName_inFolder(NSFileManager* manager, NSString* fileName, NSString* folder);
/// Returns a path for a new file in the folder for temporary files, with the suffix "-%d" where the name is
/// taken; null if no name is free. The file is not made: who makes it has to refuse what another program put
/// there meanwhile.
PELVOR_EXPORT NSString* tempFilePathWithFileName(NSFileManager* manager, NSString* fileName);

// Temporary archives

/// Returns the path of a new temporary file, for the user alone: a copy, if the file is an archive already by
/// its extension (zip, cpio, sit, sitx), else a compressed cpio archive of it. Returns null if the file
/// cannot be read or archived.
///
/// The archiver is the program "ditto", which is looked for once in the life of the process: at
/// /usr/bin/ditto, then by "which" along the search path, at the end of which is the archiver that belongs to
/// the library. The log tells where it is or that there is none. Waits for the archiver, which says on
/// standard error why it fails, and then leaves nothing behind.
PELVOR_EXPORT NSString* tempArchiveForFileAtPath(NSFileManager* manager, NSString* path);

// Folders

/// Returns the path of the folder of that type, which is made if it is missing; null on failure.
/// `folderOfType` lists the types.
PELVOR_EXPORT NSString* findSystemFolderType_forDomain(NSFileManager* manager, FolderType type,
                                                       FolderDomain domain);
/// Returns the folder "Pelvor Writer" in the folder of the type "asup". The folder itself is not made.
PELVOR_EXPORT NSString* ourApplicationSupportFolderForDomain(NSFileManager* manager, FolderDomain domain);
/// Makes a folder, and before it those above it that are missing, all with these attributes. Returns false if
/// one of them cannot be made, if the path exists already, and if it has no folder above it.
PELVOR_EXPORT bool createDirectoryRecursiveAtPath_attributes(NSFileManager* manager, NSString* path,
                                                             NSDictionary* attributes);

// Files

/// Sets the modification date to now. Returns whether this succeeded.
PELVOR_EXPORT bool touchFile(NSFileManager* manager, NSString* path);
/// Moves or copies a file or a folder to a path that does not exist. Returns a PBFileOperationResult. The
/// reason is looked for after the failure: a cause that leaves no trace, such as a full disk, is
/// `PBFileOperationFailure`, or, where the source's folder is read-only, `PBFileOperationDenied`, of a copy
/// too. `errno` has the system's reason.
PELVOR_EXPORT int moveFileAtPath_toPath(NSFileManager* manager, NSString* source, NSString* destination);
PELVOR_EXPORT int copyFileAtPath_toPath(NSFileManager* manager, NSString* source, NSString* destination);
/// Throws a file or a folder away: moves it to the user's trash, or to that of the file system that it is on,
/// in the format from which desktop programs restore it. Returns a PBFileOperationResult, as a move does;
/// `PBFileOperationFailure` if there is no trash. Where a full file system has no room for its trash, the
/// user's takes the file.
PELVOR_EXPORT int trashFileAtPath(NSFileManager* manager, NSString* path);
/// Does the same. `placeInTrash`, unless null, receives the path that the file has now, borrowed; null after
/// a failure.
PELVOR_EXPORT int trashFileAtPath_placeInTrash(NSFileManager* manager, NSString* path,
                                               NSString** placeInTrash);

// Aliases are symbolic links.

PELVOR_EXPORT bool isAliasAtPath(NSFileManager* manager, NSString* path);
/// Returns the path of the file that the alias leads to in the end, without any links; null if the path is no
/// alias, and if it leads nowhere or in a circle.
PELVOR_EXPORT NSString* resolvedPathForAliasAtPath(NSFileManager* manager, NSString* path);
/// Whether the name begins with a full stop.
PELVOR_EXPORT bool isFileHiddenAtPath(NSFileManager* manager, NSString* path);
/// Returns a PBFileAccess.
PELVOR_EXPORT int readAccessForFileAtPath(NSFileManager* manager, NSString* path);

// C++ only
/// What the load-time sequence makes ready for the host's own use. No operation of this file takes the locks.
struct PELVOR_EXPORT NSFileManager_PelvorAdditions {
    /// The hook of the load-time sequence.
    static void didLoad();
    /// The process's mask for new files when `didLoad` was called; 022 before.
    static unsigned fileCreationMask();
    /// Null before `didLoad` was called.
    static NSLock* temporaryNamesLock();
    static NSLock* scratchFolderLock();
    /// The host's to choose; null at first.
    static NSString* scratchFolder();
    static void setScratchFolder(NSString* path);
};

extern const Category NSFileManager_PelvorAdditions_category;

}  // namespace pelvor
