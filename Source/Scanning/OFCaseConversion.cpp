// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCaseConversion.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr std::int32_t kInitialSize = 128;

bool isCapital(unichar unit) { return unit >= u'A' && unit <= u'Z'; }

unichar lowered(unichar unit) { return isCapital(unit) ? static_cast<unichar>(unit + 32) : unit; }

void ensureRoom(OFCaseConversionBuffer* record, NSUInteger count) {
    if (count <= static_cast<NSUInteger>(record->bufferSize)) return;
    auto* larger = static_cast<unichar*>(std::realloc(record->buffer, std::size_t{count} * sizeof(unichar)));
    if (!larger) throw NSException(NSMallocException, "OFCreateStringByLowercasingCharacters: no memory");
    record->buffer = larger;
    record->bufferSize = static_cast<std::int32_t>(count);
}

}  // namespace

void OFCaseConversionBufferInit(OFCaseConversionBuffer* record) {
    requireArgument(record, "OFCaseConversionBufferInit:", "the record");
    *record = {};
    ensureRoom(record, kInitialSize);
    record->string = NSMutableString::initWithCapacity(kInitialSize).leak();
}

void OFCaseConversionBufferDestroy(OFCaseConversionBuffer* record) {
    requireArgument(record, "OFCaseConversionBufferDestroy:", "the record");
    if (record->string) record->string->release();
    std::free(record->buffer);
    *record = {};
}

Retained<NSString> OFCreateStringByLowercasingCharacters(OFCaseConversionBuffer* record,
                                                         const unichar* characters, NSUInteger count) {
    requireArgument(record, "OFCreateStringByLowercasingCharacters:", "the record");
    requireMemory(characters, count, "OFCreateStringByLowercasingCharacters:", "the characters");
    unichar joined = 0;
    bool hasCapital = false;
    for (NSUInteger i = 0; i < count; ++i) {
        joined |= characters[i];
        hasCapital |= isCapital(characters[i]);
    }
    if (joined < 128 && !hasCapital) return NSString::initWithCharacters_length(characters, count);
    ensureRoom(record, count);
    if (joined < 128) {
        std::transform(characters, characters + count, record->buffer, lowered);
        return NSString::initWithCharacters_length(record->buffer, count);
    }
    record->string->replaceCharactersInRange_withUnits({0, record->string->length()}, {characters, count});
    return record->string->lowercaseString()->copy();
}

std::uint32_t OFCaseInsensitiveHash(const unichar* characters, NSUInteger length) {
    requireMemory(characters, length, "OFCaseInsensitiveHash:", "the characters");
    std::uint32_t hash = 0;
    for (NSUInteger i = 0; i < length; ++i) {
        unichar unit = characters[i];
        if (unit < 0x20 || unit > 0x7E)
            return static_cast<std::uint32_t>(NSString::of({characters, length})->lowercaseString()->hash());
        hash = std::rotr(hash, 7) | static_cast<std::uint32_t>(lowered(unit)) << 16;
    }
    return hash;
}

}  // namespace pelvor
