// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSInlineString.h"

#include "Foundation/FoundationLibrary.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSInlineString, foundationLibrary) {}

Retained<NSInlineString> NSInlineString::create(NSUInteger length) {
    return Retained<NSInlineString>::adopting(
        Instances::createWithExtra<NSInlineString>(length * sizeof(unichar), &classRecord, length));
}

unichar NSInlineString::characterAtIndex(NSUInteger index) {
    if (index >= _length)
        throw NSException(NSRangeException, "index (" + std::to_string(index) + ") beyond bounds (" +
                                                std::to_string(_length) + ")");
    return characters()[index];
}

Retained<Object> NSInlineString::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
