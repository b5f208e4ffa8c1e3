// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSConstantString.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSConstantString, foundationLibrary) {}

unichar NSConstantString::characterAtIndex(NSUInteger index) {
    requireIndex(index, _length, "characterAtIndex:");
    return _characters[index];
}

void NSConstantString::getCharacters_range(unichar* buffer, NSRange range) {
    copyUnits(buffer, {_characters, _length}, range);
}

std::uintptr_t NSConstantString::hash() { return cachedHash(_hash, {_characters, _length}); }

Retained<Object> NSConstantString::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
