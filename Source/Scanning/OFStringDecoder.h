// SPDX-License-Identifier: Apache-2.0
// OFStringDecoder: turns bytes into UTF-16 in steps of any size.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

/// The platform's number of a text encoding in this interface, which is not an NSStringEncoding.
using CFStringEncoding = std::uint32_t;

enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingKOI8_R = 0x0A02,
    kCFStringEncodingMacRomanLatin1 = 0x0A04,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingUTF8 = 0x08000100,
};

/// What one call leaves for the next: a plain value that holds no resources.
struct OFStringDecoderState {
    CFStringEncoding encoding;
    std::uint32_t partialCharacter;     ///< of UTF-8: the bits of a character cut in two
    std::uint16_t utf8octetsremaining;  ///< how many bytes of it are still to come
};

struct OFCharacterScanResult {
    OFStringDecoderState state;
    NSUInteger bytesConsumed;
    NSUInteger charactersProduced;
};

/// Where decoding begins. Raises NSInvalidArgumentException for an encoding that cannot be scanned.
PELVOR_EXPORT OFStringDecoderState OFInitialStateForEncoding(CFStringEncoding encoding);
/// Whether the encoding is one of those above.
PELVOR_EXPORT bool OFCanScanEncoding(CFStringEncoding encoding);
/// Whether it is one of them with a byte for every character.
PELVOR_EXPORT bool OFEncodingIsSimple(CFStringEncoding encoding);
/// Whether the input so far ends inside a character.
PELVOR_EXPORT bool OFDecoderContainsPartialCharacters(OFStringDecoderState state);

/// Decodes bytes until they or the room for units are used up. Bytes that are no character become U+FFFD,
/// also ISO Latin 1's 0x80 to 0x9F; overlong forms and halves of pairs are decoded as they are. In UTF-8 a
/// character of two units that finds room for one is lost, with its bytes consumed: leave room for two.
/// Raises NSInvalidArgumentException for an encoding that cannot be scanned.
PELVOR_EXPORT OFCharacterScanResult OFScanCharactersIntoBuffer(OFStringDecoderState state,
                                                               const unsigned char* bytes,
                                                               NSUInteger byteCount, unichar* characters,
                                                               NSUInteger capacity);

}  // namespace pelvor
