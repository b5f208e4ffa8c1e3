// SPDX-License-Identifier: Apache-2.0
// NSMutableData: a block of bytes that can be changed.
#pragma once

#include "Foundation/NSData.h"

namespace pelvor {

/// A block of bytes that can be changed.
///
///     auto data = NSMutableData::init();
///     data->appendBytes_length("head", 4);
///     data->appendData(body);
///
/// An operation that raises changes nothing. One thread at a time.
class PELVOR_EXPORT NSMutableData : public NSData {
    PELVOR_CLASS(NSMutableData, NSData);
    PELVOR_CREATORS(data, dataWithCapacity, dataWithLength, dataWithBytes_length, dataWithBytesNoCopy_length,
                    dataWithBytesNoCopy_length_freeWhenDone, dataWithData, dataWithContentsOfFile, init,
                    initWithCapacity, initWithLength, initWithBytes_length, initWithBytesNoCopy_length,
                    initWithBytesNoCopy_length_freeWhenDone, initWithData, initWithContentsOfFile, of);

  public:
    static NSMutableData* data();
    static NSMutableData* dataWithCapacity(NSUInteger capacity);
    /// Data of that many zeros.
    static NSMutableData* dataWithLength(NSUInteger length);
    static NSMutableData* dataWithBytes_length(const void* bytes, NSUInteger length);
    /// These copy the bytes, unlike NSData's operations of these names. Memory that the data was to take over
    /// is freed at once.
    static NSMutableData* dataWithBytesNoCopy_length(void* bytes, NSUInteger length);
    static NSMutableData* dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                  bool freeWhenDone);
    static NSMutableData* dataWithData(NSData* data);
    static NSMutableData* dataWithContentsOfFile(NSString* path);

    static Retained<NSMutableData> init(Class* cls = classObject());
    static Retained<NSMutableData> initWithCapacity(NSUInteger capacity, Class* cls = classObject());
    static Retained<NSMutableData> initWithLength(NSUInteger length, Class* cls = classObject());
    static Retained<NSMutableData> initWithBytes_length(const void* bytes, NSUInteger length,
                                                        Class* cls = classObject());
    static Retained<NSMutableData> initWithBytesNoCopy_length(void* bytes, NSUInteger length,
                                                              Class* cls = classObject());
    static Retained<NSMutableData> initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                           bool freeWhenDone,
                                                                           Class* cls = classObject());
    static Retained<NSMutableData> initWithData(NSData* data, Class* cls = classObject());
    static Retained<NSMutableData> initWithContentsOfFile(NSString* path, Class* cls = classObject());

    // C++ only
    static NSMutableData* of(std::span<const std::byte> bytes);

    NSUInteger length() override { return static_cast<NSUInteger>(_length); }
    const void* bytes() override { return _bytes; }
    void* mutableBytes() { return _bytes; }

    /// Removes bytes at the end, or adds zeros at the end, until the data has this length.
    void setLength(NSUInteger length);
    void increaseLengthBy(NSUInteger extra);
    /// Adds copies of the bytes at the end. The bytes may be the receiver's own. This and every other
    /// operation that adds bytes raises NSMallocException if the data would hold more bytes than an
    /// NSUInteger can count.
    void appendBytes_length(const void* bytes, NSUInteger length);
    void appendData(NSData* other);
    void setData(NSData* other);
    /// Sets the bytes of the range to zero. Raises NSRangeException for a range that is not inside the data.
    void resetBytesInRange(NSRange range);
    /// Overwrites the bytes of the range; the data grows if the range reaches beyond the end. Raises
    /// NSRangeException if the range begins beyond the end.
    void replaceBytesInRange_withBytes(NSRange range, const void* bytes);
    /// Replaces the bytes of the range by `length` other bytes. Raises NSRangeException for a range that is
    /// not inside the data.
    void replaceBytesInRange_withBytes_length(NSRange range, const void* bytes, NSUInteger length);

    // C++ only
    std::span<std::byte> mutableSpan() PELVOR_LIFETIMEBOUND { return {_bytes, _length}; }
    void append(std::span<const std::byte> bytes);
    /// Adds `count` bytes at the end, whose values the caller sets, and returns their address.
    std::byte* extend(NSUInteger count);
    /// Returns the bytes as immutable data without copying them; the receiver is empty afterwards.
    Retained<NSData> takeBytes();

    Retained<Object> copyWithZone(void* zone) override;

  protected:
    NSMutableData() = default;
    ~NSMutableData();

  private:
    void reserve(std::size_t capacity);
    std::byte* makeRoom(NSRange range, NSUInteger count, const char* operation);
    void replace(NSRange range, const void* bytes, NSUInteger count, const char* operation);

    std::byte* _bytes = nullptr;  // of `malloc`
    std::size_t _length = 0;
    std::size_t _capacity = 0;
};

}  // namespace pelvor
