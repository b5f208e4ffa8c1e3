// SPDX-License-Identifier: Apache-2.0
// WordCache: the advances of words that were shaped before.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace pelvor {

/// The advances of words, in units of their fonts, by text, by the blanks beside the word, and by the number
/// of what measures their font, script and language. Holds about 4 MB: once full, the cache forgets all.
/// Callers see to it that one thread uses the cache at a time.
class WordCache {
  public:
    struct Key {
        std::uint32_t measurer;
        bool isAfterBlank;
        bool isBeforeBlank;
        std::u16string_view word;
    };

    /// The advances: one for each unit of the word, after that of the blank before the word if there is one.
    /// Valid until the cache changes.
    std::optional<std::span<const std::int32_t>> find(const Key& key) const;
    void add(const Key& key, std::span<const std::int32_t> advances);
    std::size_t byteCount() const { return 4 * (_entries.size() + 2 * _slots.size()); }

    static constexpr std::size_t kMostBytes = 4 << 20;

  private:
    // Entries stand one after another: the measurer, what `headOf` says, the advances, the units two by two.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0;  // of the entry, plus 1
    };
    static std::uint32_t hashOf(const Key& key);
    static std::uint32_t headOf(const Key& key);
    bool isAt(std::size_t place, const Key& key) const;
    std::size_t slotFor(const Key& key, std::uint32_t hash) const;
    void grow();
    void clear();

    std::vector<std::uint32_t> _entries;
    std::vector<Slot> _slots;
    std::size_t _count = 0;
};

}  // namespace pelvor
