// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSString.h"

#include <unicode/ustring.h>

#include <cstring>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSInlineString.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSConstantString, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSString, foundationLibrary) {
    methods.classLevel<"string", &NSString::string>();
    methods.instance<"length", &NSString::length>();
    methods.instance<"characterAtIndex:", &NSString::characterAtIndex>();
    methods.instance<"getCharacters:range:", &NSString::getCharacters_range>();
    methods.instance<"UTF8String", &NSString::UTF8String>();
    methods.instance<"isEqualToString:", &NSString::isEqualToString>();
}

unichar NSConstantString::characterAtIndex(NSUInteger index) {
    if (index >= _length)
        throw NSException(NSRangeException, "index (" + std::to_string(index) + ") beyond bounds (" +
                                                std::to_string(_length) + ")");
    return _characters[index];
}

Retained<Object> NSConstantString::copyWithZone(void*) { return Retained<Object>::retaining(this); }

NSString* NSString::string() { return u""_ns; }

Retained<NSString> NSString::initWithCharacters_length(const unichar* characters, NSUInteger length) {
    auto string = NSInlineString::create(length);
    if (length) std::memcpy(string->characters(), characters, length * sizeof(unichar));
    return string;
}

NSString* NSString::of(std::u16string_view units) {
    return initWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size())).autorelease();
}

NSString* NSString::ofUTF8(std::string_view bytes) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    std::u16string units(bytes.size(), u'\0');
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, bytes.data(),
                         static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &error);
    return of(std::u16string_view(units.data(), static_cast<std::size_t>(length)));
}

void NSString::getCharacters_range(unichar* buffer, NSRange range) {
    for (NSUInteger i = 0; i < range.length; ++i) buffer[i] = characterAtIndex(range.location + i);
}

std::u16string NSString::toUTF16() {
    std::u16string units(length(), u'\0');
    getCharacters_range(units.data(), {0, length()});
    return units;
}

std::string NSString::toUTF8() {
    std::u16string units = toUTF16();
    std::string bytes(units.size() * 3, '\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t size = 0;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &size, units.data(),
                       static_cast<int32_t>(units.size()), 0xFFFD, nullptr, &error);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

const char* NSString::UTF8String() {
    std::string bytes = toUTF8();
    auto holder = NSInlineString::create(static_cast<NSUInteger>(bytes.size() / 2 + 1));
    char* text = reinterpret_cast<char*>(holder->characters());
    std::memcpy(text, bytes.c_str(), bytes.size() + 1);
    std::move(holder).autorelease();
    return text;
}

bool NSString::isEqual(id other) {
    auto* string = cast<NSString>(other);
    return string && isEqualToString(string);
}

bool NSString::isEqualToString(NSString* other) {
    return this == other || (other && length() == other->length() && toUTF16() == other->toUTF16());
}

std::uintptr_t NSString::hash() { return std::hash<std::u16string>()(toUTF16()); }

Retained<Object> NSString::copyWithZone(void*) {
    auto units = toUTF16();
    return initWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size()));
}

std::ostream& operator<<(std::ostream& stream, NSString* string) {
    return string ? stream << string->toUTF8() : stream << "(null)";
}

}  // namespace pelvor
