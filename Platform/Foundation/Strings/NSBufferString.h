// SPDX-License-Identifier: Apache-2.0
// NSBufferString: the mutable string that creators return.
#pragma once

#include <utility>

#include "Foundation/NSMutableString.h"

namespace pelvor {

/// A mutable string whose units stand in one buffer.
class NSBufferString final : public NSMutableString {
    PELVOR_CLASS(NSBufferString, NSMutableString);

  public:
    NSUInteger length() override { return static_cast<NSUInteger>(_units.size()); }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return _units.data(); }
    void replaceCharactersInRange_withString(NSRange range, NSString* string) override;
    void replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units) override;

    void reserve(NSUInteger capacity) { _units.reserve(capacity); }
    /// Puts the units in place of the whole text, without copying them.
    void adopt(std::u16string&& units) { _units = std::move(units); }
    /// Makes the string `length` units long and returns where the units are written to.
    unichar* resize(NSUInteger length);

  protected:
    NSBufferString() = default;
    ~NSBufferString() = default;

  private:
    std::u16string _units;
};

}  // namespace pelvor
