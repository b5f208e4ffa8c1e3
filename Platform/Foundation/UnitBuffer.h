// SPDX-License-Identifier: Apache-2.0
// UnitBuffer: a text that is written from front to back and becomes a string without being copied.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

class NSMutableString;

/// Puts the units in place of the string's whole text. A string of the platform's own class takes the memory
/// of the units over. Raises NSMallocException for a text that is too long for a string.
PELVOR_EXPORT void replaceTextAdopting(NSMutableString* string, std::u16string&& units);

/// Grows as needed, large texts mostly in place:
///
///     UnitBuffer text(expectedLength);
///     for (…) text.append(piece);
///     return text.takeString();
///
/// Raises NSMallocException where there is no room.
class UnitBuffer {
  public:
    /// With room for as many units as the text is expected to have.
    explicit UnitBuffer(std::size_t expected) { reserve(std::max<std::size_t>(expected, 16)); }
    UnitBuffer(UnitBuffer&& other) : UnitBuffer(0) { *this = std::move(other); }
    /// Exchanges the units of the two buffers.
    UnitBuffer& operator=(UnitBuffer&& other) noexcept {
        std::swap(_units, other._units);
        std::swap(_size, other._size);
        std::swap(_capacity, other._capacity);
        return *this;
    }
    ~UnitBuffer() { std::free(_units); }

    void append(std::u16string_view text) {
        if (text.size() > _capacity - _size) [[unlikely]]
            reserve(std::max(_size + text.size(), _capacity + _capacity / 2));
        std::memcpy(_units + _size, text.data(), text.size() * sizeof(unichar));
        _size += text.size();
    }
    void append(unichar unit) {
        if (_size == _capacity) [[unlikely]]
            reserve(_capacity + _capacity / 2);
        _units[_size++] = unit;
    }
    /// Appends `count` units of the text from the place on. A few units are copied as a whole block, together
    /// with the units behind them, because this is quicker.
    void appendPart(std::u16string_view text, std::size_t place, std::size_t count) {
        constexpr std::size_t kBlock = 16;
        std::size_t whole = (count + kBlock - 1) / kBlock * kBlock;
        if (count > 8 * kBlock || whole > text.size() - place || whole > _capacity - _size)
            return append(text.substr(place, count));
        for (std::size_t i = 0; i < count; i += kBlock)
            std::memcpy(_units + _size + i, text.data() + place + i, kBlock * sizeof(unichar));
        _size += count;
    }
    /// Room for `count` units behind the last one. The caller writes units there, and then calls `take`.
    unichar* room(std::size_t count) {
        if (count > _capacity - _size) reserve(std::max(_size + count, _capacity + _capacity / 2));
        return _units + _size;
    }
    /// Appends the first `count` units that were written to the room.
    void take(std::size_t count) { _size += count; }
    std::u16string_view view() const PELVOR_LIFETIMEBOUND { return {_units, _size}; }

    /// The text as a borrowed string, after which the buffer is not to be used. Raises NSMallocException for
    /// a text that is too long for a string.
    NSString* takeString() {
        if (_size > std::numeric_limits<NSUInteger>::max())
            throw NSException(NSMallocException, "UnitBuffer: the text is too long for a string");
        if (_size < _capacity / 4 * 3) reserve(std::max<std::size_t>(_size, 1));
        return NSString::initWithCharactersNoCopy_length_freeWhenDone(
                   std::exchange(_units, nullptr), static_cast<NSUInteger>(std::exchange(_size, 0)), true)
            .autorelease();
    }

  private:
    PELVOR_EXPORT void reserve(std::size_t capacity);

    unichar* _units = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

}  // namespace pelvor
