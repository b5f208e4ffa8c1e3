// SPDX-License-Identifier: Apache-2.0
// NSExternalData: data over memory that was made elsewhere; for Foundation's own sources.
#pragma once

#include "Foundation/NSData.h"
#include "Foundation/Values/GrowingBytes.h"

namespace pelvor {

/// Uses memory as it is instead of copying it.
class NSExternalData final : public NSData {
    PELVOR_CLASS(NSExternalData, NSData);

  public:
    /// Data with the buffer's bytes, at most 4 GiB; the buffer is empty afterwards.
    static Retained<NSExternalData> create(GrowingBytes& buffer);
    /// Data that uses the bytes: memory that was allocated by `malloc` and that the data frees, or borrowed
    /// memory.
    enum class Memory : bool { borrowed, own };
    static Retained<NSExternalData> create(void* bytes, NSUInteger length, Memory memory);

    NSUInteger length() override { return _length; }
    const void* bytes() override { return _bytes; }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    NSExternalData() = default;
    ~NSExternalData();

  private:
    void* _bytes = nullptr;
    NSUInteger _length = 0;
    Memory _memory = Memory::own;
};

}  // namespace pelvor
