// SPDX-License-Identifier: Apache-2.0
// Finding out which encoding the bytes of a text are in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {

/// An encoding that bytes may be in.
struct EncodingGuess {
    NSStringEncoding encoding;
    int confidence;  ///< 0 to 100; up to 10 stands for hardly more than "not impossible"
    std::string
        language;  ///< an ISO code ("ru"): one that the text may be in; empty where the guess says nothing
};

/// The encodings in which the bytes are valid text, the most confident first; empty where nothing fits. The
/// guesses come from marks at the front, from the statistics of languages, and from the letters of the
/// languages that an encoding was made for. UTF-16 and UTF-32 are found without a mark, too. The first few
/// thousand bytes decide, and the last character may be cut, so that a sample from the front of a file is
/// enough. The less text there is, the less the guesses are worth: below a hundred bytes they are often
/// wrong. Any thread.
///
///     for (const EncodingGuess& guess : detectEncodings(bytes))
///         if (guess.confidence >= 50) return guess.encoding;
PELVOR_EXPORT std::vector<EncodingGuess> detectEncodings(std::string_view bytes);

/// A mark at the front of a text, which tells its encoding (a "byte order mark").
struct EncodingMark {
    NSStringEncoding encoding;  ///< one with a byte order, such as NSUTF16LittleEndianStringEncoding
    std::string_view bytes;     ///< lives as long as the program
};

/// The mark that the bytes begin with, if any.
PELVOR_EXPORT std::optional<EncodingMark> encodingMarkOf(std::string_view bytes);

/// The mark that texts in the encoding may begin with; empty for encodings without one. For encodings that
/// leave the byte order to the mark (NSUnicodeStringEncoding, NSUTF32StringEncoding) the mark is the
/// little-endian one; `encodeUnits` writes this mark itself.
PELVOR_EXPORT std::string_view markOfEncoding(NSStringEncoding encoding);

}  // namespace pelvor
