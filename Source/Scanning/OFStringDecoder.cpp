// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFStringDecoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Scanning/Private/UTF8Step.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

// What stands at 0x80 to 0x9F in Windows Latin 1.
constexpr unichar kWindowsLatin1[] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178,
};
static_assert(std::size(kWindowsLatin1) == 32);

// What each byte stands for.
using Table = std::array<unichar, 256>;

template <class UnitOf>
Table tableOf(UnitOf unitOf) {
    Table table;
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = byte < 0x80 ? static_cast<unichar>(byte) : unitOf(byte);
    return table;
}

Table platformTable(NSStringEncoding encoding) {
    return tableOf([=](unsigned byte) {
        char character = static_cast<char>(byte);
        auto units = decodeBytes({&character, 1}, encoding);
        return units && units->size() == 1 ? units->front() : kReplacementCharacter;
    });
}

Table latin1Table(const unichar* controls) {
    return tableOf([=](unsigned byte) {
        if (byte >= 0xA0) return static_cast<unichar>(byte);
        return controls ? controls[byte - 0x80] : kReplacementCharacter;
    });
}

// Null for an encoding that is not a byte a character.
const Table* tableOfEncoding(CFStringEncoding encoding) {
    switch (encoding) {
        case kCFStringEncodingMacRoman: {
            static const Table table = platformTable(NSMacOSRomanStringEncoding);
            return &table;
        }
        case kCFStringEncodingISOLatin1: {
            static const Table table = latin1Table(nullptr);
            return &table;
        }
        case kCFStringEncodingWindowsLatin1: {
            static const Table table = latin1Table(kWindowsLatin1);
            return &table;
        }
        case kCFStringEncodingASCII: {
            static const Table table = tableOf([](unsigned) { return kReplacementCharacter; });
            return &table;
        }
        case kCFStringEncodingKOI8_R: {
            static const Table table = platformTable(0x80000000u | kCFStringEncodingKOI8_R);
            return &table;
        }
        case kCFStringEncodingMacRomanLatin1: {
            static const Table table = platformTable(0x80000000u | kCFStringEncodingMacRomanLatin1);
            return &table;
        }
        case kCFStringEncodingNextStepLatin: {
            static const Table table = platformTable(NSNEXTSTEPStringEncoding);
            return &table;
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

// Most bytes stand for themselves: blocks are widened, and the other bytes then looked up one by one.
void decodeSingly(const Table& table, const unsigned char* bytes, NSUInteger count, unichar* units) {
    using Units16 = std::uint16_t __attribute__((vector_size(32)));
    // How many places from 0x80 on may stand for something else.
    unsigned end = 0x100;
    while (end > 0x80 && table[end - 1] == end - 1) --end;
    const auto span = static_cast<std::uint8_t>(end - 0x80);
    NSUInteger i = 0;
    for (; count - i >= 16; i += 16) {
        Bytes16 block = loadBytes(bytes + i);
        auto wide = __builtin_convertvector(block, Units16);
        std::memcpy(units + i, &wide, sizeof wide);
        for (unsigned others = bitsOf(block - 0x80 < span); others; others &= others - 1) {
            auto place = i + static_cast<NSUInteger>(std::countr_zero(others));
            units[place] = table[bytes[place]];
        }
    }
    for (; i < count; ++i) units[i] = table[bytes[i]];
}

}  // namespace

bool OFCanScanEncoding(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF8 || OFEncodingIsSimple(encoding);
}

bool OFEncodingIsSimple(CFStringEncoding encoding) { return tableOfEncoding(encoding) != nullptr; }

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
    requireMemory(bytes, byteCount, "OFScanCharactersIntoBuffer:", "the bytes");
    requireMemory(characters, capacity, "OFScanCharactersIntoBuffer:", "the characters");
    if (state.encoding == kCFStringEncodingUTF8) {
        UTF8Step step(state, {bytes, byteCount}, {characters, capacity});
        step.run();
        return {state, static_cast<NSUInteger>(step.input() - bytes),
                static_cast<NSUInteger>(step.output() - characters)};
    }
    const Table* table = tableOfEncoding(state.encoding);
    if (!table) raiseUnsupported(state.encoding);
    NSUInteger count = std::min(byteCount, capacity);
    decodeSingly(*table, bytes, count, characters);
    return {state, count, count};
}

}  // namespace pelvor
