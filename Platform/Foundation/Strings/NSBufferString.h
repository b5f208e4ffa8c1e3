// SPDX-License-Identifier: Apache-2.0
// NSBufferString: the mutable string that creators answer; for Foundation's own sources.
#pragma once

#include <utility>

#include "Foundation/NSMutableString.h"

namespace pelvor {

/// Units in one buffer of its own.
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
    /// Puts the units in place of all, without a copy.
    void adopt(std::u16string&& units) { _units = std::move(units); }
    /// Makes the string `length` units long and answers where they are written to.
    unichar* resize(NSUInteger length);

  protected:
    NSBufferString() = default;
    ~NSBufferString() = default;

  private:
    std::u16string _units;
};

}  // namespace pelvor
