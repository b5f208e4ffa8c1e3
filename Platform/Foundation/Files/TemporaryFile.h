// SPDX-License-Identifier: Apache-2.0
// Temporary files and folders beside what they are to become; for Foundation's own sources.
#pragma once

#include <sys/stat.h>

#include <functional>
#include <string>

#include "Shared/Descriptor.h"

namespace pelvor {

/// What stands in a folder under a name of its own until it is complete and takes its target's name. It is
/// locked while its process lives; whoever wants the name next removes what nobody has locked.
///
/// The names are the same for every write of a target, so that what was left is found, and short whatever the
/// length of the target's name.
class TemporaryEntry {
  public:
    /// `folder` remains the caller's.
    TemporaryEntry(int folder, std::string target) : _folder(folder), _target(std::move(target)) {}
    TemporaryEntry(const TemporaryEntry&) = delete;
    TemporaryEntry& operator=(const TemporaryEntry&) = delete;

    operator int() const { return _opened; }
    /// Takes the target's name, which nothing else may have: then `errno` is EEXIST.
    bool takeTarget();

  protected:
    ~TemporaryEntry() = default;

    // False if another process removed the entry before it was locked, because that process took it for one
    // that was left behind. On a file system without locks, nothing is taken for what was left behind.
    bool lock(bool hasName);
    bool giveUp();
    // Tries names until `make`, which leaves EEXIST in `errno` for a name that is taken, succeeds with one.
    bool takeName(const std::function<bool(const char*)>& make);
    bool removeAbandoned(const char* name);

    int _folder;
    std::string _target;
    std::string _name;
    Descriptor _opened;
};

/// A private file. Where the file system can do so, the file has no name until it is complete, and goes with
/// its process.
class TemporaryFile : public TemporaryEntry {
  public:
    using TemporaryEntry::TemporaryEntry;
    ~TemporaryFile();

    bool hasName() const { return !_name.empty(); }
    /// Opens the file for writing. The rights count for a file without a name, which nobody else can open.
    bool open(mode_t rights);
    /// Like the inherited operation, for a file with or without a name.
    bool takeTarget();
    /// Takes the target's name from whatever file has it.
    bool replaceTarget(bool isNew);

  private:
    bool link(const char* name);

    std::string _link;
};

/// A private folder.
class TemporaryTree : public TemporaryEntry {
  public:
    using TemporaryEntry::TemporaryEntry;
    /// Removes the folder with all that is in it, unless it took its target's name.
    ~TemporaryTree();

    bool open();
};

/// Gives an entry another name, which nothing else may have: then `errno` is EEXIST.
bool renameExclusively(int fromFolder, const char* from, int toFolder, const char* to);

}  // namespace pelvor
