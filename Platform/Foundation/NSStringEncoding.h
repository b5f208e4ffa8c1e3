// SPDX-License-Identifier: Apache-2.0
// Text encodings: their numbers, names, and conversion between bytes and UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

/// The number of a text encoding.
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
    NSUnicodeStringEncoding = 10,  ///< UTF-16: read by its mark, written little-endian with a mark
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

/// Whether text that the encoding lacks may be replaced by something like it.
enum class EncodingLoss { refused, allowed };

/// Whether conversions to and from the encoding are at hand.
PELVOR_EXPORT bool isEncodingAvailable(NSStringEncoding encoding);

/// "Western (ISO Latin 1)": the encoding's name in English, or "" for an unknown number.
PELVOR_EXPORT std::string_view nameOfEncoding(NSStringEncoding encoding);

/// "iso-8859-1": the encoding's name in documents, or "" for an unknown number.
PELVOR_EXPORT std::string_view ianaNameOfEncoding(NSStringEncoding encoding);

/// The encoding that an IANA name or alias ("utf-8", "windows-1252") names; 0 when none does.
PELVOR_EXPORT NSStringEncoding encodingForName(std::string_view name);

/// The bytes as UTF-16, without the mark that tells the byte order of NSUnicodeStringEncoding and
/// NSUTF32StringEncoding; none if they are not valid in the encoding or
/// the encoding is unknown. Any thread.
PELVOR_EXPORT std::optional<std::u16string> decodeBytes(std::string_view bytes, NSStringEncoding encoding);

/// The text in the encoding; none if it does not fit without loss and loss is refused, or the encoding is
/// unknown. With loss, accents are dropped and what remains unknown becomes "?". Any thread.
PELVOR_EXPORT std::optional<std::string> encodeUnits(std::u16string_view units, NSStringEncoding encoding,
                                                     EncodingLoss loss = EncodingLoss::refused);

}  // namespace pelvor
