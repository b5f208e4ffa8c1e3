// SPDX-License-Identifier: Apache-2.0
// Reading and writing whole files; for the platform's own sources.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "Foundation/Values/GrowingBytes.h"

namespace pelvor {

enum class FileReading : unsigned char {
    any,         ///< a pipe or a device too, which may wait for what somebody writes
    regularOnly  ///< what is no regular file is refused, without waiting
};

/// Reads a file to its end. Returns false, with the reason in `errno` and any `content`, when the file cannot
/// be opened or read, is a folder, holds 2^32 bytes or more, or is refused, which `errno` 0 tells.
bool readFile(const std::string& path, GrowingBytes& content, FileReading reading = FileReading::any);

/// Writes all bytes to an open file. Returns false with the reason in `errno` on failure.
bool writeAll(int file, std::span<const std::byte> content);

enum class FileWriting : unsigned char {
    direct,         ///< into the file itself; a failure may leave a part of the content
    atomic,         ///< into another file of the same folder, which takes the name when it is complete
    atomicPrivate,  ///< like `atomic`, and nobody but the file's owner may read or write the file afterwards
    atomicCache     ///< like `atomicPrivate`, but does not wait for the disk: a loss of power may cut it off
};

/// Writes a new file, or in the place of the old content of a file. Returns false, with the reason in
/// `errno`, on failure; an atomic write then has left the old file as it was.
///
/// - A symbolic link is followed, even a dangling one, and remains a link.
/// - Anything but a regular file (a pipe, a device, /dev/stdout) is written into directly. A pipe without a
///   reader is refused.
/// - An atomic write keeps owner, group, access rights and access list of the old file as far as the user may
///   set them; where the group cannot be kept, the new group may do no more than everybody. Other names of
///   the old file (hard links) keep the old content. A file that the user may not write is refused, although
///   the folder would allow to replace the file.
/// - When the process is killed, no other file stays behind, except in the moment before the new file takes
///   the name, or on a file system without unnamed files: then the next atomic write of the same file removes
///   what stayed.
PELVOR_EXPORT bool writeFile(const std::string& path, std::span<const std::byte> content,
                             FileWriting writing);

}  // namespace pelvor
