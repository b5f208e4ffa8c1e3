// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/WordCache.h"

#include <cstring>

namespace pelvor {

namespace {

constexpr std::size_t kHead = 2;  // words before the advances
constexpr std::size_t kFirstSlots = 1024;

}  // namespace

std::uint32_t WordCache::hashOf(const Key& key) {
    std::uint64_t hash = key.measurer * 0x9E3779B97F4A7C15u + headOf(key);
    for (char16_t unit : key.word) hash = (hash ^ unit) * 0x100000001B3u;
    return static_cast<std::uint32_t>(hash >> 32 ^ hash);
}

std::uint32_t WordCache::headOf(const Key& key) {
    return static_cast<std::uint32_t>(key.word.size()) << 2 | key.isAfterBlank << 1 |
           static_cast<std::uint32_t>(key.isBeforeBlank);
}

bool WordCache::isAt(std::size_t place, const Key& key) const {
    if (_entries[place] != key.measurer || _entries[place + 1] != headOf(key)) return false;
    const std::size_t units = place + kHead + key.word.size() + key.isAfterBlank;
    return key.word.empty() || !std::memcmp(&_entries[units], key.word.data(), key.word.size() * 2);
}

// The slot of the key's entry, or the free one where it would be.
std::size_t WordCache::slotFor(const Key& key, std::uint32_t hash) const {
    const std::size_t mask = _slots.size() - 1;
    std::size_t slot = hash & mask;
    while (_slots[slot].place && (_slots[slot].hash != hash || !isAt(_slots[slot].place - 1, key)))
        slot = (slot + 1) & mask;
    return slot;
}

std::optional<std::span<const std::int32_t>> WordCache::find(const Key& key) const {
    if (_slots.empty()) return std::nullopt;
    const Slot slot = _slots[slotFor(key, hashOf(key))];
    if (!slot.place) return std::nullopt;
    const auto* advances = reinterpret_cast<const std::int32_t*>(&_entries[slot.place - 1 + kHead]);
    return std::span(advances, key.word.size() + key.isAfterBlank);
}

void WordCache::add(const Key& key, std::span<const std::int32_t> advances) {
    const std::size_t size = kHead + advances.size() + (key.word.size() + 1) / 2;
    if (byteCount() + 4 * size > kMostBytes) clear();
    if (2 * (_count + 1) > _slots.size()) grow();
    const std::uint32_t hash = hashOf(key);
    const std::size_t place = _entries.size();
    _entries.resize(place + size);
    _entries[place] = key.measurer;
    _entries[place + 1] = headOf(key);
    std::memcpy(&_entries[place + kHead], advances.data(), advances.size_bytes());
    if (!key.word.empty())
        std::memcpy(&_entries[place + kHead + advances.size()], key.word.data(), key.word.size() * 2);
    _slots[slotFor(key, hash)] = {hash, static_cast<std::uint32_t>(place + 1)};
    ++_count;
}

void WordCache::grow() {
    const std::vector<Slot> old = std::move(_slots);
    _slots.assign(old.empty() ? kFirstSlots : 2 * old.size(), {});
    const std::size_t mask = _slots.size() - 1;
    for (Slot moved : old) {
        if (!moved.place) continue;
        std::size_t slot = moved.hash & mask;
        while (_slots[slot].place) slot = (slot + 1) & mask;
        _slots[slot] = moved;
    }
}

void WordCache::clear() {
    _entries = {};
    _slots = {};
    _count = 0;
}

}  // namespace pelvor
