// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSData.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSString.h"
#include "Foundation/Strings/ByteText.h"
#include "Foundation/Values/ConcreteData.h"
#include "Foundation/Values/NSExternalData.h"
#include "Shared/ArgumentChecks.h"

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
    return NSInlineData::create(bytes, length, "dataWithBytes:length:").autorelease();
}

NSData* NSData::dataWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    requireMemory(bytes, length, "dataWithBytesNoCopy:length:", "the bytes");
    return initWithBytesNoCopy_length(bytes, length).autorelease();
}

NSData* NSData::dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length, bool freeWhenDone) {
    requireMemory(bytes, length, "dataWithBytesNoCopy:length:freeWhenDone:", "the bytes");
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, freeWhenDone).autorelease();
}

NSData* NSData::dataWithData(NSData* data) { return initWithData(data).autorelease(); }

NSData* NSData::dataWithContentsOfFile(NSString* path) { return initWithContentsOfFile(path).autorelease(); }

NSData* NSData::of(std::span<const std::byte> bytes) {
    return dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

Retained<NSData> NSData::init() { return NSInlineData::create(nullptr, 0, "init"); }

Retained<NSData> NSData::initWithBytes_length(const void* bytes, NSUInteger length) {
    return NSInlineData::create(bytes, length, "initWithBytes:length:");
}

Retained<NSData> NSData::initWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    requireMemory(bytes, length, "initWithBytesNoCopy:length:", "the bytes");
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, true);
}

Retained<NSData> NSData::initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                 bool freeWhenDone) {
    requireMemory(bytes, length, "initWithBytesNoCopy:length:freeWhenDone:", "the bytes");
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
    GrowingBytes content;
    if (!readFile(systemPath(path), content)) return nullptr;
    return NSExternalData::create(content);
}

// MARK: Bytes

namespace {

void copyBytes(std::span<const std::byte> bytes, void* buffer, const char* operation) {
    requireMemory(buffer, static_cast<NSUInteger>(bytes.size()), operation, "the bytes");
    if (!bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
}

}  // namespace

void NSData::getBytes(void* buffer) { copyBytes(span(), buffer, "getBytes:"); }

void NSData::getBytes_length(void* buffer, NSUInteger count) {
    copyBytes(span().first(std::min(count, length())), buffer, "getBytes:length:");
}

void NSData::getBytes_range(void* buffer, NSRange range) {
    requireRange(range, length(), "getBytes:range:");
    copyBytes(span().subspan(range.location, range.length), buffer, "getBytes:range:");
}

NSData* NSData::subdataWithRange(NSRange range) {
    requireRange(range, length(), "subdataWithRange:");
    return of(span().subspan(range.location, range.length));
}

bool NSData::writeToFile_atomically(NSString* path, bool isAtomic) {
    return writeFile(systemPath(path), span(), isAtomic ? FileWriting::atomic : FileWriting::direct);
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

Retained<NSInlineData> NSInlineData::create(const void* bytes, NSUInteger length, const char* operation) {
    requireMemory(bytes, length, operation, "the bytes");
    auto* data = Instances::createWithExtra<NSInlineData>(length, &classRecord, length);
    if (length) std::memcpy(static_cast<void*>(data + 1), bytes, length);
    return Retained<NSInlineData>::adopting(data);
}

Retained<Object> NSInlineData::copyWithZone(void*) { return Retained<Object>::retaining(this); }

Retained<Object> NSData::copyWithZone(void*) { return initWithData(this); }

Retained<Object> NSData::mutableCopyWithZone(void*) { return NSMutableData::initWithData(this); }

Retained<NSMutableData> NSData::mutableCopy() { return cast<NSMutableData>(mutableCopyWithZone(nullptr)); }

}  // namespace pelvor
