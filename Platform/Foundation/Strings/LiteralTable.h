// SPDX-License-Identifier: Apache-2.0
// LiteralTable: finds what belongs to a string literal by its address; for Foundation's own sources.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// From literals to values. Nothing is ever removed. Not for several threads at once.
template <class T>
class LiteralTable {
  public:
    /// Returns null for a literal that was not added, and for every other string.
    T* find(NSString* literal) const {
        for (std::size_t i = home(literal);; i = (i + 1) & mask())
            if (_slots[i].literal == literal || !_slots[i].literal) return _slots[i].value;
    }

    void add(NSString* literal, T* value) {
        if (++_count * 2 > _slots.size()) grow();
        insert({literal, value});
    }

  private:
    struct Slot {
        NSString* literal = nullptr;
        T* value = nullptr;
    };

    std::size_t mask() const { return _slots.size() - 1; }
    std::size_t home(NSString* literal) const {
        auto address = reinterpret_cast<std::uintptr_t>(literal);
        return static_cast<std::size_t>(address * 0x9E3779B97F4A7C15u >> 32) & mask();
    }
    void insert(const Slot& slot) {
        std::size_t i = home(slot.literal);
        while (_slots[i].literal) i = (i + 1) & mask();
        _slots[i] = slot;
    }
    void grow() {
        auto old = std::exchange(_slots, std::vector<Slot>(_slots.size() * 2));
        for (const Slot& slot : old)
            if (slot.literal) insert(slot);
    }

    std::vector<Slot> _slots = std::vector<Slot>(64);  // a power of two
    std::size_t _count = 0;
};

}  // namespace pelvor
