// SPDX-License-Identifier: Apache-2.0
// Turns the bytes of a text file into text, and finds out the encoding where nobody names it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/UnitBuffer.h"
#include "Writer/PlugIns/TextFiles/TextFileSource.h"

namespace pelvor {

enum class TextFileFault {
    none,
    unreadable,       ///< the bytes could not be read, or are more than a string holds
    unknownEncoding,  ///< the name means nothing
    undecodable,      ///< the bytes are not valid in the encoding that was named
    notText,          ///< no encoding was named, and the bytes look like anything but text
};

/// The text of a file, and how certain it is that this is the text.
struct TextFileContent {
    TextFileFault fault = TextFileFault::none;
    UnitBuffer text{0};
    /// The name of the encoding by which the file is read in this way again. For UTF-16 and UTF-32 the name
    /// has the byte order.
    std::string encodingName;
    bool hasByteOrderMark = false;
    std::uint64_t byteCount = 0;
    /// If the encoding is a guess: how sure the guess is, from 0 to 100.
    std::optional<int> confidence;
    /// Other encodings that may be meant, the likeliest first; a few at most.
    std::vector<std::string> otherNames;
    /// The encoding whose byte-order mark the file begins with although it was read in another one; else "".
    std::string contradictingMark;
    /// Whether the encoding is a guess, and the text written in it would be other bytes than the file has.
    bool isLossy = false;
};

/// Called with the number of bytes that have been read, and the number of all bytes.
using TextFileProgress = std::function<void(std::uint64_t read, std::uint64_t length)>;

/// The file as text, without a byte-order mark. An empty name leaves the encoding to be found: by the mark,
/// else UTF-8 if the bytes are valid in it, else by what `detectEncodings` guesses, else windows-1252. No
/// guess is taken whose text has zeros or many controls. The file is read block by block, so that no more of
/// it is in memory than a block. Any thread; takes time in proportion to the bytes.
TextFileContent decodeTextFile(const TextFileSource& source, std::string_view encodingName,
                               const TextFileProgress& progress = {});

}  // namespace pelvor
