// SPDX-License-Identifier: Apache-2.0
// Lower-case strings and hashes that do not tell the cases apart; quick where the text is plain ASCII.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSMutableString.h"

namespace pelvor {

/// Storage that several lower-casing operations use one after the other:
///
///     OFCaseConversionBuffer buffer;
///     OFCaseConversionBufferInit(&buffer);
///     auto lower = OFCreateStringByLowercasingCharacters(&buffer, u"Word", 4);  // "word"
///     OFCaseConversionBufferDestroy(&buffer);
///
/// One thread at a time.
struct OFCaseConversionBuffer {
    NSMutableString* string = nullptr;  ///< owned
    unichar* buffer = nullptr;          ///< owned
    std::int32_t bufferSize = 0;        ///< in units, 128 at first
};

/// Sets a record up, with room for 128 units. What the record contained before does not matter.
PELVOR_EXPORT void OFCaseConversionBufferInit(OFCaseConversionBuffer* record);
/// Frees what the record owns, and zeroes the record.
PELVOR_EXPORT void OFCaseConversionBufferDestroy(OFCaseConversionBuffer* record);

/// A new string of the units in lower case, by the rules of no language in particular. Raises
/// NSInvalidArgumentException for null units with a count.
PELVOR_EXPORT Retained<NSString> OFCreateStringByLowercasingCharacters(OFCaseConversionBuffer* record,
                                                                       const unichar* characters,
                                                                       NSUInteger count);

/// A hash that is equal for texts that differ in case only; 0 for an empty text. The hash of text beyond
/// printable ASCII differs from process to process. Raises NSInvalidArgumentException for null units with a
/// length.
PELVOR_EXPORT std::uint32_t OFCaseInsensitiveHash(const unichar* characters, NSUInteger length);

}  // namespace pelvor
