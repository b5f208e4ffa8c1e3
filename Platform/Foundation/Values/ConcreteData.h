// SPDX-License-Identifier: Apache-2.0
// The immutable data that creators return; for Foundation's own sources.
#pragma once

#include "Foundation/NSData.h"

namespace pelvor {

/// Bytes in the same memory as the object, directly after it.
class NSInlineData final : public NSData {
    PELVOR_CLASS(NSInlineData, NSData);

  public:
    /// Owned data with a copy of the bytes. Raises NSInvalidArgumentException for null as memory of bytes, in
    /// the name of the operation.
    static Retained<NSInlineData> create(const void* bytes, NSUInteger length, const char* operation);

    NSUInteger length() override { return _length; }
    const void* bytes() override { return this + 1; }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    explicit NSInlineData(NSUInteger length) : _length(length) {}
    ~NSInlineData() = default;

  private:
    NSUInteger _length;
};

}  // namespace pelvor
