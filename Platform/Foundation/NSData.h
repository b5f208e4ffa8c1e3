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
///     bool isSaved = data && data->writeToFile_atomically(copyPath, true);  // if not, NSFileError tells why
///     for (std::byte byte : data->span()) sum += std::to_integer<unsigned>(byte);
///
/// The class is abstract: a subclass implements `length` and `bytes` and hides the creators, which return
/// objects of private classes; NSArray.h has an example. Data copies the bytes that a creator is given,
/// unless the creator says otherwise. Immutable data may be used on any thread.
class PELVOR_EXPORT NSData : public NSObject {
    PELVOR_CLASS(NSData, NSObject);
    PELVOR_CREATORS(data, dataWithBytes_length, dataWithBytesNoCopy_length,
                    dataWithBytesNoCopy_length_freeWhenDone, dataWithData, dataWithContentsOfFile, init,
                    initWithBytes_length, initWithBytesNoCopy_length, initWithBytesNoCopy_length_freeWhenDone,
                    initWithData, initWithContentsOfFile, of);

  public:
    // Creation. Operations whose names begin with "init" return owned data, the others borrowed data. A null
    // pointer with a length of one byte or more raises NSInvalidArgumentException.

    static NSData* data();
    static NSData* dataWithBytes_length(const void* bytes, NSUInteger length);
    /// Data that uses the memory instead of copying it. The memory was allocated by `malloc`, and the data
    /// frees it. With false for `freeWhenDone`, the memory remains the caller's, and the caller keeps it
    /// unchanged as long as the data exists; copies of such data have bytes of their own.
    static NSData* dataWithBytesNoCopy_length(void* bytes, NSUInteger length);
    static NSData* dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length, bool freeWhenDone);
    static NSData* dataWithData(NSData* data);
    /// The content of the file; null if the file cannot be read, is a folder, or holds more bytes than an
    /// NSUInteger counts. `errno` then has the reason, of which NSFileError makes a text.
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

    /// Copies all bytes to the buffer. Raises NSInvalidArgumentException if the buffer is null and there is a
    /// byte to copy.
    void getBytes(void* buffer);
    /// Copies at most `length` bytes to the buffer.
    void getBytes_length(void* buffer, NSUInteger length);
    /// Copies the bytes of the range to the buffer. Raises NSRangeException for a range that is not inside
    /// the data.
    void getBytes_range(void* buffer, NSRange range);
    NSData* subdataWithRange(NSRange range);
    /// Writes the bytes to a new file, or in the place of the old content of a file. Returns whether this
    /// succeeded; if not, `errno` has the reason, of which NSFileError makes a text. If `isAtomic` is true
    /// and writing fails or is interrupted, the old file stays as it was.
    ///
    /// A symbolic link is followed and remains a link. Anything but a regular file (a pipe, a device,
    /// /dev/stdout) is written into directly; a pipe without a reader is refused. An atomic write puts a new
    /// file in the place of the old one; the new file gets the owner, group, access rights and access list of
    /// the old file as far as the user may set them. Other names of the old file (hard links) keep the old
    /// content. The user needs the right to write the old file and to make files in its folder: a read-only
    /// file is refused.
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
