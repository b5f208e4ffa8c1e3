// SPDX-License-Identifier: Apache-2.0
#include "Foundation/AttributedStrings/NSAttributedText.h"

#include "Foundation/FoundationLibrary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSAttributedText, foundationLibrary) {}
PELVOR_DEFINE_CLASS(NSAttributedMutableString, foundationLibrary) {}

unichar NSAttributedText::characterAtIndex(NSUInteger index) {
    requireIndex(index, text.length(), "characterAtIndex:");
    return text.unitAt(index);
}

void NSAttributedText::getCharacters_range(unichar* buffer, NSRange range) {
    requireRange(range, text.length(), "getCharacters:range:");
    requireMemory(buffer, range.length, "getCharacters:range:", "the buffer");
    text.copyUnits(buffer, range);
}

Retained<Object> NSAttributedText::copyWithZone(void* zone) {
    if (text.contiguousUnits()) return NSString::copyWithZone(zone);
    auto copy = make<NSAttributedText>();
    copy->text = text;
    return copy;
}

NSMutableString* NSAttributedMutableString::create(NSMutableAttributedString* owner) {
    auto string = make<NSAttributedMutableString>();
    string->_owner.set(owner);
    return std::move(string).autorelease();
}

}  // namespace pelvor
