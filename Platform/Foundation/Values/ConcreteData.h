// SPDX-License-Identifier: Apache-2.0
// The immutable data that creators answer; for Foundation's own sources.
#pragma once

#include "Foundation/NSData.h"
#include "Runtime/NSException.h"

namespace pelvor {

/// Bytes in the same memory as the object, directly after it.
class NSInlineData final : public NSData {
    PELVOR_CLASS(NSInlineData, NSData);

  public:
    /// Owned data of that length, whose content the caller writes to `storage()` before anybody else sees
    /// them.
    static Retained<NSInlineData> create(NSUInteger length) {
        return Retained<NSInlineData>::adopting(
            Instances::createWithExtra<NSInlineData>(length, &classRecord, length));
    }

    NSUInteger length() override { return _length; }
    const void* bytes() override { return storage(); }
    void* storage() { return this + 1; }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    explicit NSInlineData(NSUInteger length) : _length(length) {}
    ~NSInlineData() = default;

  private:
    NSUInteger _length;
};

/// Raises NSInvalidArgumentException for a length without bytes.
inline void requireBytes(const void* bytes, NSUInteger length) {
    if (!bytes && length) throw NSException(NSInvalidArgumentException, "a length was given without bytes");
}

}  // namespace pelvor
