// SPDX-License-Identifier: Apache-2.0
// Encodings with a byte for every character, in the machine's widest instructions; for the string decoder.
#pragma once

#include "Foundation/NSRange.h"

namespace pelvor {

/// Turns bytes into units: those below 0x80 are themselves, for the others `half` has what they stand for.
/// Bytes from 0x80 + `span` on are themselves, too. Only with Instructions::avx512 in use.
void decodeSinglyWide(const unichar* half, unsigned span, const unsigned char* bytes, NSUInteger count,
                      unichar* units);

}  // namespace pelvor
