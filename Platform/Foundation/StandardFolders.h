// SPDX-License-Identifier: Apache-2.0
// Folders that every user has: home, temporary files, and those that have a type.
#pragma once

#include <cstdint>

#include "Foundation/NSString.h"

namespace pelvor {

/// The user's home folder: the environment variable HOME if it is an absolute path, else what the system's
/// list of users says. Borrowed, as all results here; any thread, as long as no thread changes the
/// environment.
PELVOR_EXPORT NSString* NSHomeDirectory();

/// The folder for temporary files, which all users may share: the environment variable TMPDIR if it names a
/// folder by an absolute path, else /tmp; null if that is no folder.
PELVOR_EXPORT NSString* NSTemporaryDirectory();

/// A type of folders: a code of four characters.
using FolderType = std::uint32_t;

/// folderType("asup")
constexpr FolderType folderType(const char (&code)[5]) {
    FolderType type = 0;
    for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<unsigned char>(code[i]);
    return type;
}

/// Whose folder is meant.
enum FolderDomain : int {
    FolderDomainUser,   ///< the user's own
    FolderDomainLocal,  ///< of all users, looked after by this machine's administrator: below /usr/local
    FolderDomainSystem  ///< of all users, as the system was installed: below /usr
};

/// Returns the path of the folder; null if there is no such folder in the domain or it cannot be made. A
/// missing folder is made, for the user alone. The types, and their places in the user's domain by the rules
/// of the desktop:
///
///     "asup"  what programs keep for themselves       $XDG_DATA_HOME    (~/.local/share)
///     "cach"  what programs can make again            $XDG_CACHE_HOME   (~/.cache)
///     "pref"  settings                                $XDG_CONFIG_HOME  (~/.config)
///     "desk"  what lies on the desktop                XDG_DESKTOP_DIR of user-dirs.dirs    (~/Desktop)
///     "docs"  documents                               XDG_DOCUMENTS_DIR of user-dirs.dirs  (~/Documents)
///     "down"  what was downloaded                     XDG_DOWNLOAD_DIR of user-dirs.dirs   (~/Downloads)
///     "temp"  temporary files                         `NSTemporaryDirectory`
///     "trsh"  what was thrown away                    $XDG_DATA_HOME/Trash/files
///
/// The other domains have "asup" (/usr/local/share, /usr/share) and "pref" (/usr/local/etc, /etc).
PELVOR_EXPORT NSString* folderOfType(FolderType type, FolderDomain domain);

}  // namespace pelvor
