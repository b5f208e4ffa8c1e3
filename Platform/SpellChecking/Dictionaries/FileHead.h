// SPDX-License-Identifier: Apache-2.0
// Reading files that anybody may have put where we look.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace pelvor {

/// Which file it is, whatever names it has, and when it was written: a new file may have the number of an old
/// one.
struct FileIdentity {
    std::uint64_t device = 0, number = 0;
    std::int64_t written = 0;
    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

struct FileHead {
    std::string bytes;
    std::uint64_t size = 0;  ///< of the whole file
    FileIdentity identity;
};

/// Reads the first bytes of a regular file, without waiting. No value, with the reason in `errno`, if the
/// file cannot be read; the reason is 0 for what is no regular file. Any thread.
std::optional<FileHead> readHead(const std::string& path, std::size_t limit);

}  // namespace pelvor
