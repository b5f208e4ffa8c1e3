// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableString.h"

#include <algorithm>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSBufferString.h"
#include "Foundation/NSInlineString.h"

namespace pelvor {

namespace {

// Formats sent as messages have no arguments.
NSMutableString* formatAlone(NSString* format) { return NSMutableString::stringWithFormat(format); }
void appendFormatAlone(NSMutableString* string, NSString* format) { string->appendFormat(format); }

}  // namespace

PELVOR_DEFINE_CLASS(NSBufferString, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSMutableString, foundationLibrary) {
    methods.classLevel<"string", &NSMutableString::string>();
    methods.classLevel<"stringWithCapacity:", &NSMutableString::stringWithCapacity>();
    methods.classLevel<"stringWithString:", &NSMutableString::stringWithString>();
    methods.classLevel<"stringWithCharacters:length:", &NSMutableString::stringWithCharacters_length>();
    methods.classLevel<"stringWithUTF8String:", &NSMutableString::stringWithUTF8String>();
    methods.classLevelAs<"stringWithFormat:", &formatAlone>();
    methods.classLevel<"init", &NSMutableString::init>();
    methods.classLevel<"initWithCapacity:", &NSMutableString::initWithCapacity>();
    methods.classLevel<"initWithString:", &NSMutableString::initWithString>();
    methods.classLevel<"initWithCharacters:length:", &NSMutableString::initWithCharacters_length>();
    methods.classLevel<"initWithUTF8String:", &NSMutableString::initWithUTF8String>();

    methods.instance<"replaceCharactersInRange:withString:",
                     &NSMutableString::replaceCharactersInRange_withString>();
    methods.instance<"setString:", &NSMutableString::setString>();
    methods.instance<"appendString:", &NSMutableString::appendString>();
    methods.instance<"appendCharacters:length:", &NSMutableString::appendCharacters_length>();
    methods.instanceAs<"appendFormat:", &appendFormatAlone>();
    methods.instance<"insertString:atIndex:", &NSMutableString::insertString_atIndex>();
    methods.instance<"deleteCharactersInRange:", &NSMutableString::deleteCharactersInRange>();
}

// Creation

Retained<NSMutableString> NSMutableString::initWithCapacity(NSUInteger capacity) {
    auto string = make<NSBufferString>();
    string->reserve(capacity);
    return string;
}

Retained<NSMutableString> NSMutableString::init() { return make<NSBufferString>(); }

Retained<NSMutableString> NSMutableString::initWithString(NSString* string) {
    requireString(string, "initWithString:");
    NSUInteger length = string->length();
    auto copy = make<NSBufferString>();
    string->getCharacters_range(copy->resize(length), {0, length});
    return copy;
}

Retained<NSMutableString> NSMutableString::initWithCharacters_length(const unichar* characters,
                                                                     NSUInteger length) {
    auto string = make<NSBufferString>();
    std::copy_n(characters, length, string->resize(length));
    return string;
}

Retained<NSMutableString> NSMutableString::initWithUTF8String(const char* text) {
    auto string = NSString::initWithUTF8String(text);
    return string ? initWithString(string) : nullptr;
}

NSMutableString* NSMutableString::string() { return init().autorelease(); }

NSMutableString* NSMutableString::stringWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableString* NSMutableString::stringWithString(NSString* string) {
    return initWithString(string).autorelease();
}

NSMutableString* NSMutableString::stringWithCharacters_length(const unichar* characters, NSUInteger length) {
    return initWithCharacters_length(characters, length).autorelease();
}

NSMutableString* NSMutableString::stringWithUTF8String(const char* text) {
    return initWithUTF8String(text).autorelease();
}

NSMutableString* NSMutableString::of(std::u16string_view units) {
    return stringWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size()));
}

NSMutableString* NSMutableString::ofUTF8(std::string_view bytes) {
    return stringWithString(NSString::ofUTF8(bytes));
}

// Changing

void NSMutableString::replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units) {
    replaceCharactersInRange_withString(range, NSInlineString::create(units).get());
}

void NSMutableString::setString(NSString* string) {
    requireString(string, "setString:");
    if (string != this) replaceCharactersInRange_withString({0, length()}, string);
}

void NSMutableString::appendString(NSString* string) {
    requireString(string, "appendString:");
    replaceCharactersInRange_withString({length(), 0}, string);
}

void NSMutableString::appendCharacters_length(const unichar* characters, NSUInteger length) {
    append({characters, length});
}

void NSMutableString::insertString_atIndex(NSString* string, NSUInteger index) {
    requireString(string, "insertString:atIndex:");
    replaceCharactersInRange_withString({index, 0}, string);
}

void NSMutableString::deleteCharactersInRange(NSRange range) {
    replaceCharactersInRange_withUnits(range, {});
}

Retained<Object> NSMutableString::copyWithZone(void* zone) { return NSString::copyWithZone(zone); }

// NSBufferString

unichar NSBufferString::characterAtIndex(NSUInteger index) {
    requireIndex(index, length());
    return _units[index];
}

void NSBufferString::getCharacters_range(unichar* buffer, NSRange range) {
    requireRange(range, length());
    std::copy_n(_units.data() + range.location, range.length, buffer);
}

void NSBufferString::replaceCharactersInRange_withString(NSRange range, NSString* string) {
    requireString(string, "replaceCharactersInRange:withString:");
    requireRange(range, length());
    StringUnits units(string);
    replaceCharactersInRange_withUnits(range, units);
}

void NSBufferString::replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units) {
    requireRange(range, length());
    _units.replace(range.location, range.length, units);
}

unichar* NSBufferString::resize(NSUInteger length) {
    _units.resize(length);
    return _units.data();
}

}  // namespace pelvor
