// SPDX-License-Identifier: Apache-2.0
// NSData: an immutable block of bytes.
#pragma once

#include <cstddef>
#include <span>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableData;
class NSString;

/// An immutable block of bytes.
///
///     NSData* data = NSData::dataWithContentsOfFile(path);       // null if the file cannot be read
///     if (data && !data->writeToFile_atomically(copyPath, true)) NSLog(u"%s"_ns, std::strerror(errno));
///     for (std::byte byte : data->span()) sum += std::to_integer<unsigned>(byte);
///
/// Abstract over `length` and `bytes`; the creators return objects of concrete classes, which copy what they
/// are given unless the creator says otherwise. Immutable data may be used on any thread.
class PELVOR_EXPORT NSData : public NSObject {
    PELVOR_CLASS(NSData, NSObject);
    PELVOR_CREATORS(data, dataWithBytes_length, dataWithBytesNoCopy_length,
                    dataWithBytesNoCopy_length_freeWhenDone, dataWithData, dataWithContentsOfFile, init,
                    initWithBytes_length, initWithBytesNoCopy_length, initWithBytesNoCopy_length_freeWhenDone,
                    initWithData, initWithContentsOfFile, of);

  public:
    // Creation. Operations whose names begin with "init" return owned data, the others borrowed data. Null as
    // memory of one byte or more raises NSInvalidArgumentException.

    static NSData* data();
    static NSData* dataWithBytes_length(const void* bytes, NSUInteger length);
    /// Data that uses the memory instead of copying it. The memory was made by `malloc`, and the data frees
    /// it. With false for `freeWhenDone` the memory stays the caller's, who must keep it unchanged as long as
    /// the data exists; copies of such data have bytes of their own.
    static NSData* dataWithBytesNoCopy_length(void* bytes, NSUInteger length);
    static NSData* dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length, bool freeWhenDone);
    static NSData* dataWithData(NSData* data);
    /// The content of the file; null, with the reason in `errno`, if the file cannot be read, is a folder, or
    /// holds more bytes than an NSUInteger counts.
    static NSData* dataWithContentsOfFile(NSString* path);

    static Retained<NSData> init();
    static Retained<NSData> initWithBytes_length(const void* bytes, NSUInteger length);
    static Retained<NSData> initWithBytesNoCopy_length(void* bytes, NSUInteger length);
    static Retained<NSData> initWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length,
                                                                    bool freeWhenDone);
    static Retained<NSData> initWithData(NSData* data);
    static Retained<NSData> initWithContentsOfFile(NSString* path);

    // C++ only
    static NSData* of(std::span<const std::byte> bytes);

    // Primitives

    virtual NSUInteger length() = 0;
    /// Valid until the data changes or is destroyed. May be null for empty data.
    virtual const void* bytes() = 0;

    // C++ only
    std::span<const std::byte> span() PELVOR_LIFETIMEBOUND {
        return {static_cast<const std::byte*>(bytes()), length()};
    }

    /// Copies the bytes to the buffer. Raises NSInvalidArgumentException for null as buffer of one byte or
    /// more.
    void getBytes(void* buffer);
    /// Copies at most `length` bytes to the buffer.
    void getBytes_length(void* buffer, NSUInteger length);
    /// Copies the bytes of the range to the buffer. Raises NSRangeException for a range that is not inside.
    void getBytes_range(void* buffer, NSRange range);
    NSData* subdataWithRange(NSRange range);
    /// Writes the file, new or in the place of an old one; atomically: as a whole or not at all. Returns
    /// whether that worked; if not, `errno` tells the reason.
    ///
    /// A link is followed and stays a link. What is no regular file (a pipe, a device, /dev/stdout) is
    /// written into directly; a pipe without a reader is refused. An atomic write puts a new file in the
    /// place of the old one and keeps owner, group, access rights and access list as far as the user may set
    /// them. Other names of the old file (hard links) keep the old content. The user needs the right to write
    /// the old file and to make files in its folder: a read-only file is refused.
    bool writeToFile_atomically(NSString* path, bool isAtomic);
    bool isEqualToData(NSData* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "<0102aaff 00>".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSData> copy() { return cast<NSData>(copyWithZone(nullptr)); }
    Retained<NSMutableData> mutableCopy();

  protected:
    NSData() = default;
    ~NSData() = default;
};

}  // namespace pelvor
