// SPDX-License-Identifier: Apache-2.0
// Case and normal forms of strings.
#include <unicode/ubrk.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <memory>

#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {
namespace {

// The text that an ICU function writes to a buffer. If the first buffer is too short, the function is called
// again with one of the size that it named.
template <class Convert>
NSString* convertedText(NSString* string, Convert convert) {
    StringUnits units(string);
    std::u16string result(std::size_t{units.size()} + units.size() / 8 + 4, u'\0');
    while (true) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = convert(result.data(), static_cast<int32_t>(result.size()), units.data(),
                               static_cast<int32_t>(units.size()), &error);
        bool isShort = error == U_BUFFER_OVERFLOW_ERROR;
        if (!isShort && U_FAILURE(error)) return string->copy().autorelease();
        result.resize(static_cast<std::size_t>(size));
        if (!isShort) return NSString::of(result);
    }
}

NSString* normalizedText(NSString* string, const UNormalizer2* form) {
    return convertedText(string,
                         [form](UChar* to, int32_t room, const UChar* from, int32_t size, UErrorCode* error) {
                             return unorm2_normalize(form, from, size, to, room, error);
                         });
}

}  // namespace

// The root locale has no rules of its own, and the empty name stands for it.

NSString* NSString::uppercaseString() {
    return convertedText(this,
                         [](UChar* to, int32_t room, const UChar* from, int32_t size, UErrorCode* error) {
                             return u_strToUpper(to, room, from, size, "", error);
                         });
}

NSString* NSString::lowercaseString() {
    return convertedText(this,
                         [](UChar* to, int32_t room, const UChar* from, int32_t size, UErrorCode* error) {
                             return u_strToLower(to, room, from, size, "", error);
                         });
}

NSString* NSString::capitalizedString() {
    return convertedText(this,
                         [](UChar* to, int32_t room, const UChar* from, int32_t size, UErrorCode* error) {
                             return u_strToTitle(to, room, from, size, nullptr, "", error);
                         });
}

NSString* NSString::decomposedStringWithCanonicalMapping() {
    UErrorCode error = U_ZERO_ERROR;
    return normalizedText(this, unorm2_getNFDInstance(&error));
}

NSString* NSString::precomposedStringWithCanonicalMapping() {
    UErrorCode error = U_ZERO_ERROR;
    return normalizedText(this, unorm2_getNFCInstance(&error));
}

}  // namespace pelvor
