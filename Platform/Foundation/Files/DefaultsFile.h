// SPDX-License-Identifier: Apache-2.0
// DefaultsFile: the file in which a domain of user defaults is kept; for NSUserDefaults.
#pragma once

#include <sys/stat.h>

#include <string>

#include "Foundation/NSDictionary.h"

namespace pelvor {

/// One file of settings, which other processes may change too.
class DefaultsFile {
  public:
    /// The file of the domain, in the user's folder for configuration.
    explicit DefaultsFile(const std::string& domain);

    /// Keeps other processes that use this class off the files of the folder while it lives.
    class Lock {
      public:
        explicit Lock(const DefaultsFile& file);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        int _folder;
    };

    enum class State : std::uint8_t { missing, read, damaged, unreadable };

    /// Reads the file. `content()` is what the file holds; null in every state but `read`. Damage is logged.
    State load();
    NSDictionary* content() const { return _content; }
    State state() const { return _state; }
    /// Returns whether the file is not the one that was read or written last, or could not be read.
    bool hasChanged() const;
    /// Writes the file, after renaming a damaged one. Returns false, with a line in the log, if that fails.
    bool save(NSDictionary* content);
    /// Makes the folder, for the user alone. Returns false if there is no folder afterwards.
    bool makeFolder() const;

  private:
    // Returns 0; where there is no file, clears `status` and returns the reason.
    int readStatus(struct stat& status) const;
    bool keepDamagedFile() const;

    std::string _folder;
    std::string _path;
    State _state = State::missing;
    struct stat _known = {};
    Retained<NSDictionary> _content;
};

}  // namespace pelvor
