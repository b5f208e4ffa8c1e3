// SPDX-License-Identifier: Apache-2.0
// FolderListing: what is in a folder, in the order in which people look for it.
#pragma once

#include <sys/stat.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// What is in a folder: folders first, each kind in the order of the user's language, where numbers count as
/// numbers. Reading looks at no entry but links and those whose kind the folder does not tell, so that a
/// large folder, and one in which a file system hangs, takes no time; date and size are asked for when a row
/// is shown, and then without going to a server for them.
class FolderListing {
  public:
    struct Row {
        Retained<NSString> name;
        Retained<NSString> change, size;  // null until somebody asks
        bool isFolder = false;
    };

    FolderListing();
    ~FolderListing();

    /// Reads the folder in the place of what was read before. Entries whose names begin with a dot are left
    /// out unless `showsHidden`, and those for whose path `shows` returns false, if it is there. Returns
    /// false, with the reason in `errno`, and changes nothing if the folder cannot be read.
    bool read(NSString* folder, bool showsHidden, const std::function<bool(NSString*)>& shows);
    /// Whether entries have come or gone since.
    bool hasChanged();

    /// Null before the first read.
    NSString* folder() { return _folder; }
    const std::vector<Row>& rows() { return _rows; }
    /// Borrowed.
    NSString* pathOfRow(std::size_t row);
    /// The row of that name, or -1.
    NSInteger rowOfName(NSString* name);
    /// When the entry was changed, and how large a file is, as texts; "" for what cannot be told. Borrowed.
    NSString* changeOfRow(std::size_t row) { return lookedAt(row).change; }
    NSString* sizeOfRow(std::size_t row) { return lookedAt(row).size; }

    /// A row that is not in the folder, in front of all others; and takes it away again.
    void insertRow(NSString* name);
    void removeFirstRow() { _rows.erase(_rows.begin()); }

  private:
    class Formats;
    const Row& lookedAt(std::size_t row);

    std::unique_ptr<Formats> _formats;
    Retained<NSString> _folder;
    timespec _changeTime{};
    std::vector<Row> _rows;
};

}  // namespace pelvor
