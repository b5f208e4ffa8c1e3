// SPDX-License-Identifier: Apache-2.0
// OFStringDecoder: functions that turn bytes into UTF-16 in steps of any size.
//
//     OFStringDecoderState state = OFInitialStateForEncoding(kCFStringEncodingUTF8);
//     while ((count = read(file, bytes, sizeof bytes)) > 0) {
//         OFCharacterScanResult result = OFScanCharactersIntoBuffer(state, bytes, count, units, count + 2);
//         text->appendCharacters_length(units, result.charactersProduced);
//         state = result.state;  // a character cut in two waits in here
//     }
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

/// A number that names a text encoding. These numbers differ from those of NSStringEncoding.
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

/// What one call of the decoder leaves for the next one: a plain value, which may be copied and dropped.
struct OFStringDecoderState {
    CFStringEncoding encoding;
    std::uint32_t partialCharacter;     ///< the bits of a UTF-8 character that is cut in two
    std::uint16_t utf8octetsremaining;  ///< how many bytes of that character are to come
};

struct OFCharacterScanResult {
    OFStringDecoderState state;
    NSUInteger bytesConsumed;
    NSUInteger charactersProduced;
};

/// The state in which decoding begins. Raises NSInvalidArgumentException for an encoding that
/// `OFCanScanEncoding` refuses.
PELVOR_EXPORT OFStringDecoderState OFInitialStateForEncoding(CFStringEncoding encoding);
/// Whether the encoding is in the list above.
PELVOR_EXPORT bool OFCanScanEncoding(CFStringEncoding encoding);
/// Whether the encoding is in the list above and has one byte for every character.
PELVOR_EXPORT bool OFEncodingIsSimple(CFStringEncoding encoding);
/// Whether the input so far ends inside a character.
PELVOR_EXPORT bool OFDecoderContainsPartialCharacters(OFStringDecoderState state);

/// Decodes bytes until the bytes or the room for units are used up. Bytes that are no character become
/// U+FFFD, among them 0x80 to 0x9F in ISO Latin 1. Overlong UTF-8 and halves of surrogate pairs in UTF-8 are
/// decoded to their values. A UTF-8 character of two units that finds room for one is lost, and its bytes
/// count as consumed: room for two units more than there are bytes loses nothing. Raises
/// NSInvalidArgumentException for an encoding that `OFCanScanEncoding` refuses, for null bytes with a count,
/// and for null units with a capacity.
PELVOR_EXPORT OFCharacterScanResult OFScanCharactersIntoBuffer(OFStringDecoderState state,
                                                               const unsigned char* bytes,
                                                               NSUInteger byteCount, unichar* characters,
                                                               NSUInteger capacity);

}  // namespace pelvor
