// SPDX-License-Identifier: Apache-2.0
// Turns the bytes of a text file into text, finding out the encoding where nobody names it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "Writer/PlugIns/TextFiles/TextFileSource.h"
#include "Writer/PlugIns/TextFiles/TextUnits.h"

namespace pelvor {

enum class TextFileFault {
    none,
    unreadable,       ///< the bytes could not be read, or are more than a string holds
    unknownEncoding,  ///< the name means nothing
    undecodable,      ///< the bytes are not valid in the encoding that was named
    notText,          ///< no encoding was named, and the bytes look like anything but text
};

/// The text of a file. Without a fault `encodingName` is a name that can be given back to read the file the
/// same way again.
struct TextFileContent {
    TextFileFault fault = TextFileFault::none;
    TextUnits text;
    std::string encodingName;
    bool hasByteOrderMark = false;
    std::uint64_t byteCount = 0;
};

/// Is told how many bytes have been read of how many.
using TextFileProgress = std::function<void(std::uint64_t read, std::uint64_t length)>;

/// The file as text, without a byte-order mark. An empty name leaves the encoding to be found: by the mark,
/// else UTF-32 and UTF-16 by the places of their zeros, else UTF-8 if the bytes are valid in it, else
/// Windows-1252. Most encodings are decoded block by block, so that no more of the file is in memory than a
/// block. Any thread; takes time in proportion to the bytes.
TextFileContent decodeTextFile(const TextFileSource& source, std::string_view encodingName,
                               const TextFileProgress& progress = {});

}  // namespace pelvor
