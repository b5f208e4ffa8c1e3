// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextBlocks.h"

#include <algorithm>
#include <cstdint>

#include "Scanning/OFStringDecoder.h"
#include "Writer/PlugIns/TextFiles/TextUnits.h"
#include "Writer/PlugIns/TextFiles/UTF8Check.h"

namespace pelvor {
namespace {

std::size_t lengthOfCutUTF8(std::string_view block) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, block.size()); ++back) {
        const std::uint8_t byte = byteAt(block, block.size() - back);
        if (!isContinuation(byte)) return back < lengthAfterLead(byte) ? back : 0;
    }
    return 0;
}

bool isHighHalf(std::string_view block, std::size_t place, NSStringEncoding encoding) {
    const std::uint8_t high =
        byteAt(block, encoding == NSUTF16LittleEndianStringEncoding ? place + 1 : place);
    return (high & 0xFC) == 0xD8;
}

// The decoder lets through what is not valid, and puts something in its place.
bool decodeUTF8Block(std::string_view block, TextUnits& units) {
    if (!isUTF8(block)) return false;
    const auto count = static_cast<NSUInteger>(block.size());
    char16_t* room = units.reserve(count);
    const auto* bytes = reinterpret_cast<const unsigned char*>(block.data());
    const OFStringDecoderState state = OFInitialStateForEncoding(kCFStringEncodingUTF8);
    units.take(OFScanCharactersIntoBuffer(state, bytes, count, room, count).charactersProduced);
    return true;
}

}  // namespace

bool decodesInBlocks(NSStringEncoding encoding) {
    constexpr NSStringEncoding kEncodings[] = {
        NSASCIIStringEncoding,          NSUTF8StringEncoding,
        NSISOLatin1StringEncoding,      NSISOLatin2StringEncoding,
        NSWindowsCP1250StringEncoding,  NSWindowsCP1251StringEncoding,
        NSWindowsCP1252StringEncoding,  NSWindowsCP1253StringEncoding,
        NSWindowsCP1254StringEncoding,  NSMacOSRomanStringEncoding,
        NSUTF16BigEndianStringEncoding, NSUTF16LittleEndianStringEncoding,
        NSUTF32BigEndianStringEncoding, NSUTF32LittleEndianStringEncoding,
    };
    return std::find(std::begin(kEncodings), std::end(kEncodings), encoding) != std::end(kEncodings);
}

std::size_t lengthOfCutCharacter(std::string_view block, NSStringEncoding encoding) {
    switch (encoding) {
        case NSUTF8StringEncoding:
            return lengthOfCutUTF8(block);
        case NSUTF16BigEndianStringEncoding:
        case NSUTF16LittleEndianStringEncoding: {
            const std::size_t odd = block.size() % 2;
            const std::size_t even = block.size() - odd;
            return odd + (even >= 2 && isHighHalf(block, even - 2, encoding) ? 2 : 0);
        }
        case NSUTF32BigEndianStringEncoding:
        case NSUTF32LittleEndianStringEncoding:
            return block.size() % 4;
        default:
            return 0;
    }
}

bool decodeBlock(std::string_view block, NSStringEncoding encoding, TextUnits& units) {
    if (encoding == NSUTF8StringEncoding) return decodeUTF8Block(block, units);
    const auto text = decodeBytes(block, encoding);
    if (text) units.append(*text);
    return text.has_value();
}

}  // namespace pelvor
