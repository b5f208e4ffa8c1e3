// SPDX-License-Identifier: Apache-2.0
// Owner, group, access rights and access list of a file; for Foundation's own sources.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

namespace pelvor {

/// What one file has and another is to get.
class FileRights {
  public:
    /// Of an open file.
    FileRights(int file, const struct stat& status);
    FileRights(const std::string& path, const struct stat& status);

    /// Sets them on an open file as far as the user may and the file system can. A group for which the rights
    /// were not meant gets no more rights than everybody. Returns false, with the reason in `errno`, if the
    /// rights could be set and were not.
    bool giveTo(int file) const;

  private:
    bool giveListTo(int file) const;

    struct stat _status;
    std::vector<char> _list;
};

/// What the process gives to a new file.
mode_t rightsOfNewFile();

}  // namespace pelvor
