// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableData.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "Foundation/Collections/CollectionFailures.h"
#include "Foundation/Files/FileContents.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/Values/ConcreteData.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableData, foundationLibrary) {
    methods.creator<"data", &NSMutableData::data>();
    methods.creator<"dataWithCapacity:", &NSMutableData::dataWithCapacity>();
    methods.creator<"dataWithLength:", &NSMutableData::dataWithLength>();
    methods.creator<"dataWithBytes:length:", &NSMutableData::dataWithBytes_length>();
    methods.creator<"dataWithBytesNoCopy:length:", &NSMutableData::dataWithBytesNoCopy_length>();
    methods.creator<"dataWithBytesNoCopy:length:freeWhenDone:",
                    &NSMutableData::dataWithBytesNoCopy_length_freeWhenDone>();
    methods.creator<"dataWithData:", &NSMutableData::dataWithData>();
    methods.creator<"dataWithContentsOfFile:", &NSMutableData::dataWithContentsOfFile>();
    methods.creator<"init", &NSMutableData::init>();
    methods.creatorAs<"new", &NSMutableData::init>();
    methods.creator<"initWithCapacity:", &NSMutableData::initWithCapacity>();
    methods.creator<"initWithLength:", &NSMutableData::initWithLength>();
    methods.creator<"initWithBytes:length:", &NSMutableData::initWithBytes_length>();
    methods.creator<"initWithBytesNoCopy:length:", &NSMutableData::initWithBytesNoCopy_length>();
    methods.creator<"initWithBytesNoCopy:length:freeWhenDone:",
                    &NSMutableData::initWithBytesNoCopy_length_freeWhenDone>();
    methods.creator<"initWithData:", &NSMutableData::initWithData>();
    methods.creator<"initWithContentsOfFile:", &NSMutableData::initWithContentsOfFile>();
    methods.instance<"mutableBytes", &NSMutableData::mutableBytes>();
    methods.instance<"setLength:", &NSMutableData::setLength>();
    methods.instance<"increaseLengthBy:", &NSMutableData::increaseLengthBy>();
    methods.instance<"appendBytes:length:", &NSMutableData::appendBytes_length>();
    methods.instance<"appendData:", &NSMutableData::appendData>();
    methods.instance<"setData:", &NSMutableData::setData>();
    methods.instance<"resetBytesInRange:", &NSMutableData::resetBytesInRange>();
    methods.instance<"replaceBytesInRange:withBytes:", &NSMutableData::replaceBytesInRange_withBytes>();
    methods.instance<"replaceBytesInRange:withBytes:length:",
                     &NSMutableData::replaceBytesInRange_withBytes_length>();
}

// MARK: Creation

NSMutableData* NSMutableData::data() { return init().autorelease(); }

NSMutableData* NSMutableData::dataWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableData* NSMutableData::dataWithLength(NSUInteger length) {
    return initWithLength(length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytes_length(const void* bytes, NSUInteger length) {
    return initWithBytes_length(bytes, length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    return initWithBytesNoCopy_length(bytes, length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                      bool freeWhenDone) {
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, freeWhenDone).autorelease();
}

NSMutableData* NSMutableData::dataWithData(NSData* data) { return initWithData(data).autorelease(); }

NSMutableData* NSMutableData::dataWithContentsOfFile(NSString* path) {
    return initWithContentsOfFile(path).autorelease();
}

NSMutableData* NSMutableData::of(std::span<const std::byte> bytes) {
    return dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

Retained<NSMutableData> NSMutableData::init(Class* cls) { return make<NSMutableData>(cls); }

Retained<NSMutableData> NSMutableData::initWithCapacity(NSUInteger capacity, Class* cls) {
    constexpr NSUInteger kLargestReserve = 1 << 24;
    auto data = make<NSMutableData>(cls);
    data->_bytes.reserve(std::min(capacity, kLargestReserve));
    return data;
}

Retained<NSMutableData> NSMutableData::initWithLength(NSUInteger length, Class* cls) {
    auto data = make<NSMutableData>(cls);
    data->setLength(length);
    return data;
}

Retained<NSMutableData> NSMutableData::initWithBytes_length(const void* bytes, NSUInteger length,
                                                            Class* cls) {
    auto data = make<NSMutableData>(cls);
    data->appendBytes_length(bytes, length);
    return data;
}

Retained<NSMutableData> NSMutableData::initWithBytesNoCopy_length(void* bytes, NSUInteger length,
                                                                  Class* cls) {
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, true, cls);
}

Retained<NSMutableData> NSMutableData::initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                               bool freeWhenDone,
                                                                               Class* cls) {
    auto data = initWithBytes_length(bytes, length, cls);
    if (freeWhenDone) std::free(bytes);
    return data;
}

Retained<NSMutableData> NSMutableData::initWithData(NSData* data, Class* cls) {
    auto copy = make<NSMutableData>(cls);
    copy->appendData(data);
    return copy;
}

Retained<NSMutableData> NSMutableData::initWithContentsOfFile(NSString* path, Class* cls) {
    auto data = make<NSMutableData>(cls);
    if (!path || !readFile(path->toUTF8(), data->_bytes)) return nullptr;
    return data;
}

Retained<Object> NSMutableData::copyWithZone(void*) {
    return NSData::initWithBytes_length(_bytes.data(), length());
}

// MARK: Changing

namespace {

void requireLength(std::size_t length) {
    if (length > UINT32_MAX) throw NSException(NSMallocException, "data of more than 2^32 - 1 bytes");
}

}  // namespace

void NSMutableData::setLength(NSUInteger length) { _bytes.resize(length); }

void NSMutableData::increaseLengthBy(NSUInteger extra) {
    requireLength(_bytes.size() + extra);
    _bytes.resize(_bytes.size() + extra);
}

void NSMutableData::appendBytes_length(const void* bytes, NSUInteger count) {
    replaceBytesInRange_withBytes_length({length(), 0}, bytes, count);
}

void NSMutableData::appendData(NSData* other) {
    if (other) append(other->span());
}

void NSMutableData::append(std::span<const std::byte> bytes) {
    requireLength(bytes.size());
    appendBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

void NSMutableData::setData(NSData* other) {
    if (other != this)
        replaceBytesInRange_withBytes_length({0, length()}, other ? other->bytes() : nullptr,
                                             other ? other->length() : 0);
}

void NSMutableData::resetBytesInRange(NSRange range) {
    requireRange(range, length());
    std::fill_n(_bytes.begin() + range.location, range.length, std::byte{});
}

void NSMutableData::replaceBytesInRange_withBytes(NSRange range, const void* bytes) {
    if (range.location > length()) raiseIndexBeyondBounds(range.location, length());
    NSUInteger replaced = std::min(range.length, length() - range.location);
    replaceBytesInRange_withBytes_length({range.location, replaced}, bytes, range.length);
}

void NSMutableData::replaceBytesInRange_withBytes_length(NSRange range, const void* bytes, NSUInteger count) {
    requireRange(range, length());
    requireLength(_bytes.size() - range.length + count);
    requireBytes(bytes, count);
    auto* first = static_cast<const std::byte*>(bytes);
    // Bytes of our own would move while they are copied.
    std::vector<std::byte> own;
    if (std::less_equal<>()(_bytes.data(), first) && std::less<>()(first, _bytes.data() + _bytes.size())) {
        own.assign(first, first + count);
        first = own.data();
    }
    auto place = _bytes.begin() + range.location;
    if (count > range.length)
        place = _bytes.insert(place + range.length, count - range.length, std::byte{}) - range.length;
    else
        place = _bytes.erase(place, place + (range.length - count));
    if (count) std::memcpy(&*place, first, count);
}

}  // namespace pelvor
