// SPDX-License-Identifier: Apache-2.0
// NSRangeValue: the value that boxes a range.
#pragma once

#include <span>

#include "Foundation/NSValue.h"

namespace pelvor {

class NSMutableArray;

/// The value that NSValue's creators return for a range. Lists hold many ranges, so that these values stand
/// in rows of memory, and code that knows the class reads the range without a virtual call. Any thread.
class PELVOR_EXPORT NSRangeValue final : public NSValue {
    PELVOR_CLASS(NSRangeValue, NSValue);

  public:
    // C++ only
    /// An owned value.
    static Retained<NSRangeValue> create(NSRange range);
    /// An owned array with one value for each range.
    static Retained<NSMutableArray> createArray(std::span<const NSRange> ranges);
    NSRange range() const { return _range; }
    std::span<const std::byte> span() PELVOR_LIFETIMEBOUND { return std::as_bytes(std::span(&_range, 1)); }
    static void* operator new(std::size_t size);
    static void operator delete(void* value) noexcept;

    const char* objCType() override { return typeEncoding<NSRange>.text; }
    void getValue(void* buffer) override;

  protected:
    explicit NSRangeValue(NSRange range) : _range(range) {}
    ~NSRangeValue() = default;

  private:
    NSRange _range;
};

}  // namespace pelvor
