// SPDX-License-Identifier: Apache-2.0
// The units of a string one by one, in any order, without a copy of the whole.
#pragma once

#include <algorithm>

#include "Foundation/NSString.h"

namespace pelvor {

/// Reads around a place in a text that may be long. The string must not change meanwhile.
class UnitReader {
  public:
    explicit UnitReader(NSString* string)
        : _string(string), _units(string->contiguousCharacters()), _length(string->length()) {
        if (_units) _count = _length;
    }
    UnitReader(const UnitReader&) = delete;
    UnitReader& operator=(const UnitReader&) = delete;

    NSUInteger size() const { return _length; }
    /// Where the units from the index on stand in memory, if `count` of them are there and the text stands in
    /// one piece; else null.
    const unichar* inMemory(NSUInteger index, NSUInteger count) const {
        return _count == _length && index <= _length && count <= _length - index ? _units + index : nullptr;
    }
    /// The index is below the size.
    unichar operator[](NSUInteger index) {
        if (index - _start >= _count) [[unlikely]]
            fetch(index);
        return _units[index - _start];
    }

  private:
    static constexpr NSUInteger kBlock = 256;

    void fetch(NSUInteger index) {
        _start = index / kBlock * kBlock;
        _count = std::min(kBlock, _length - _start);
        _string->getCharacters_range(_block, {_start, _count});
        _units = _block;
    }

    Unretained<NSString> _string;
    const unichar* _units;
    NSUInteger _length;
    NSUInteger _start = 0;
    NSUInteger _count = 0;
    unichar _block[kBlock];
};

}  // namespace pelvor
