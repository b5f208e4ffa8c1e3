// SPDX-License-Identifier: Apache-2.0
// Lower-case strings and case-blind hashes of plain units, without work where the text is plain ASCII.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSMutableString.h"

namespace pelvor {

/// Storage that lower-casing uses again and again. Set up by `OFCaseConversionBufferInit`, freed by
/// `OFCaseConversionBufferDestroy`; one thread at a time.
struct OFCaseConversionBuffer {
    NSMutableString* string = nullptr;  ///< owned
    unichar* buffer = nullptr;          ///< owned
    std::int32_t bufferSize = 0;        ///< in units, 128 at first
};

/// Makes room for 128 units.
PELVOR_EXPORT void OFCaseConversionBufferInit(OFCaseConversionBuffer* record);
/// Frees what the record owns and zeroes it.
PELVOR_EXPORT void OFCaseConversionBufferDestroy(OFCaseConversionBuffer* record);

/// An owned string of the units in lower case, of no language in particular.
PELVOR_EXPORT Retained<NSString> OFCreateStringByLowercasingCharacters(OFCaseConversionBuffer* record,
                                                                       const unichar* characters,
                                                                       NSUInteger count);

/// The same for texts that differ in case only; 0 for none. Of text beyond printable ASCII it is the low
/// half of the lower-case string's hash, which differs from process to process.
PELVOR_EXPORT std::uint32_t OFCaseInsensitiveHash(const unichar* characters, NSUInteger length);

}  // namespace pelvor
