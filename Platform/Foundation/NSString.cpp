// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSString.h"

#include <algorithm>
#include <cstring>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Shared/UTF8.h"

namespace pelvor {

namespace {

// How many units of strings that keep them in pieces are compared at once.
constexpr NSUInteger kPiece = 512;

// Formats sent as messages have no arguments.
NSString* formatAlone(NSString* format) { return NSString::stringWithFormat(format); }
Retained<NSString> initFormatAlone(NSString* format) { return NSString::initWithFormat(format); }
NSString* appendFormatAlone(NSString* string, NSString* format) {
    return string->stringByAppendingFormat(format);
}

}  // namespace

PELVOR_DEFINE_CLASS(NSString, foundationLibrary) {
    methods.creator<"string", &NSString::string>();
    methods.creator<"stringWithString:", &NSString::stringWithString>();
    methods.creator<"stringWithCharacters:length:", &NSString::stringWithCharacters_length>();
    methods.creator<"stringWithUTF8String:", &NSString::stringWithUTF8String>();
    methods.creator<"stringWithCString:encoding:", &NSString::stringWithCString_encoding>();
    methods.creatorAs<"stringWithFormat:", &formatAlone>();
    methods.creator<"stringWithContentsOfFile:encoding:", &NSString::stringWithContentsOfFile_encoding>();
    methods.creator<"stringWithContentsOfFile:", &NSString::stringWithContentsOfFile>();
    methods.classLevel<"pathWithComponents:", &NSString::pathWithComponents>();
    methods.classLevel<"localizedNameOfStringEncoding:", &NSString::localizedNameOfStringEncoding>();
    methods.creator<"init", &NSString::init>();
    methods.creator<"initWithString:", &NSString::initWithString>();
    methods.creator<"initWithCharacters:length:", &NSString::initWithCharacters_length>();
    methods.creator<"initWithCharactersNoCopy:length:freeWhenDone:",
                    &NSString::initWithCharactersNoCopy_length_freeWhenDone>();
    methods.creator<"initWithUTF8String:", &NSString::initWithUTF8String>();
    methods.creator<"initWithCString:encoding:", &NSString::initWithCString_encoding>();
    methods.creator<"initWithBytes:length:encoding:", &NSString::initWithBytes_length_encoding>();
    methods.creator<"initWithData:encoding:", &NSString::initWithData_encoding>();
    methods.creator<"initWithContentsOfFile:encoding:", &NSString::initWithContentsOfFile_encoding>();
    methods.creator<"initWithContentsOfFile:", &NSString::initWithContentsOfFile>();
    methods.creatorAs<"initWithFormat:", &initFormatAlone>();

    methods.instance<"length", &NSString::length>();
    methods.instance<"characterAtIndex:", &NSString::characterAtIndex>();
    methods.instance<"getCharacters:", &NSString::getCharacters>();
    methods.instance<"getCharacters:range:", &NSString::getCharacters_range>();
    methods.instance<"substringFromIndex:", &NSString::substringFromIndex>();
    methods.instance<"substringToIndex:", &NSString::substringToIndex>();
    methods.instance<"substringWithRange:", &NSString::substringWithRange>();
    methods.instance<"stringByAppendingString:", &NSString::stringByAppendingString>();
    methods.instanceAs<"stringByAppendingFormat:", &appendFormatAlone>();
    methods.instance<"stringByTrimmingCharactersInSet:", &NSString::stringByTrimmingCharactersInSet>();
    methods.instance<"stringByReplacingOccurrencesOfString:withString:",
                     &NSString::stringByReplacingOccurrencesOfString_withString>();
    methods.instance<"stringByPaddingToLength:withString:startingAtIndex:",
                     &NSString::stringByPaddingToLength_withString_startingAtIndex>();
    methods.instance<"componentsSeparatedByString:", &NSString::componentsSeparatedByString>();
    methods.instance<"isEqualToString:", &NSString::isEqualToString>();
    methods.instance<"compare:", &NSString::compare>();
    methods.instance<"compare:options:", &NSString::compare_options>();
    methods.instance<"compare:options:range:", &NSString::compare_options_range>();
    methods.instance<"caseInsensitiveCompare:", &NSString::caseInsensitiveCompare>();
    methods.instance<"localizedCompare:", &NSString::localizedCompare>();
    methods.instance<"localizedCaseInsensitiveCompare:", &NSString::localizedCaseInsensitiveCompare>();
    methods.instance<"hasPrefix:", &NSString::hasPrefix>();
    methods.instance<"hasSuffix:", &NSString::hasSuffix>();

    methods.instance<"rangeOfString:", &NSString::rangeOfString>();
    methods.instance<"rangeOfString:options:", &NSString::rangeOfString_options>();
    methods.instance<"rangeOfString:options:range:", &NSString::rangeOfString_options_range>();
    methods.instance<"rangeOfCharacterFromSet:", &NSString::rangeOfCharacterFromSet>();
    methods.instance<"rangeOfCharacterFromSet:options:", &NSString::rangeOfCharacterFromSet_options>();
    methods.instance<"rangeOfCharacterFromSet:options:range:",
                     &NSString::rangeOfCharacterFromSet_options_range>();
    methods.instance<"rangeOfComposedCharacterSequenceAtIndex:",
                     &NSString::rangeOfComposedCharacterSequenceAtIndex>();

    methods.instance<"uppercaseString", &NSString::uppercaseString>();
    methods.instance<"lowercaseString", &NSString::lowercaseString>();
    methods.instance<"capitalizedString", &NSString::capitalizedString>();
    methods
        .instance<"decomposedStringWithCanonicalMapping", &NSString::decomposedStringWithCanonicalMapping>();
    methods.instance<"precomposedStringWithCanonicalMapping",
                     &NSString::precomposedStringWithCanonicalMapping>();

    methods.instance<"intValue", &NSString::intValue>();
    methods.instance<"integerValue", &NSString::integerValue>();
    methods.instance<"longLongValue", &NSString::longLongValue>();
    methods.instance<"floatValue", &NSString::floatValue>();
    methods.instance<"doubleValue", &NSString::doubleValue>();
    methods.instance<"boolValue", &NSString::boolValue>();

    methods.instance<"lastPathComponent", &NSString::lastPathComponent>();
    methods.instance<"pathExtension", &NSString::pathExtension>();
    methods.instance<"stringByAppendingPathComponent:", &NSString::stringByAppendingPathComponent>();
    methods.instance<"stringByAppendingPathExtension:", &NSString::stringByAppendingPathExtension>();
    methods.instance<"stringByDeletingLastPathComponent", &NSString::stringByDeletingLastPathComponent>();
    methods.instance<"stringByDeletingPathExtension", &NSString::stringByDeletingPathExtension>();
    methods.instance<"pathComponents", &NSString::pathComponents>();
    methods.instance<"isAbsolutePath", &NSString::isAbsolutePath>();
    methods.instance<"stringByExpandingTildeInPath", &NSString::stringByExpandingTildeInPath>();
    methods.instance<"stringByAbbreviatingWithTildeInPath", &NSString::stringByAbbreviatingWithTildeInPath>();
    methods.instance<"stringByStandardizingPath", &NSString::stringByStandardizingPath>();
    methods.instance<"stringByResolvingSymlinksInPath", &NSString::stringByResolvingSymlinksInPath>();
    methods.instance<"fileSystemRepresentation", &NSString::fileSystemRepresentation>();

    methods.instance<"UTF8String", &NSString::UTF8String>();
    methods.instance<"cStringUsingEncoding:", &NSString::cStringUsingEncoding>();
    methods.instance<"dataUsingEncoding:", &NSString::dataUsingEncoding>();
    methods.instance<"dataUsingEncoding:allowLossyConversion:",
                     &NSString::dataUsingEncoding_allowLossyConversion>();
    methods.instance<"canBeConvertedToEncoding:", &NSString::canBeConvertedToEncoding>();
    methods.instance<"lengthOfBytesUsingEncoding:", &NSString::lengthOfBytesUsingEncoding>();
    methods.instance<"smallestEncoding", &NSString::smallestEncoding>();
    methods.instance<"writeToFile:atomically:encoding:", &NSString::writeToFile_atomically_encoding>();
}

// Creation

NSString* NSString::string() { return u""_ns; }

Retained<NSString> NSString::init() { return Retained<NSString>::retaining(u""_ns); }

Retained<NSString> NSString::initWithString(NSString* string) {
    requireArgument(string, "initWithString:", "the string");
    return string->copy();
}

Retained<NSString> NSString::initWithCharacters_length(const unichar* characters, NSUInteger length) {
    requireMemory(characters, length, "initWithCharacters:length:", "the characters");
    return NSInlineString::create({characters, length});
}

Retained<NSString> NSString::initWithCharactersNoCopy_length_freeWhenDone(unichar* characters,
                                                                          NSUInteger length,
                                                                          bool freeWhenDone) {
    requireMemory(characters, length, "initWithCharactersNoCopy:length:freeWhenDone:", "the characters");
    return NSExternalString::create(characters, length, freeWhenDone);
}

namespace {

// Null if the bytes are not UTF-8.
Retained<NSString> utf8String(std::string_view bytes) {
    const std::size_t count = unitCountOfUTF8(bytes);
    auto string = NSInlineString::create(static_cast<NSUInteger>(count));
    if (!decodeUTF8(bytes, {string->characters(), count}).isValid) return nullptr;
    return string;
}

}  // namespace

Retained<NSString> NSString::initWithUTF8String(const char* text) {
    requireArgument(text, "initWithUTF8String:", "the text");
    return utf8String(text);
}

NSString* NSString::stringWithString(NSString* string) {
    requireArgument(string, "stringWithString:", "the string");
    return string->copy().autorelease();
}

NSString* NSString::stringWithCharacters_length(const unichar* characters, NSUInteger length) {
    requireMemory(characters, length, "stringWithCharacters:length:", "the characters");
    return of({characters, length});
}

NSString* NSString::stringWithUTF8String(const char* text) {
    requireArgument(text, "stringWithUTF8String:", "the text");
    return utf8String(text).autorelease();
}

NSString* NSString::of(std::u16string_view units) { return NSInlineString::create(units).autorelease(); }

NSString* NSString::ofUTF8(std::string_view bytes) {
    if (auto string = utf8String(bytes)) return std::move(string).autorelease();
    return of(unitsFromUTF8Mending(bytes));
}

NSString* NSString::ofUTF8(const char* text) {
    requireArgument(text, "ofUTF8", "the text");
    return ofUTF8(std::string_view(text));
}

// Primitives

void NSString::getCharacters_range(unichar* buffer, NSRange range) {
    requireRange(range, length(), "getCharacters:range:");
    if (range.length) requireArgument(buffer, "getCharacters:range:", "the buffer");
    for (NSUInteger i = 0; i < range.length; ++i) buffer[i] = characterAtIndex(range.location + i);
}

void NSString::getCharacters(unichar* buffer) {
    NSUInteger count = length();
    if (count) requireArgument(buffer, "getCharacters:", "the buffer");
    getCharacters_range(buffer, {0, count});
}

StringUnits::StringUnits(NSString* string)
    : _units(string->contiguousCharacters()), _length(string->length()) {
    if (!_units) fetch(string, 0);
}

StringUnits::StringUnits(NSString* string, NSRange range)
    : _units(string->contiguousCharacters()), _length(range.length) {
    requireRange(range, string->length(), "StringUnits:");
    if (_units)
        _units += range.location;
    else
        fetch(string, range.location);
}

void StringUnits::fetch(NSString* string, NSUInteger location) {
    if (_length > std::size(_inline)) _copy = new unichar[_length];
    _units = _copy;
    try {
        string->getCharacters_range(_copy, {location, _length});
    } catch (...) {
        if (_copy != _inline) delete[] _copy;
        throw;
    }
}

// Parts and joins

NSString* NSString::substringFromIndex(NSUInteger index) {
    NSUInteger count = length();
    requirePlace(index, count, "substringFromIndex:");
    return substringWithRange({index, count - index});
}

NSString* NSString::substringToIndex(NSUInteger index) {
    requirePlace(index, length(), "substringToIndex:");
    return substringWithRange({0, index});
}

NSString* NSString::substringWithRange(NSRange range) {
    NSUInteger count = length();
    requireRange(range, count, "substringWithRange:");
    if (range.length == count) return copy().autorelease();
    if (const unichar* units = contiguousCharacters()) return of({units + range.location, range.length});
    auto part = NSInlineString::create(range.length);
    getCharacters_range(part->characters(), range);
    return std::move(part).autorelease();
}

NSString* NSString::stringByAppendingString(NSString* string) {
    requireArgument(string, "stringByAppendingString:", "the string");
    NSUInteger count = length(), more = string->length();
    auto joined =
        NSInlineString::create(requireTextLength(std::uint64_t{count} + more, "stringByAppendingString:"));
    getCharacters_range(joined->characters(), {0, count});
    string->getCharacters_range(joined->characters() + count, {0, more});
    return std::move(joined).autorelease();
}

// Identity

bool NSString::isEqual(id other) {
    if (this == other) return true;
    auto* string = cast<NSString>(other);
    return string && isEqualToString(string);
}

bool NSString::isEqualToString(NSString* other) {
    if (this == other) return true;
    if (!other) return false;
    NSUInteger count = length();
    if (count != other->length()) return false;
    const unichar *mine = contiguousCharacters(), *theirs = other->contiguousCharacters();
    if (mine && theirs) return std::memcmp(mine, theirs, count * sizeof(unichar)) == 0;
    unichar ownPiece[kPiece], otherPiece[kPiece];
    const auto pieceOf = [](NSString* string, const unichar* units, NSRange range, unichar* buffer) {
        if (units) return units + range.location;
        string->getCharacters_range(buffer, range);
        return static_cast<const unichar*>(buffer);
    };
    for (NSRange range{0, 0}; range.location < count; range.location += range.length) {
        range.length = std::min(kPiece, count - range.location);
        if (std::memcmp(pieceOf(this, mine, range, ownPiece), pieceOf(other, theirs, range, otherPiece),
                        range.length * sizeof(unichar)))
            return false;
    }
    return true;
}

std::uintptr_t NSString::hash() {
    StringUnits units(this);
    return hashUnits(units);
}

Retained<Object> NSString::copyWithZone(void*) {
    auto units = NSInlineString::create(length());
    getCharacters_range(units->characters(), {0, units->length()});
    return units;
}

Retained<Object> NSString::mutableCopyWithZone(void*) { return NSMutableString::initWithString(this); }

Retained<NSMutableString> NSString::mutableCopy() { return NSMutableString::initWithString(this); }

// Conversion

std::u16string NSString::toUTF16() {
    std::u16string units(length(), u'\0');
    getCharacters_range(units.data(), {0, static_cast<NSUInteger>(units.size())});
    return units;
}

std::ostream& operator<<(std::ostream& stream, NSString* string) {
    return string ? stream << string->toUTF8() : stream << "(null)";
}

}  // namespace pelvor
