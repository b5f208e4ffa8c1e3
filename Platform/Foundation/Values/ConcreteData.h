// SPDX-License-Identifier: Apache-2.0
// The immutable data that creators return; for Foundation's own sources.
#pragma once

#include "Foundation/NSData.h"

namespace pelvor {

/// Data whose bytes stand in the memory of the object itself, directly behind its fields.
class NSInlineData final : public NSData {
    PELVOR_CLASS(NSInlineData, NSData);

  public:
    /// Owned data with a copy of the bytes. Raises NSInvalidArgumentException, in the name of the operation,
    /// if `bytes` is null and the length is not 0.
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
