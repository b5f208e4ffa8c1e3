// SPDX-License-Identifier: Apache-2.0
// Reading and writing whole files; for Foundation's own sources.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace pelvor {

/// Reads a file to its end. False, with `content` open, when it cannot be opened or read, is a folder, or
/// holds 2^32 bytes or more.
bool readFile(const std::string& path, std::vector<std::byte>& content);

enum class FileWriting : unsigned char {
    direct,
    atomic,        ///< by way of another file in the same folder that takes the name when it is complete
    atomicPrivate  ///< the same, and nobody else than the user may read or write the file, also an old one
};

/// Writes a file, new or in the place of an old one, whose access rights it keeps. False on failure.
bool writeFile(const std::string& path, std::span<const std::byte> content, FileWriting writing);

}  // namespace pelvor
