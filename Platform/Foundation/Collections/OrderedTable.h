// SPDX-License-Identifier: Apache-2.0
// OrderedTable: the hash table behind sets and dictionaries; for Foundation's own sources.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <vector>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Objects, each once by `hash` and `isEqual`, in the order in which they were added, each with a payload.
/// The table neither retains nor releases them. The entries stand in one array; a removed entry leaves a
/// hole. From nine entries on an index of the array's positions, with linear probing, finds them.
///
/// A look-up calls `isEqual` of other code. If that code changes the table, the look-up notices the change
/// and begins anew.
template <class Payload>
class OrderedTable {
  public:
    struct Entry {
        Unretained<Object> key;  // null: a hole
        std::uint32_t hash;
        [[no_unique_address]] Payload payload;
    };
    static constexpr NSUInteger kNone = UINT32_MAX;

    /// What the table keeps of an object's hash; all bits of the hash take part.
    static std::uint32_t fold(std::uintptr_t hash) {
        return static_cast<std::uint32_t>((std::uint64_t{hash} * 0x9E3779B97F4A7C15u) >> 32);
    }

    NSUInteger count() const { return _count; }
    /// Changes whenever an entry comes or goes.
    const std::uint32_t* mutationCounter() const { return &_mutations; }
    Entry& entry(NSUInteger position) { return _entries[position]; }

    /// The position of the first entry at or after `position`; kNone at the end.
    NSUInteger next(NSUInteger position) const {
        for (position = std::max(position, _first); position < _entries.size(); ++position)
            if (_entries[position].key) return position;
        return kNone;
    }

    /// The position of the entry that `probe` is, or is equal to; kNone without one.
    NSUInteger find(id probe, std::uint32_t hash) {
        for (;;) {
            std::uint32_t before = _mutations;
            NSUInteger found = _index ? findByIndex(probe, hash, before) : findInOrder(probe, hash, before);
            if (_mutations == before) return found;
        }
    }

    /// Adds an entry that the table does not hold, and returns its position.
    NSUInteger add(id key, std::uint32_t hash, Payload payload) {
        if (_entries.size() == _entries.capacity()) makeRoom();
        auto position = static_cast<NSUInteger>(_entries.size());
        _entries.push_back({key, hash, payload});
        if (_index) setSlot(position);
        ++_count;
        ++_mutations;
        return position;
    }

    /// Takes an entry out.
    Entry remove(NSUInteger position) {
        if (_index) clearSlot(position);
        Entry removed = _entries[position];
        _entries[position].key = nullptr;
        --_count;
        ++_mutations;
        while (!_entries.empty() && !_entries.back().key) _entries.pop_back();
        if (position <= _first) _first = std::min(next(position), static_cast<NSUInteger>(_entries.size()));
        if (_entries.size() > 32 && _count < _entries.size() / 4) rebuild(_count * 2);
        return removed;
    }

    /// Takes all entries out, holes among them.
    std::vector<Entry> removeAll() {
        if (_count) ++_mutations;
        _index.reset();
        _first = _count = 0;
        return std::exchange(_entries, {});
    }

    void reserve(NSUInteger capacity) {
        if (capacity > _entries.capacity()) rebuild(capacity);
    }

    /// Takes over the entries of another table; the receiver is empty.
    void copyFrom(const OrderedTable& other) {
        _entries.reserve(other._count);
        for (const Entry& entry : other._entries)
            if (entry.key) _entries.push_back(entry);
        _count = other._count;
        buildIndex();
    }

  private:
    static constexpr NSUInteger kLargestWithoutIndex = 8;
    static constexpr std::uint32_t kEmpty = kNone;

    // Both searches stop when foreign code has changed the table; the caller then begins anew.
    NSUInteger findInOrder(id probe, std::uint32_t hash, std::uint32_t before) {
        for (NSUInteger position = _first; _mutations == before && position < _entries.size(); ++position)
            if (matches(_entries[position], probe, hash)) return position;
        return kNone;
    }

    NSUInteger findByIndex(id probe, std::uint32_t hash, std::uint32_t before) {
        for (std::uint32_t slot = hash & _mask; _mutations == before; slot = (slot + 1) & _mask) {
            NSUInteger position = _index[slot];
            if (position == kEmpty || matches(_entries[position], probe, hash)) return position;
        }
        return kNone;
    }

    static bool matches(const Entry& entry, id probe, std::uint32_t hash) {
        return entry.hash == hash && entry.key && (entry.key == probe || probe->isEqual(entry.key));
    }

    void makeRoom() {
        auto size = static_cast<NSUInteger>(_entries.size());
        rebuild(_count > size - size / 4 ? std::max<NSUInteger>(4, size * 2) : size);
    }

    // Closes the holes and makes room for `capacity` entries.
    void rebuild(NSUInteger capacity) {
        std::vector<Entry> entries;
        entries.reserve(std::max(capacity, _count));
        for (const Entry& entry : _entries)
            if (entry.key) entries.push_back(entry);
        _entries = std::move(entries);
        _first = 0;
        buildIndex();
    }

    // The index has at least one and a half times as many slots as there is room for entries.
    void buildIndex() {
        _index.reset();
        if (_entries.capacity() <= kLargestWithoutIndex) return;
        std::size_t slots = std::bit_ceil(_entries.capacity() + _entries.capacity() / 2);
        _index = std::make_unique_for_overwrite<std::uint32_t[]>(slots);
        std::memset(_index.get(), 0xFF, slots * sizeof(std::uint32_t));
        _mask = static_cast<std::uint32_t>(slots - 1);
        for (NSUInteger i = 0; i < _entries.size(); ++i) setSlot(i);
    }

    void setSlot(NSUInteger position) {
        std::uint32_t slot = _entries[position].hash & _mask;
        while (_index[slot] != kEmpty) slot = (slot + 1) & _mask;
        _index[slot] = position;
    }

    // Entries that stand behind the freed slot because it was taken move up.
    void clearSlot(NSUInteger position) {
        std::uint32_t hole = _entries[position].hash & _mask;
        while (_index[hole] != position) hole = (hole + 1) & _mask;
        for (std::uint32_t slot = (hole + 1) & _mask; _index[slot] != kEmpty; slot = (slot + 1) & _mask) {
            std::uint32_t home = _entries[_index[slot]].hash & _mask;
            if (((slot - home) & _mask) >= ((slot - hole) & _mask)) {
                _index[hole] = _index[slot];
                hole = slot;
            }
        }
        _index[hole] = kEmpty;
    }

    std::vector<Entry> _entries;
    std::unique_ptr<std::uint32_t[]> _index;
    std::uint32_t _mask = 0;
    NSUInteger _first = 0;  // no entry stands before it
    NSUInteger _count = 0;
    std::uint32_t _mutations = 0;
};

}  // namespace pelvor
