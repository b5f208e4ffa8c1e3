// SPDX-License-Identifier: Apache-2.0
// RecoveryFile: the recovery file of one document.
#pragma once

#include <string>
#include <utility>

#include "Writer/Recovery/RecoveryFormat.h"

namespace pelvor {

/// A file descriptor and the lock that it may have; both go at its end.
class LockedFile {
  public:
    explicit LockedFile(int descriptor = -1) : _descriptor(descriptor) {}
    LockedFile(LockedFile&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}
    LockedFile& operator=(LockedFile&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    ~LockedFile();
    operator int() const { return _descriptor; }

  private:
    int _descriptor;
};

/// A recovery file, locked as long as this object lives. A whole text is written to another file, which takes
/// the name when it is on the disk, so that the name always stands for a text. One thread at a time.
///
/// Operations that fail return false with the reason in `errno`, and leave what was on the disk.
class RecoveryFile {
  public:
    /// A new file in the folder, which is made when the first text is written.
    explicit RecoveryFile(std::string folder);
    /// A file that is there.
    RecoveryFile(std::string folder, std::string name, LockedFile file);

    const std::string& folder() const { return _folder; }
    bool isThere() const { return _file >= 0; }
    /// Puts the text in the place of all that the file holds. The user was at `place` in it.
    bool writeText(NSData* origin, NSAttributedString* text, NSUInteger place);
    /// Adds an edit: the range of `text`, which is the whole text, took the place of `removed` units, and the
    /// user was at `place` in it. Writes the whole text instead where the edits have become longer than the
    /// text that they began with. The call before this one has succeeded, and was no `remove`.
    bool writeEdit(NSData* origin, NSAttributedString* text, NSRange range, NSUInteger removed,
                   NSUInteger place);
    void remove();

  private:
    bool makeUnfinished(LockedFile& made);
    bool finish(int made, std::string_view bytes);
    bool append(std::string_view bytes);

    std::string _folder, _name;
    LockedFile _file;
    RecoveryAttributes _attributes;
    std::uint64_t _textSize = 0, _size = 0;  // of the whole text, and of it with the edits
};

/// Opens a folder for recovery files and locks it; the lock is held while files get names or lose them. A
/// negative descriptor, with the reason in `errno`, if that cannot be done.
LockedFile lockedRecoveryFolder(const std::string& folder);

inline constexpr std::string_view kRecoveryExtension = ".recovery";
inline constexpr std::string_view kUnfinishedExtension = ".unfinished";
inline constexpr std::string_view kDamagedExtension = ".damaged";

}  // namespace pelvor
