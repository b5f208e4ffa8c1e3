// SPDX-License-Identifier: Apache-2.0
// Copying and moving files and folders; for Foundation's own sources.
#pragma once

#include <string>
#include <vector>

namespace pelvor {

/// Hears what becomes of the entries of a tree.
class TreeWatcher {
  public:
    virtual ~TreeWatcher() = default;
    virtual void willProcess(const std::string&) {}
    /// Returns whether to go on with the other entries. `to` is empty for an entry that is removed.
    virtual bool shouldProceed([[maybe_unused]] int reason, [[maybe_unused]] const std::string& from,
                               [[maybe_unused]] const std::string& to) {
        return false;
    }
};

enum class CopyRights : unsigned char {
    asSource,  ///< owner, group, rights and access list of the source, as far as the user may set them
    forOwner   ///< nobody but the user may read or write the copy of a file
};

// The functions return false with the reason in `errno` if the entry itself did not come or go, or if an
// entry below it failed and the watcher did not want to go on. A symbolic link is copied, moved and removed
// itself.

/// Copies a file or a folder under a name that nothing has. The copy gets its name when it is complete; a
/// failure leaves nothing behind. Links, times, rights, holes and hard links within a folder are kept.
bool copyTree(const std::string& from, const std::string& to, TreeWatcher& watcher,
              CopyRights rights = CopyRights::asSource);

/// Gives a file or a folder a name that nothing has. To another file system it is copied and, once the copy
/// is safe, removed.
bool moveTree(const std::string& from, const std::string& to, TreeWatcher& watcher);

/// Copies the content of an open file, with its holes, into another open file, which is empty.
bool copyContent(int from, int to, long long size);

}  // namespace pelvor
