// SPDX-License-Identifier: Apache-2.0
// Turns the bytes of a text file into text, finding out the encoding where nobody names it.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

enum class TextFileFault {
    none,
    unknownEncoding,  ///< the name means nothing
    undecodable,      ///< the bytes are not valid in the encoding that was named
    notText,          ///< no encoding was named, and the bytes look like anything but text
};

/// The text of a file. Without a fault `encodingName` is a name that can be given back to read the file the
/// same way again.
struct TextFileContent {
    TextFileFault fault = TextFileFault::none;
    std::u16string text;
    std::string encodingName;
    bool hasByteOrderMark = false;
};

/// The bytes as text, without a byte-order mark. An empty name leaves the encoding to be found: by the mark,
/// else UTF-32 and UTF-16 by the places of their zeros, else UTF-8 if the bytes are valid in it, else
/// Windows-1252. Any thread; takes time in proportion to the bytes.
TextFileContent decodeTextFile(std::string_view bytes, std::string_view encodingName);

}  // namespace pelvor
