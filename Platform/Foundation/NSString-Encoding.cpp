// SPDX-License-Identifier: Apache-2.0
// Strings as bytes in encodings, as data and as files.
#include <cerrno>
#include <cstring>

#include "Foundation/Files/SystemPath.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

std::string_view bytesOf(NSData* data) { return {static_cast<const char*>(data->bytes()), data->length()}; }

// A copy of the bytes, with a zero of any encoding's size after it, that the current autorelease pool
// frees.
const char* autoreleasedText(std::string_view bytes) {
    auto holder = NSInlineString::create(static_cast<NSUInteger>(bytes.size() / sizeof(unichar) + 3));
    char* text = reinterpret_cast<char*>(holder->characters());
    std::memset(text, 0, std::size_t{holder->length()} * sizeof(unichar));
    std::memcpy(text, bytes.data(), bytes.size());
    std::move(holder).autorelease();
    return text;
}

NSStringEncoding encodingByMark(std::string_view bytes) {
    if (bytes.starts_with(std::string_view("\xFF\xFE\0\0", 4)) ||
        bytes.starts_with(std::string_view("\0\0\xFE\xFF", 4)))
        return NSUTF32StringEncoding;
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return NSUnicodeStringEncoding;
    return unitsFromUTF8(bytes) ? NSUTF8StringEncoding : NSISOLatin1StringEncoding;
}

// The text of a file, or null with EILSEQ in `errno`. A file in UTF-8 may begin with a mark.
Retained<NSString> fileText(std::string_view bytes, NSStringEncoding encoding) {
    if (encoding == NSUTF8StringEncoding && bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    auto text = NSString::initWithBytes_length_encoding(bytes.data(), static_cast<NSUInteger>(bytes.size()),
                                                        encoding);
    if (!text) errno = EILSEQ;
    return text;
}

}  // namespace

Retained<NSString> NSString::initWithBytes_length_encoding(const void* bytes, NSUInteger length,
                                                           NSStringEncoding encoding) {
    requireMemory(bytes, length, "initWithBytes:length:encoding:", "the bytes");
    auto units = decodeBytes({static_cast<const char*>(bytes), length}, encoding);
    return units ? NSInlineString::create(*units) : nullptr;
}

Retained<NSString> NSString::initWithCString_encoding(const char* text, NSStringEncoding encoding) {
    requireArgument(text, "initWithCString:encoding:", "the text");
    return initWithBytes_length_encoding(text, static_cast<NSUInteger>(std::strlen(text)), encoding);
}

NSString* NSString::stringWithCString_encoding(const char* text, NSStringEncoding encoding) {
    requireArgument(text, "stringWithCString:encoding:", "the text");
    return initWithCString_encoding(text, encoding).autorelease();
}

Retained<NSString> NSString::initWithData_encoding(NSData* data, NSStringEncoding encoding) {
    requireArgument(data, "initWithData:encoding:", "the data");
    return initWithBytes_length_encoding(data->bytes(), data->length(), encoding);
}

Retained<NSString> NSString::initWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding) {
    requireArgument(path, "initWithContentsOfFile:encoding:", "the path");
    auto data = NSData::initWithContentsOfFile(path);
    return data ? fileText(bytesOf(data), encoding) : nullptr;
}

Retained<NSString> NSString::initWithContentsOfFile(NSString* path) {
    requireArgument(path, "initWithContentsOfFile:", "the path");
    auto data = NSData::initWithContentsOfFile(path);
    return data ? fileText(bytesOf(data), encodingByMark(bytesOf(data))) : nullptr;
}

NSString* NSString::stringWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding) {
    requireArgument(path, "stringWithContentsOfFile:encoding:", "the path");
    return initWithContentsOfFile_encoding(path, encoding).autorelease();
}

NSString* NSString::stringWithContentsOfFile(NSString* path) {
    requireArgument(path, "stringWithContentsOfFile:", "the path");
    return initWithContentsOfFile(path).autorelease();
}

// The mutable forms

Retained<NSMutableString> NSMutableString::initWithBytes_length_encoding(const void* bytes, NSUInteger length,
                                                                         NSStringEncoding encoding) {
    auto string = NSString::initWithBytes_length_encoding(bytes, length, encoding);
    return string ? initWithString(string) : nullptr;
}

Retained<NSMutableString> NSMutableString::initWithData_encoding(NSData* data, NSStringEncoding encoding) {
    auto string = NSString::initWithData_encoding(data, encoding);
    return string ? initWithString(string) : nullptr;
}

NSMutableString* NSMutableString::stringWithContentsOfFile_encoding(NSString* path,
                                                                    NSStringEncoding encoding) {
    requireArgument(path, "stringWithContentsOfFile:encoding:", "the path");
    auto string = NSString::initWithContentsOfFile_encoding(path, encoding);
    return string ? stringWithString(string) : nullptr;
}

// To bytes

std::string NSString::toUTF8() {
    StringUnits units(this);
    return utf8FromUnitsMending(units);
}

const char* NSString::UTF8String() { return autoreleasedText(toUTF8()); }

const char* NSString::fileSystemRepresentation() {
    const std::string path = systemPath(this);
    if (path.find('\0') != path.npos)
        raiseBadArgument("fileSystemRepresentation", "the path has the character U+0000");
    return autoreleasedText(path);
}

const char* NSString::cStringUsingEncoding(NSStringEncoding encoding) {
    StringUnits units(this);
    auto bytes = encodeUnits(units, encoding);
    return bytes ? autoreleasedText(*bytes) : nullptr;
}

NSData* NSString::dataUsingEncoding(NSStringEncoding encoding) {
    return dataUsingEncoding_allowLossyConversion(encoding, false);
}

NSData* NSString::dataUsingEncoding_allowLossyConversion(NSStringEncoding encoding, bool allowLoss) {
    StringUnits units(this);
    auto bytes = encodeUnits(units, encoding, allowLoss ? EncodingLoss::allowed : EncodingLoss::refused);
    if (!bytes) return nullptr;
    return NSData::dataWithBytes_length(bytes->data(), static_cast<NSUInteger>(bytes->size()));
}

bool NSString::canBeConvertedToEncoding(NSStringEncoding encoding) {
    StringUnits units(this);
    return encodeUnits(units, encoding).has_value();
}

NSUInteger NSString::lengthOfBytesUsingEncoding(NSStringEncoding encoding) {
    StringUnits units(this);
    auto bytes = encodeUnits(units, encoding);
    return bytes ? static_cast<NSUInteger>(bytes->size()) : 0;
}

NSStringEncoding NSString::smallestEncoding() {
    StringUnits units(this);
    return asciiPrefix(units.view()) == units.size() ? NSASCIIStringEncoding : NSUnicodeStringEncoding;
}

NSString* NSString::localizedNameOfStringEncoding(NSStringEncoding encoding) {
    return ofUTF8(nameOfEncoding(encoding));
}

bool NSString::writeToFile_atomically_encoding(NSString* path, bool atomically, NSStringEncoding encoding) {
    requireArgument(path, "writeToFile:atomically:encoding:", "the path");
    NSData* data = dataUsingEncoding(encoding);
    if (!data) errno = EILSEQ;
    return data && data->writeToFile_atomically(path, atomically);
}

}  // namespace pelvor
