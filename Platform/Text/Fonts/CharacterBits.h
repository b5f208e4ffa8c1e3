// SPDX-License-Identifier: Apache-2.0
// CharacterBits: a property of characters, asked once for each.
#pragma once

#include <array>
#include <atomic>
#include <bitset>
#include <functional>
#include <utility>

namespace pelvor {

/// Which of the first 65536 characters have a property. A block of 256 characters is asked for when the first
/// of them is needed. Any thread.
class CharacterBits {
  public:
    explicit CharacterBits(std::function<bool(char32_t)> property) : _property(std::move(property)) {}
    ~CharacterBits() {
        for (auto& block : _blocks) delete block.load();
    }
    CharacterBits(const CharacterBits&) = delete;

    bool operator[](char16_t character) {
        const Block* block = _blocks[character >> 8].load(std::memory_order_acquire);
        if (!block) [[unlikely]]
            block = fill(character >> 8);
        return (*block)[character & 0xFF];
    }

  private:
    using Block = std::bitset<256>;

    const Block* fill(unsigned number) {
        auto* filled = new Block;
        for (unsigned i = 0; i < 256; ++i) (*filled)[i] = _property(number << 8 | i);
        Block* other = nullptr;
        if (_blocks[number].compare_exchange_strong(other, filled)) return filled;
        delete filled;
        return other;
    }

    std::function<bool(char32_t)> _property;
    std::array<std::atomic<Block*>, 256> _blocks{};
};

}  // namespace pelvor
