// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFStringDecoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Scanning/Private/UTF8Step.h"
#include "Scanning/Private/WideDecoding.h"
#include "Scanning/Private/WideInstructions.h"

namespace pelvor {
namespace {

constexpr unichar kReplacement = 0xFFFD;

// What stands at 0x80 to 0x9F in Windows Latin 1.
constexpr unichar kWindowsLatin1[] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178,
};
static_assert(std::size(kWindowsLatin1) == 32);

// What stands at 0x80 to 0xFF.
using UpperHalf = std::array<unichar, 128>;

// A platform encoding, byte by byte.
UpperHalf platformHalf(NSStringEncoding encoding) {
    UpperHalf half;
    for (unsigned i = 0; i < half.size(); ++i) {
        char byte = static_cast<char>(0x80 + i);
        auto units = decodeBytes({&byte, 1}, encoding);
        half[i] = units && units->size() == 1 ? units->front() : kReplacement;
    }
    return half;
}

UpperHalf latin1Half(CFStringEncoding encoding) {
    UpperHalf half;
    for (unsigned i = 0; i < half.size(); ++i) half[i] = static_cast<unichar>(0x80 + i);
    for (unsigned i = 0; i < 32; ++i)
        half[i] = encoding == kCFStringEncodingWindowsLatin1 ? kWindowsLatin1[i] : kReplacement;
    return half;
}

UpperHalf asciiHalf() {
    UpperHalf half;
    half.fill(kReplacement);
    return half;
}

// None for an encoding that is not a byte a character.
const UpperHalf* upperHalfOf(CFStringEncoding encoding) {
    switch (encoding) {
        case kCFStringEncodingMacRoman: {
            static const UpperHalf half = platformHalf(NSMacOSRomanStringEncoding);
            return &half;
        }
        case kCFStringEncodingISOLatin1: {
            static const UpperHalf half = latin1Half(encoding);
            return &half;
        }
        case kCFStringEncodingWindowsLatin1: {
            static const UpperHalf half = latin1Half(encoding);
            return &half;
        }
        case kCFStringEncodingASCII: {
            static const UpperHalf half = asciiHalf();
            return &half;
        }
        case kCFStringEncodingKOI8_R: {
            static const UpperHalf half = platformHalf(0x80000000u | kCFStringEncodingKOI8_R);
            return &half;
        }
        case kCFStringEncodingMacRomanLatin1: {
            static const UpperHalf half = platformHalf(0x80000000u | kCFStringEncodingMacRomanLatin1);
            return &half;
        }
        case kCFStringEncodingNextStepLatin: {
            static const UpperHalf half = platformHalf(NSNEXTSTEPStringEncoding);
            return &half;
        }
        default:
            return nullptr;
    }
}

// The other interface's numbers: its own for some, the rest with the highest bit set.
NSStringEncoding stringEncodingOf(CFStringEncoding encoding) {
    static constexpr struct {
        CFStringEncoding encoding;
        NSStringEncoding own;
    } known[] = {
        {0x0100, NSUnicodeStringEncoding},       {0x0202, NSISOLatin2StringEncoding},
        {0x0420, NSShiftJISStringEncoding},      {0x0501, NSWindowsCP1250StringEncoding},
        {0x0502, NSWindowsCP1251StringEncoding}, {0x0503, NSWindowsCP1253StringEncoding},
        {0x0504, NSWindowsCP1254StringEncoding}, {0x0820, NSISO2022JPStringEncoding},
        {0x0920, NSJapaneseEUCStringEncoding},   {0x0BFF, NSNonLossyASCIIStringEncoding},
    };
    for (const auto& entry : known)
        if (entry.encoding == encoding) return entry.own;
    return 0x80000000u | encoding;
}

[[noreturn]] void raiseUnsupported(CFStringEncoding encoding) {
    NSString* name = NSString::ofUTF8(nameOfEncoding(stringEncodingOf(encoding)));
    raiseException(NSInvalidArgumentException,
                   u"Unsupported character encoding in fast string decoder: %d (%@)"_ns,
                   static_cast<int>(encoding), name->length() ? name : nullptr);
}

using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Units16 = std::uint16_t __attribute__((vector_size(32)));

// Sixteen bytes as units, then those again that are in [0x80, 0x80 + span).
void decodeSixteen(const UpperHalf& half, unsigned span, const unsigned char* bytes, unichar* units) {
    Bytes16 block;
    std::memcpy(&block, bytes, sizeof block);
    Units16 wide = __builtin_convertvector(block, Units16);
    std::memcpy(units, &wide, sizeof wide);
    auto special = static_cast<Bytes16>(block - 0x80 < static_cast<std::uint8_t>(span));
    std::uint64_t words[2];
    std::memcpy(words, &special, sizeof words);
    if (!(words[0] | words[1])) return;
    for (int i = 0; i < 16; ++i)
        if (bytes[i] >= 0x80) units[i] = half[bytes[i] & 0x7F];
}

void decodeSingly(const UpperHalf& half, const unsigned char* bytes, NSUInteger count, unichar* units) {
    // How many places from 0x80 on may be something else than their byte.
    unsigned span = 0x80;
    while (span > 0 && half[span - 1u] == 0x80 + span - 1) --span;
    if (instructionsInUse() == Instructions::avx512)
        return decodeSinglyWide(half.data(), span, bytes, count, units);
    NSUInteger i = 0;
    for (; count - i >= 16; i += 16) decodeSixteen(half, span, bytes + i, units + i);
    for (; i < count; ++i) units[i] = bytes[i] < 0x80 ? bytes[i] : half[bytes[i] & 0x7F];
}

}  // namespace

bool OFCanScanEncoding(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF8 || OFEncodingIsSimple(encoding);
}

bool OFEncodingIsSimple(CFStringEncoding encoding) { return upperHalfOf(encoding) != nullptr; }

OFStringDecoderState OFInitialStateForEncoding(CFStringEncoding encoding) {
    if (!OFCanScanEncoding(encoding)) raiseUnsupported(encoding);
    return {encoding, 0, 0};
}

bool OFDecoderContainsPartialCharacters(OFStringDecoderState state) {
    return state.encoding == kCFStringEncodingUTF8 && state.utf8octetsremaining != 0;
}

OFCharacterScanResult OFScanCharactersIntoBuffer(OFStringDecoderState state, const unsigned char* bytes,
                                                 NSUInteger byteCount, unichar* characters,
                                                 NSUInteger capacity) {
    if (state.encoding == kCFStringEncodingUTF8) {
        UTF8Step step(state, {bytes, byteCount}, {characters, capacity});
        step.run();
        return {state, static_cast<NSUInteger>(step.input() - bytes),
                static_cast<NSUInteger>(step.output() - characters)};
    }
    const UpperHalf* half = upperHalfOf(state.encoding);
    if (!half) raiseUnsupported(state.encoding);
    NSUInteger count = std::min(byteCount, capacity);
    decodeSingly(*half, bytes, count, characters);
    return {state, count, count};
}

}  // namespace pelvor
