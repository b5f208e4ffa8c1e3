// SPDX-License-Identifier: Apache-2.0
// TextUnits: the units of a text while it is being read.
#pragma once

#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

/// UTF-16 units in one piece of memory that becomes a string without being copied. What was reserved and not
/// written to takes no memory.
class TextUnits {
  public:
    TextUnits() = default;
    TextUnits(TextUnits&& other) noexcept;
    TextUnits& operator=(TextUnits&& other) noexcept;
    ~TextUnits();

    std::u16string_view view() const { return {_units, _length}; }
    /// Room for so many units behind the last one. Raises std::bad_alloc.
    char16_t* reserve(std::size_t count);
    /// Takes so many of those that were written there.
    void take(std::size_t count) { _length += count; }
    void append(std::u16string_view units);
    /// Forgets the units, not the memory.
    void clear() { _length = 0; }
    void removeFirst();
    /// The units as a string; none are left.
    Retained<NSString> makeString();

  private:
    char16_t* _units = nullptr;
    std::size_t _length = 0;
    std::size_t _capacity = 0;
};

}  // namespace pelvor
