// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSData.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "Foundation/Collections/CollectionFailures.h"
#include "Foundation/Files/FileContents.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSString.h"
#include "Foundation/Strings/ByteText.h"
#include "Foundation/Values/ConcreteData.h"
#include "Foundation/Values/NSExternalData.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSInlineData, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSData, foundationLibrary) {
    methods.creator<"data", &NSData::data>();
    methods.creator<"dataWithBytes:length:", &NSData::dataWithBytes_length>();
    methods.creator<"dataWithBytesNoCopy:length:", &NSData::dataWithBytesNoCopy_length>();
    methods.creator<"dataWithBytesNoCopy:length:freeWhenDone:",
                    &NSData::dataWithBytesNoCopy_length_freeWhenDone>();
    methods.creator<"dataWithData:", &NSData::dataWithData>();
    methods.creator<"dataWithContentsOfFile:", &NSData::dataWithContentsOfFile>();
    methods.creator<"init", &NSData::init>();
    methods.creatorAs<"new", &NSData::init>();
    methods.creator<"initWithBytes:length:", &NSData::initWithBytes_length>();
    methods.creator<"initWithBytesNoCopy:length:", &NSData::initWithBytesNoCopy_length>();
    methods.creator<"initWithBytesNoCopy:length:freeWhenDone:",
                    &NSData::initWithBytesNoCopy_length_freeWhenDone>();
    methods.creator<"initWithData:", &NSData::initWithData>();
    methods.creator<"initWithContentsOfFile:", &NSData::initWithContentsOfFile>();
    methods.instance<"length", &NSData::length>();
    methods.instance<"bytes", &NSData::bytes>();
    methods.instance<"getBytes:", &NSData::getBytes>();
    methods.instance<"getBytes:length:", &NSData::getBytes_length>();
    methods.instance<"getBytes:range:", &NSData::getBytes_range>();
    methods.instance<"subdataWithRange:", &NSData::subdataWithRange>();
    methods.instance<"writeToFile:atomically:", &NSData::writeToFile_atomically>();
    methods.instance<"isEqualToData:", &NSData::isEqualToData>();
}

// MARK: Creation

NSData* NSData::data() { return init().autorelease(); }

NSData* NSData::dataWithBytes_length(const void* bytes, NSUInteger length) {
    return initWithBytes_length(bytes, length).autorelease();
}

NSData* NSData::dataWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    return initWithBytesNoCopy_length(bytes, length).autorelease();
}

NSData* NSData::dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length, bool freeWhenDone) {
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, freeWhenDone).autorelease();
}

NSData* NSData::dataWithData(NSData* data) { return initWithData(data).autorelease(); }

NSData* NSData::dataWithContentsOfFile(NSString* path) { return initWithContentsOfFile(path).autorelease(); }

NSData* NSData::of(std::span<const std::byte> bytes) {
    return dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

Retained<NSData> NSData::init() { return NSInlineData::create(0); }

Retained<NSData> NSData::initWithBytes_length(const void* bytes, NSUInteger length) {
    requireBytes(bytes, length);
    auto data = NSInlineData::create(length);
    if (length) std::memcpy(data->storage(), bytes, length);
    return data;
}

Retained<NSData> NSData::initWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, true);
}

Retained<NSData> NSData::initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                 bool freeWhenDone) {
    requireBytes(bytes, length);
    return NSExternalData::create(
        bytes, length, freeWhenDone ? NSExternalData::Memory::own : NSExternalData::Memory::borrowed);
}

Retained<NSData> NSData::initWithData(NSData* data) {
    if (!data) return init();
    if (data->isa() == NSInlineData::classObject()) return Retained<NSData>::retaining(data);
    if (data->isa() == NSExternalData::classObject()) return data->copy();
    return initWithBytes_length(data->bytes(), data->length());
}

Retained<NSData> NSData::initWithContentsOfFile(NSString* path) {
    std::vector<std::byte> content;
    if (!path || !readFile(path->toUTF8(), content)) return nullptr;
    return initWithBytes_length(content.data(), static_cast<NSUInteger>(content.size()));
}

// MARK: Bytes

void NSData::getBytes(void* buffer) { getBytes_length(buffer, length()); }

void NSData::getBytes_length(void* buffer, NSUInteger count) {
    if (NSUInteger copied = std::min(count, length())) std::memcpy(buffer, bytes(), copied);
}

void NSData::getBytes_range(void* buffer, NSRange range) {
    requireRange(range, length());
    if (range.length) std::memcpy(buffer, span().data() + range.location, range.length);
}

NSData* NSData::subdataWithRange(NSRange range) {
    requireRange(range, length());
    return of(span().subspan(range.location, range.length));
}

bool NSData::writeToFile_atomically(NSString* path, bool isAtomic) {
    if (!path) return false;
    return writeFile(path->toUTF8(), span(), isAtomic ? FileWriting::atomic : FileWriting::direct);
}

// MARK: As an object

bool NSData::isEqualToData(NSData* other) {
    if (this == other) return true;
    if (!other || length() != other->length()) return false;
    return length() == 0 || std::memcmp(bytes(), other->bytes(), length()) == 0;
}

bool NSData::isEqual(id other) { return isEqualToData(cast<NSData>(other)); }

std::uintptr_t NSData::hash() {
    constexpr std::size_t kHashed = 256;
    std::string_view start(static_cast<const char*>(bytes()), std::min<std::size_t>(length(), kHashed));
    return std::hash<std::string_view>()(start) ^ length();
}

NSString* NSData::description() { return hexadecimalDescription(span()); }

NSString* hexadecimalDescription(std::span<const std::byte> bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "<";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % 4 == 0) text += ' ';
        auto value = std::to_integer<unsigned>(bytes[i]);
        text += kDigits[value >> 4];
        text += kDigits[value & 15];
    }
    return NSString::ofUTF8(text + ">");
}

Retained<Object> NSInlineData::copyWithZone(void*) { return Retained<Object>::retaining(this); }

Retained<Object> NSData::copyWithZone(void*) { return initWithData(this); }

Retained<Object> NSData::mutableCopyWithZone(void*) { return NSMutableData::initWithData(this); }

Retained<NSMutableData> NSData::mutableCopy() {
    return Retained<NSMutableData>::adopting(
        static_cast<NSMutableData*>(mutableCopyWithZone(nullptr).leak()));
}

}  // namespace pelvor
