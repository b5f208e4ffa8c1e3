// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableData.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <utility>
#include <vector>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/Values/ConcreteData.h"
#include "Foundation/Values/NSExternalData.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

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

NSMutableData::~NSMutableData() { std::free(_bytes); }

// MARK: Creation

NSMutableData* NSMutableData::data() { return init().autorelease(); }

NSMutableData* NSMutableData::dataWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableData* NSMutableData::dataWithLength(NSUInteger length) {
    return initWithLength(length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytes_length(const void* bytes, NSUInteger length) {
    requireMemory(bytes, length, "dataWithBytes:length:", "the bytes");
    return initWithBytes_length(bytes, length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytesNoCopy_length(void* bytes, NSUInteger length) {
    requireMemory(bytes, length, "dataWithBytesNoCopy:length:", "the bytes");
    return initWithBytesNoCopy_length(bytes, length).autorelease();
}

NSMutableData* NSMutableData::dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                      bool freeWhenDone) {
    requireMemory(bytes, length, "dataWithBytesNoCopy:length:freeWhenDone:", "the bytes");
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
    if (capacity) data->reserve(std::min(capacity, kLargestReserve));
    return data;
}

Retained<NSMutableData> NSMutableData::initWithLength(NSUInteger length, Class* cls) {
    auto data = make<NSMutableData>(cls);
    data->setLength(length);
    return data;
}

Retained<NSMutableData> NSMutableData::initWithBytes_length(const void* bytes, NSUInteger length,
                                                            Class* cls) {
    requireMemory(bytes, length, "initWithBytes:length:", "the bytes");
    auto data = make<NSMutableData>(cls);
    data->appendBytes_length(bytes, length);
    return data;
}

Retained<NSMutableData> NSMutableData::initWithBytesNoCopy_length(void* bytes, NSUInteger length,
                                                                  Class* cls) {
    requireMemory(bytes, length, "initWithBytesNoCopy:length:", "the bytes");
    return initWithBytesNoCopy_length_freeWhenDone(bytes, length, true, cls);
}

Retained<NSMutableData> NSMutableData::initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                               bool freeWhenDone,
                                                                               Class* cls) {
    requireMemory(bytes, length, "initWithBytesNoCopy:length:freeWhenDone:", "the bytes");
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
    GrowingBytes content;
    if (!readFile(systemPath(path), content)) return nullptr;
    auto data = make<NSMutableData>(cls);
    data->_length = data->_capacity = content.size();
    data->_bytes = reinterpret_cast<std::byte*>(content.leak());
    return data;
}

Retained<Object> NSMutableData::copyWithZone(void*) { return NSData::initWithBytes_length(_bytes, length()); }

// MARK: Changing

void NSMutableData::reserve(std::size_t capacity) {
    void* bytes = std::realloc(_bytes, capacity);
    if (!bytes) throw std::bad_alloc();
    _bytes = static_cast<std::byte*>(bytes);
    _capacity = capacity;
}

// Puts `count` bytes of any value in the place of the range, which is inside the data, and returns their
// address.
std::byte* NSMutableData::makeRoom(NSRange range, NSUInteger count, const char* operation) {
    const std::size_t length = _length - range.length + count,
                      end = std::size_t{range.location} + range.length;
    if (length > UINT32_MAX)
        throw NSException(NSMallocException,
                          operation + std::string(" the data would hold more than 2^32 - 1 bytes"));
    if (length > _capacity) reserve(std::max(length, std::min<std::size_t>(_capacity * 2, UINT32_MAX)));
    std::byte* place = _bytes + range.location;
    if (end < _length) std::memmove(place + count, _bytes + end, _length - end);
    _length = length;
    return place;
}

void NSMutableData::replace(NSRange range, const void* bytes, NSUInteger count, const char* operation) {
    requireMemory(bytes, count, operation, "the bytes");
    auto* first = static_cast<const std::byte*>(bytes);
    // The data's own bytes would move while they are copied.
    std::vector<std::byte> copy;
    if (count && std::less_equal<>()(_bytes, first) && std::less<>()(first, _bytes + _length)) {
        copy.assign(first, first + count);
        first = copy.data();
    }
    std::byte* place = makeRoom(range, count, operation);
    // In pieces, since for a large block at once `memcpy` goes around the cache, into which the kernel has
    // just put the pages that it cleared; that takes twice the time.
    constexpr NSUInteger kPiece = 128 << 10;
    for (NSUInteger done = 0; done < count; done += std::min(kPiece, count - done))
        std::memcpy(place + done, first + done, std::min(kPiece, count - done));
}

void NSMutableData::setLength(NSUInteger length) {
    const NSUInteger old = this->length();
    if (length > old) std::memset(makeRoom({old, 0}, length - old, "setLength:"), 0, length - old);
    _length = length;
}

void NSMutableData::increaseLengthBy(NSUInteger extra) {
    if (extra) std::memset(makeRoom({length(), 0}, extra, "increaseLengthBy:"), 0, extra);
}

void NSMutableData::appendBytes_length(const void* bytes, NSUInteger count) {
    replace({length(), 0}, bytes, count, "appendBytes:length:");
}

void NSMutableData::appendData(NSData* other) {
    if (other) replace({length(), 0}, other->bytes(), other->length(), "appendData:");
}

void NSMutableData::append(std::span<const std::byte> bytes) {
    const std::size_t count = std::min<std::size_t>(bytes.size(), UINT32_MAX);
    if (count < bytes.size()) raiseTooLong(bytes.size(), "append:");
    replace({length(), 0}, bytes.data(), static_cast<NSUInteger>(count), "append:");
}

std::byte* NSMutableData::extend(NSUInteger count) { return makeRoom({length(), 0}, count, "extend:"); }

Retained<NSData> NSMutableData::takeBytes() {
    const NSUInteger count = length();
    if (_capacity - _length > _length / 8) reserve(std::max<std::size_t>(_length, 1));
    _length = _capacity = 0;
    return NSExternalData::create(std::exchange(_bytes, nullptr), count, NSExternalData::Memory::own);
}

void NSMutableData::setData(NSData* other) {
    if (other == this) return;
    replace({0, length()}, other ? other->bytes() : nullptr, other ? other->length() : 0, "setData:");
}

void NSMutableData::resetBytesInRange(NSRange range) {
    requireRange(range, length(), "resetBytesInRange:");
    std::fill_n(_bytes + range.location, range.length, std::byte{});
}

void NSMutableData::replaceBytesInRange_withBytes(NSRange range, const void* bytes) {
    constexpr const char* kOperation = "replaceBytesInRange:withBytes:";
    if (range.location > length()) raiseRangeBeyondBounds(range, length(), kOperation);
    NSUInteger replaced = std::min(range.length, length() - range.location);
    replace({range.location, replaced}, bytes, range.length, kOperation);
}

void NSMutableData::replaceBytesInRange_withBytes_length(NSRange range, const void* bytes, NSUInteger count) {
    constexpr const char* kOperation = "replaceBytesInRange:withBytes:length:";
    requireRange(range, length(), kOperation);
    replace(range, bytes, count, kOperation);
}

}  // namespace pelvor
