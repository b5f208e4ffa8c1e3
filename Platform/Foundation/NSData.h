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

/// Bytes. Abstract over `length` and `bytes`; the creators answer objects of concrete classes, which
/// copy what they are given unless they say otherwise. Immutable data may be used on any thread.
class PELVOR_EXPORT NSData : public NSObject {
    PELVOR_CLASS(NSData, NSObject);
    PELVOR_CREATORS(data, dataWithBytes_length, dataWithBytesNoCopy_length,
                    dataWithBytesNoCopy_length_freeWhenDone, dataWithData, dataWithContentsOfFile, init,
                    initWithBytes_length, initWithBytesNoCopy_length, initWithBytesNoCopy_length_freeWhenDone,
                    initWithData, initWithContentsOfFile, of);

  public:
    // Creation. Operations whose names begin with "init" answer owned data, the others borrowed data.

    static NSData* data();
    static NSData* dataWithBytes_length(const void* bytes, NSUInteger length);
    /// Data over memory made by `malloc`, which they take over and free; with NO for `freeWhenDone` over
    /// memory that stays the caller's, and as it is, for as long as the data are there. Copies of the data
    /// have bytes of their own then.
    static NSData* dataWithBytesNoCopy_length(void* bytes, NSUInteger length);
    static NSData* dataWithBytesNoCopy_length_freeWhenDone(void* bytes, NSUInteger length, bool freeWhenDone);
    static NSData* dataWithData(NSData* data);
    /// The content of the file as far as it can be read; none when it cannot be opened or is no file, or
    /// does not fit NSUInteger.
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
    /// Valid until the data change or go. May be none for empty data.
    virtual const void* bytes() = 0;

    // C++ only
    std::span<const std::byte> span() PELVOR_LIFETIMEBOUND {
        return {static_cast<const std::byte*>(bytes()), length()};
    }

    /// Copies the bytes to the buffer.
    void getBytes(void* buffer);
    /// As many bytes as there are, at most `length`.
    void getBytes_length(void* buffer, NSUInteger length);
    /// Raises NSRangeException for a range that is not inside.
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
    Retained<NSData> copy() {
        return Retained<NSData>::adopting(static_cast<NSData*>(copyWithZone(nullptr).leak()));
    }
    Retained<NSMutableData> mutableCopy();

  protected:
    NSData() = default;
    ~NSData() = default;
};

}  // namespace pelvor
