// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Selector.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_map>

namespace pelvor {
namespace {

// Names are found by index without a lock: blocks never move once they are published.
class SelectorTable {
  public:
    std::uint32_t find(std::string_view name) {
        std::lock_guard guard(_mutex);
        auto found = _indexes.find(name);
        return found == _indexes.end() ? 0 : found->second;
    }

    std::uint32_t intern(std::string_view name) {
        std::lock_guard guard(_mutex);
        if (auto found = _indexes.find(name); found != _indexes.end()) return found->second;
        std::uint32_t index = _count;
        char* copy = new char[name.size() + 1];
        std::memcpy(copy, name.data(), name.size());
        copy[name.size()] = '\0';
        slot(index).store(copy, std::memory_order_release);
        _indexes.emplace(std::string_view(copy, name.size()), index);
        ++_count;
        return index;
    }

    const char* name(std::uint32_t index) const {
        const Block* block = _blocks[index / kBlockSize].load(std::memory_order_acquire);
        return (*block)[index % kBlockSize].load(std::memory_order_acquire);
    }

  private:
    static constexpr std::uint32_t kBlockSize = 1024;
    static constexpr std::uint32_t kBlockLimit = 4096;
    using Block = std::array<std::atomic<const char*>, kBlockSize>;

    std::atomic<const char*>& slot(std::uint32_t index) {
        if (index >= kBlockSize * kBlockLimit) std::abort();
        std::atomic<Block*>& place = _blocks[index / kBlockSize];
        if (!place.load(std::memory_order_relaxed)) place.store(new Block{}, std::memory_order_release);
        return (*place.load(std::memory_order_relaxed))[index % kBlockSize];
    }

    std::mutex _mutex;
    std::unordered_map<std::string_view, std::uint32_t> _indexes;
    std::array<std::atomic<Block*>, kBlockLimit> _blocks{};
    std::uint32_t _count = 1;  // 0 is the null selector
};

// Never destroyed: the names of selectors are read until the very end of the process.
SelectorTable& selectors() {
    static auto& table = *new SelectorTable;
    return table;
}

}  // namespace

const char* SEL::name() const { return _index == 0 ? "" : selectors().name(_index); }

int SEL::argumentCount() const {
    std::string_view text = name();
    return static_cast<int>(std::count(text.begin(), text.end(), ':'));
}

SEL registerSelector(std::string_view name) { return SEL(selectors().intern(name)); }

SEL findSelector(std::string_view name) { return SEL(selectors().find(name)); }

}  // namespace pelvor
