// SPDX-License-Identifier: Apache-2.0
// DesktopTrash: a folder of what the user threw away, in the format that desktop programs share.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "Runtime/Export.h"

namespace pelvor {

/// What a trash knows of a file that was thrown away.
struct TrashEntry {
    std::string name;      ///< in the folder `files`
    std::string original;  ///< the whole path that the file had
    std::time_t date = 0;  ///< when it was thrown away; 0 if that is unknown
};

/// A folder with the folders `files`, which holds what was thrown away, and `info`, which holds a text for
/// each file of `files`: whence it came, and when. The user's home folder has one, and every other file
/// system may have one. File managers list and restore what this class put there, and this class what they
/// put there:
///
///     DesktopTrash trash = DesktopTrash::ofFile(path);
///     if (!trash.put(path, "letter.txt")) …                       // `errno` tells the reason
///     for (const DesktopTrash& each : DesktopTrash::all())
///         for (const TrashEntry& entry : each.contents()) each.restore(entry);
///
/// Paths are the system's bytes (`NSString::fileSystemRepresentation`). Any thread.
class PELVOR_EXPORT DesktopTrash {
  public:
    static DesktopTrash ofHome();
    /// The trash on the file system of the file, which is made if it is missing; that of the home folder if
    /// the file system can have none, and for a path without a file.
    static DesktopTrash ofFile(const std::string& path);
    /// That of the home folder and those of all file systems that have one.
    static std::vector<DesktopTrash> all();

    std::string files() const { return _folder + "/files"; }
    /// Makes what is missing, for the user alone. Returns whether the trash can be used.
    bool make() const;
    bool hasName(const std::string& name) const;
    /// Throws a file away. Returns false with the reason in `errno`: EEXIST for a name that is taken.
    bool put(const std::string& path, const std::string& name) const;
    /// In the order of the bytes of the names. What has no readable text is left out, since nothing tells
    /// where it was.
    std::vector<TrashEntry> contents() const;
    /// Gives a file its old place back. Returns false with the reason in `errno`: EEXIST if the place is
    /// taken.
    bool restore(const TrashEntry& entry) const;

  private:
    DesktopTrash(std::string folder, std::string top) : _folder(std::move(folder)), _top(std::move(top)) {}

    static std::vector<DesktopTrash> ofFileSystem(const std::string& top);
    std::string textPath(const std::string& name) const { return _folder + "/info/" + name + ".trashinfo"; }
    bool holdsPath(const std::string& path) const;
    std::string pathToKeep(const std::string& path) const;
    std::optional<TrashEntry> entryNamed(const std::string& name) const;

    std::string _folder;
    std::string _top;  // where the paths in the texts begin; empty for the home folder's trash
};

}  // namespace pelvor
