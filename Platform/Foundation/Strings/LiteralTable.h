// SPDX-License-Identifier: Apache-2.0
// LiteralTable: finds what belongs to a string literal by its address; for Foundation's own sources.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// From literals to values. Looking up takes no lock; adding needs the owner's. Nothing is ever removed.
template <class T>
class LiteralTable {
  public:
    LiteralTable() { grow(64); }

    /// None for a literal that was not added, and for every other string.
    T* find(NSString* literal) const {
        const Slots* slots = _slots.load(std::memory_order_acquire);
        for (std::size_t i = slots->home(literal);; i = (i + 1) & slots->mask) {
            NSString* key = slots->slots[i].key.load(std::memory_order_acquire);
            if (key == literal) return slots->slots[i].value.load(std::memory_order_relaxed);
            if (!key) return nullptr;
        }
    }

    void add(NSString* literal, T* value) {
        if (++_count * 2 > current().mask) grow((current().mask + 1) * 2);
        current().insert(literal, value);
    }

  private:
    struct Slot {
        std::atomic<NSString*> key{nullptr};
        std::atomic<T*> value{nullptr};
    };
    struct Slots {
        explicit Slots(std::size_t size) : mask(size - 1), slots(std::make_unique<Slot[]>(size)) {}

        std::size_t home(NSString* literal) const {
            auto address = reinterpret_cast<std::uintptr_t>(literal);
            return static_cast<std::size_t>(address * 0x9E3779B97F4A7C15u >> 32) & mask;
        }
        void insert(NSString* literal, T* value) {
            std::size_t i = home(literal);
            while (slots[i].key.load(std::memory_order_relaxed)) i = (i + 1) & mask;
            slots[i].value.store(value, std::memory_order_relaxed);
            slots[i].key.store(literal, std::memory_order_release);
        }

        const std::size_t mask;
        const std::unique_ptr<Slot[]> slots;
    };

    Slots& current() { return *_slots.load(std::memory_order_relaxed); }

    // Readers may be in the old slots still: all are kept, together less than twice the newest.
    void grow(std::size_t size) {
        auto larger = std::make_unique<Slots>(size);
        if (!_all.empty())
            for (std::size_t i = 0; i <= current().mask; ++i)
                if (NSString* key = current().slots[i].key.load(std::memory_order_relaxed))
                    larger->insert(key, current().slots[i].value.load(std::memory_order_relaxed));
        _slots.store(larger.get(), std::memory_order_release);
        _all.push_back(std::move(larger));
    }

    std::atomic<Slots*> _slots{nullptr};
    std::vector<std::unique_ptr<Slots>> _all;
    std::size_t _count = 0;
};

}  // namespace pelvor
