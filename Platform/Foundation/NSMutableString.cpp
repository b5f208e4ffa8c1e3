// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableString.h"

#include <algorithm>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/Strings/NSBufferString.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Strings/TextFinder.h"
#include "Foundation/UnitBuffer.h"

namespace pelvor {

namespace {

// Formats sent as messages have no arguments.
NSMutableString* formatAlone(NSString* format) { return NSMutableString::stringWithFormat(format); }
Retained<NSMutableString> initFormatAlone(NSString* format) {
    return NSMutableString::initWithFormat(format);
}
void appendFormatAlone(NSMutableString* string, NSString* format) { string->appendFormat(format); }

}  // namespace

PELVOR_DEFINE_CLASS(NSBufferString, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSMutableString, foundationLibrary) {
    methods.creator<"string", &NSMutableString::string>();
    methods.creator<"stringWithCapacity:", &NSMutableString::stringWithCapacity>();
    methods.creator<"stringWithString:", &NSMutableString::stringWithString>();
    methods.creator<"stringWithCharacters:length:", &NSMutableString::stringWithCharacters_length>();
    methods.creator<"stringWithUTF8String:", &NSMutableString::stringWithUTF8String>();
    methods.creator<"stringWithCString:encoding:", &NSMutableString::stringWithCString_encoding>();
    methods.creatorAs<"stringWithFormat:", &formatAlone>();
    methods
        .creator<"stringWithContentsOfFile:encoding:", &NSMutableString::stringWithContentsOfFile_encoding>();
    methods.creator<"stringWithContentsOfFile:", &NSMutableString::stringWithContentsOfFile>();
    methods.creator<"init", &NSMutableString::init>();
    methods.creator<"initWithCapacity:", &NSMutableString::initWithCapacity>();
    methods.creator<"initWithString:", &NSMutableString::initWithString>();
    methods.creator<"initWithCharacters:length:", &NSMutableString::initWithCharacters_length>();
    methods.creator<"initWithCharactersNoCopy:length:freeWhenDone:",
                    &NSMutableString::initWithCharactersNoCopy_length_freeWhenDone>();
    methods.creator<"initWithUTF8String:", &NSMutableString::initWithUTF8String>();
    methods.creator<"initWithCString:encoding:", &NSMutableString::initWithCString_encoding>();
    methods.creator<"initWithBytes:length:encoding:", &NSMutableString::initWithBytes_length_encoding>();
    methods.creator<"initWithData:encoding:", &NSMutableString::initWithData_encoding>();
    methods.creator<"initWithContentsOfFile:encoding:", &NSMutableString::initWithContentsOfFile_encoding>();
    methods.creator<"initWithContentsOfFile:", &NSMutableString::initWithContentsOfFile>();
    methods.creatorAs<"initWithFormat:", &initFormatAlone>();

    methods.instance<"replaceCharactersInRange:withString:",
                     &NSMutableString::replaceCharactersInRange_withString>();
    methods.instance<"setString:", &NSMutableString::setString>();
    methods.instance<"appendString:", &NSMutableString::appendString>();
    methods.instance<"appendCharacters:length:", &NSMutableString::appendCharacters_length>();
    methods.instanceAs<"appendFormat:", &appendFormatAlone>();
    methods.instance<"insertString:atIndex:", &NSMutableString::insertString_atIndex>();
    methods.instance<"deleteCharactersInRange:", &NSMutableString::deleteCharactersInRange>();
    methods.instance<"replaceOccurrencesOfString:withString:options:range:",
                     &NSMutableString::replaceOccurrencesOfString_withString_options_range>();
}

// Creation

namespace {

// A mutable copy of the string that a creator of NSString made; null if that string is null.
Retained<NSMutableString> mutableCopyOf(const Retained<NSString>& string) {
    return string ? NSMutableString::initWithString(string) : nullptr;
}

}  // namespace

Retained<NSMutableString> NSMutableString::initWithCapacity(NSUInteger capacity) {
    auto string = make<NSBufferString>();
    string->reserve(capacity);
    return string;
}

Retained<NSMutableString> NSMutableString::init() { return make<NSBufferString>(); }

Retained<NSMutableString> NSMutableString::initWithString(NSString* string) {
    requireArgument(string, "initWithString:", "the string");
    NSUInteger length = string->length();
    auto copy = make<NSBufferString>();
    string->getCharacters_range(copy->resize(length), {0, length});
    return copy;
}

Retained<NSMutableString> NSMutableString::initWithCharacters_length(const unichar* characters,
                                                                     NSUInteger length) {
    requireMemory(characters, length, "initWithCharacters:length:", "the characters");
    auto string = make<NSBufferString>();
    std::copy_n(characters, length, string->resize(length));
    return string;
}

Retained<NSMutableString> NSMutableString::initWithUTF8String(const char* text) {
    return mutableCopyOf(NSString::initWithUTF8String(text));
}

Retained<NSMutableString> NSMutableString::initWithCharactersNoCopy_length_freeWhenDone(unichar* characters,
                                                                                        NSUInteger length,
                                                                                        bool freeWhenDone) {
    return mutableCopyOf(
        NSString::initWithCharactersNoCopy_length_freeWhenDone(characters, length, freeWhenDone));
}

Retained<NSMutableString> NSMutableString::initWithCString_encoding(const char* text,
                                                                    NSStringEncoding encoding) {
    return mutableCopyOf(NSString::initWithCString_encoding(text, encoding));
}

Retained<NSMutableString> NSMutableString::initWithContentsOfFile_encoding(NSString* path,
                                                                           NSStringEncoding encoding) {
    return mutableCopyOf(NSString::initWithContentsOfFile_encoding(path, encoding));
}

Retained<NSMutableString> NSMutableString::initWithContentsOfFile(NSString* path) {
    return mutableCopyOf(NSString::initWithContentsOfFile(path));
}

NSMutableString* NSMutableString::string() { return init().autorelease(); }

NSMutableString* NSMutableString::stringWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableString* NSMutableString::stringWithString(NSString* string) {
    requireArgument(string, "stringWithString:", "the string");
    return initWithString(string).autorelease();
}

NSMutableString* NSMutableString::stringWithCharacters_length(const unichar* characters, NSUInteger length) {
    requireMemory(characters, length, "stringWithCharacters:length:", "the characters");
    return initWithCharacters_length(characters, length).autorelease();
}

NSMutableString* NSMutableString::stringWithUTF8String(const char* text) {
    requireArgument(text, "stringWithUTF8String:", "the text");
    return initWithUTF8String(text).autorelease();
}

NSMutableString* NSMutableString::stringWithCString_encoding(const char* text, NSStringEncoding encoding) {
    requireArgument(text, "stringWithCString:encoding:", "the text");
    return initWithCString_encoding(text, encoding).autorelease();
}

NSMutableString* NSMutableString::stringWithContentsOfFile(NSString* path) {
    requireArgument(path, "stringWithContentsOfFile:", "the path");
    return initWithContentsOfFile(path).autorelease();
}

NSMutableString* NSMutableString::of(std::u16string_view units) {
    return stringWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size()));
}

NSMutableString* NSMutableString::ofUTF8(std::string_view bytes) {
    return stringWithString(NSString::ofUTF8(bytes));
}

NSMutableString* NSMutableString::ofUTF8(const char* text) {
    requireArgument(text, "ofUTF8", "the text");
    return ofUTF8(std::string_view(text));
}

// Changing

void NSMutableString::replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units) {
    replaceCharactersInRange_withString(range, NSInlineString::create(units).get());
}

void NSMutableString::setString(NSString* string) {
    requireArgument(string, "setString:", "the string");
    if (string != this) replaceCharactersInRange_withString({0, length()}, string);
}

void NSMutableString::appendString(NSString* string) {
    requireArgument(string, "appendString:", "the string");
    requireTextLength(std::uint64_t{length()} + string->length(), "appendString:");
    replaceCharactersInRange_withString({length(), 0}, string);
}

void NSMutableString::appendCharacters_length(const unichar* characters, NSUInteger length) {
    requireMemory(characters, length, "appendCharacters:length:", "the characters");
    append({characters, length});
}

void NSMutableString::insertString_atIndex(NSString* string, NSUInteger index) {
    requireArgument(string, "insertString:atIndex:", "the string");
    requirePlace(index, length(), "insertString:atIndex:");
    requireTextLength(std::uint64_t{length()} + string->length(), "insertString:atIndex:");
    replaceCharactersInRange_withString({index, 0}, string);
}

void NSMutableString::deleteCharactersInRange(NSRange range) {
    requireRange(range, length(), "deleteCharactersInRange:");
    replaceCharactersInRange_withUnits(range, {});
}

namespace {

// Writes the text with every match replaced to `result`; returns how many there were.
NSUInteger replaceForwards(std::u16string& result, std::u16string_view text, std::u16string_view target,
                           std::u16string_view replacement, NSStringCompareOptions options) {
    TextFinder finder(target, options);
    NSUInteger count = 0;
    while (true) {
        NSRange match = finder.find(text);
        if (match.location == NSNotFound) break;
        result += text.substr(0, match.location);
        result += replacement;
        text.remove_prefix(NSMaxRange(match));
        ++count;
        if (options & NSAnchoredSearch) break;
    }
    if (count) result += text;
    return count;
}

NSUInteger replaceBackwards(std::u16string& result, std::u16string_view text, std::u16string_view target,
                            std::u16string_view replacement, NSStringCompareOptions options) {
    TextFinder finder(target, options);
    std::vector<NSRange> matches;
    std::u16string_view rest = text;
    do {
        NSRange match = finder.find(rest);
        if (match.location == NSNotFound) break;
        matches.push_back(match);
        rest = rest.substr(0, match.location);
    } while (!(options & NSAnchoredSearch));
    std::size_t place = 0;
    for (auto match = matches.rbegin(); match != matches.rend(); ++match) {
        result += text.substr(place, match->location - place);
        result += replacement;
        place = NSMaxRange(*match);
    }
    result += text.substr(place);
    return static_cast<NSUInteger>(matches.size());
}

}  // namespace

NSUInteger NSMutableString::replaceOccurrencesOfString_withString_options_range(
    NSString* target, NSString* replacement, NSStringCompareOptions options, NSRange range) {
    constexpr const char* kOperation = "replaceOccurrencesOfString:withString:options:range:";
    requireArgument(target, kOperation, "the target");
    requireArgument(replacement, kOperation, "the replacement");
    requireRange(range, length(), kOperation);
    std::u16string result;
    StringUnits text(this, range), wanted(target), put(replacement);
    if (wanted.size() == 0) return 0;
    result.reserve(std::size_t{range.length} + range.length / 8);  // most replacements are of about one size
    auto replace = options & NSBackwardsSearch ? &replaceBackwards : &replaceForwards;
    NSUInteger count = replace(result, text, wanted, put, options);
    if (count == 0) return 0;
    if (range.length == length())
        replaceTextAdopting(this, std::move(result));
    else
        replaceCharactersInRange_withUnits(range, result);
    return count;
}

void replaceTextAdopting(NSMutableString* string, std::u16string&& units) {
    requireTextLength(units.size(), "replaceTextAdopting:");
    if (auto* own = cast<NSBufferString>(string))
        own->adopt(std::move(units));
    else
        string->replaceCharactersInRange_withUnits({0, string->length()}, units);
}

Retained<Object> NSMutableString::copyWithZone(void* zone) { return NSString::copyWithZone(zone); }

// NSBufferString

unichar NSBufferString::characterAtIndex(NSUInteger index) {
    requireIndex(index, length(), "characterAtIndex:");
    return _units[index];
}

void NSBufferString::getCharacters_range(unichar* buffer, NSRange range) { copyUnits(buffer, _units, range); }

void NSBufferString::replaceCharactersInRange_withString(NSRange range, NSString* string) {
    requireArgument(string, "replaceCharactersInRange:withString:", "the string");
    requireRange(range, length(), "replaceCharactersInRange:withString:");
    // This check comes before the units are fetched, since a string can be longer than memory.
    requireTextLength(_units.size() - range.length + string->length(),
                      "replaceCharactersInRange:withString:");
    StringUnits units(string);
    _units.replace(range.location, range.length, units);
}

void NSBufferString::replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units) {
    requireRange(range, length(), "replaceCharactersInRange:withString:");
    requireTextLength(_units.size() - range.length + units.size(), "replaceCharactersInRange:withString:");
    _units.replace(range.location, range.length, units);
}

unichar* NSBufferString::resize(NSUInteger length) {
    _units.resize(length);
    return _units.data();
}

}  // namespace pelvor
