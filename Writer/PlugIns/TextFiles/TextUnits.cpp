// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextUnits.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace pelvor {

TextUnits::TextUnits(TextUnits&& other) noexcept
    : _units(std::exchange(other._units, nullptr)),
      _length(std::exchange(other._length, 0)),
      _capacity(std::exchange(other._capacity, 0)) {}

TextUnits& TextUnits::operator=(TextUnits&& other) noexcept {
    std::swap(_units, other._units);
    std::swap(_length, other._length);
    std::swap(_capacity, other._capacity);
    return *this;
}

TextUnits::~TextUnits() { std::free(_units); }

char16_t* TextUnits::reserve(std::size_t count) {
    if (_capacity - _length < count) {
        const std::size_t capacity = std::max(_length + count, _capacity + _capacity / 2);
        void* memory = std::realloc(_units, capacity * sizeof *_units);
        if (!memory) throw std::bad_alloc();
        _units = static_cast<char16_t*>(memory);
        _capacity = capacity;
    }
    return _units + _length;
}

void TextUnits::append(std::u16string_view units) {
    std::copy(units.begin(), units.end(), reserve(units.size()));
    take(units.size());
}

void TextUnits::removeFirst() {
    std::copy(_units + 1, _units + _length, _units);
    --_length;
}

Retained<NSString> TextUnits::makeString() {
    const auto length = static_cast<NSUInteger>(_length);
    if (void* fitting = std::realloc(_units, std::max<std::size_t>(1, _length) * sizeof *_units))
        _units = static_cast<char16_t*>(fitting);
    _length = _capacity = 0;
    return NSString::initWithCharactersNoCopy_length_freeWhenDone(std::exchange(_units, nullptr), length,
                                                                  true);
}

}  // namespace pelvor
