// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSPathStore2.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPathStore2, foundationLibrary) {
    methods.instance<"stringByResolvingSymlinksInPath", &NSPathStore2::stringByResolvingSymlinksInPath>();
}

NSPathStore2* NSPathStore2::of(std::u16string_view path) {
    auto length = static_cast<NSUInteger>(path.size());
    auto* string =
        Instances::createWithExtra<NSPathStore2>(path.size() * sizeof(unichar), &classRecord, length);
    std::char_traits<unichar>::copy(string->characters(), path.data(), path.size());
    return Retained<NSPathStore2>::adopting(string).autorelease();
}

unichar NSPathStore2::characterAtIndex(NSUInteger index) {
    requireIndex(index, _length, "characterAtIndex:");
    return characters()[index];
}

void NSPathStore2::getCharacters_range(unichar* buffer, NSRange range) {
    copyUnits(buffer, {characters(), _length}, range);
}

std::uintptr_t NSPathStore2::hash() { return cachedHash(_hash, {characters(), _length}); }

Retained<Object> NSPathStore2::copyWithZone(void*) { return Retained<Object>::retaining(this); }

NSString* NSPathStore2::stringByResolvingSymlinksInPath() {
    return NSString::stringByResolvingSymlinksInPath();
}

}  // namespace pelvor
