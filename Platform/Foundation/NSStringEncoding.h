// SPDX-License-Identifier: Apache-2.0
// Text encodings: their numbers, names, and conversion between bytes and UTF-16. To find out which encoding
// bytes are in, see Foundation/EncodingDetection.h.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

class EncodingConverter;
class UnitBuffer;

/// The number of a text encoding. Encodings without a constant below are found by name:
///
///     NSStringEncoding encoding = encodingForName("Big5");
///     std::optional<std::u16string> text = decodeBytes(bytes, encoding);
///     if (!text) …  // the bytes are not valid Big5
///
/// A number is the same on every machine and in every version.
using NSStringEncoding = std::uint32_t;

enum : NSStringEncoding {
    NSASCIIStringEncoding = 1,
    NSNEXTSTEPStringEncoding = 2,
    NSJapaneseEUCStringEncoding = 3,
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
    NSSymbolStringEncoding = 6,
    NSNonLossyASCIIStringEncoding = 7,
    NSShiftJISStringEncoding = 8,
    NSISOLatin2StringEncoding = 9,
    NSUnicodeStringEncoding = 10,  ///< UTF-16: read by its byte order mark, written little-endian with one
    NSWindowsCP1251StringEncoding = 11,
    NSWindowsCP1252StringEncoding = 12,
    NSWindowsCP1253StringEncoding = 13,
    NSWindowsCP1254StringEncoding = 14,
    NSWindowsCP1250StringEncoding = 15,
    NSISO2022JPStringEncoding = 21,
    NSMacOSRomanStringEncoding = 30,
    NSUTF16StringEncoding = NSUnicodeStringEncoding,
    NSUTF16BigEndianStringEncoding = 0x90000100,
    NSUTF16LittleEndianStringEncoding = 0x94000100,
    NSUTF32StringEncoding = 0x8C000100,
    NSUTF32BigEndianStringEncoding = 0x98000100,
    NSUTF32LittleEndianStringEncoding = 0x9C000100,
};

/// Whether conversions to and from the encoding are available.
PELVOR_EXPORT bool isEncodingAvailable(NSStringEncoding encoding);

/// Every available encoding. Encodings that documents use most come first.
PELVOR_EXPORT std::vector<NSStringEncoding> availableEncodings();

/// "Western (ISO Latin 1)": the encoding's name in English. For an encoding that is rare today, the name that
/// `ianaNameOfEncoding` returns. "" for an unknown number.
PELVOR_EXPORT std::string_view nameOfEncoding(NSStringEncoding encoding);

/// "iso-8859-1": the encoding's name in documents, which is its registered (IANA) name if it has one. "" for
/// an unknown number.
PELVOR_EXPORT std::string_view ianaNameOfEncoding(NSStringEncoding encoding);

/// All names by which `encodingForName` finds the encoding, the document name first; empty for an unknown
/// number.
PELVOR_EXPORT std::vector<std::string_view> namesOfEncoding(NSStringEncoding encoding);

/// The encoding that a name stands for: a registered (IANA) or MIME name, an alias or the name of a code page
/// ("UTF-8", "latin1", "windows-1252", "cp1252", "x-sjis"). Case, punctuation and spaces are ignored. 0 for
/// an unknown name.
PELVOR_EXPORT NSStringEncoding encodingForName(std::string_view name);

/// Whether characters that the encoding lacks may be replaced by similar characters or by "?".
enum class EncodingLoss { refused, allowed };

/// The bytes as UTF-16. For NSUnicodeStringEncoding and NSUTF32StringEncoding, the mark that tells the byte
/// order is left out. No value if the bytes are not valid in the encoding, or the encoding is unknown. Any
/// thread.
PELVOR_EXPORT std::optional<std::u16string> decodeBytes(std::string_view bytes, NSStringEncoding encoding);

/// The text in the encoding. No value if the encoding is unknown, or if the encoding lacks a character of the
/// text and loss is refused. If loss is allowed, such a character loses its accent; if the encoding lacks the
/// character without the accent, too, the character becomes "?". Any thread.
PELVOR_EXPORT std::optional<std::string> encodeUnits(std::u16string_view units, NSStringEncoding encoding,
                                                     EncodingLoss loss = EncodingLoss::refused);

/// Decodes a text that comes in pieces. A piece may end in the middle of a character:
///
///     TextDecoder decoder(encoding);
///     std::u16string text;
///     while (readPiece(bytes))
///         if (!decoder.decode(bytes, text)) return false;
///     return decoder.finish(text);
///
/// The result is the text that `decodeBytes` returns for all pieces together. A decoder reads one text, on
/// one thread.
class PELVOR_EXPORT TextDecoder {
  public:
    /// If the encoding is unknown, `decode` and `finish` return false.
    explicit TextDecoder(NSStringEncoding encoding);
    TextDecoder(TextDecoder&& other) noexcept;
    TextDecoder& operator=(TextDecoder&& other) noexcept;
    ~TextDecoder();

    /// Decodes the next piece and appends the text to `units`. Returns false if the bytes so far are not
    /// valid in the encoding; after that, the decoder must not be used again.
    bool decode(std::string_view bytes, std::u16string& units);
    /// Ends the text, and appends to `units` what the decoder still holds. Returns false if the last piece
    /// ended in the middle of a character.
    bool finish(std::u16string& units);

    // The same into the buffer of a long text, which is quicker.

    bool decode(std::string_view bytes, UnitBuffer& units);
    bool finish(UnitBuffer& units);

  private:
    std::unique_ptr<EncodingConverter> _converter;
};

}  // namespace pelvor
