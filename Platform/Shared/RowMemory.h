// SPDX-License-Identifier: Apache-2.0
// RowMemory: memory for many small objects of one class.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(memory, size) ((void)0)
#endif

namespace pelvor {

/// Objects that a thread makes one after the other stand one after the other in memory, in blocks of the
/// thread's own. A block is freed together with the last object in it, on whatever thread this object ends;
/// until then no place in the block is used again. Any thread.
template <class T, std::size_t kPlace = sizeof(T)>
class RowMemory {
  public:
    static void* allocate() {
        Thread& thread = _thread;
        if (thread.next == thread.end) [[unlikely]]
            thread.open();
        return std::exchange(thread.next, thread.next + kPlace);
    }

    static void free(void* place) noexcept {
        Thread& thread = _thread;
        Block* block = Block::of(place);
        ASAN_POISON_MEMORY_REGION(place, kPlace);
        if (block != thread.leaving) {
            thread.tell();
            thread.leaving = block;
            awaitEndOfThread();
        }
        ++thread.gone;
        if (thread.isOver) [[unlikely]]
            thread.tell();
    }

  private:
    struct Block {
        static constexpr std::size_t kAlignment = 16384;  // so that an object's address tells its block
        static constexpr std::size_t kSize =
            kAlignment - 16;  // leaves room for what the heap notes of a block
        static constexpr std::size_t kStart = sizeof(std::uint64_t);
        static constexpr std::uint32_t kCount = (kSize - kStart) / kPlace;

        explicit Block(std::uint32_t count) : left(count) {}
        static Block* of(void* place) {
            return reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(place) & ~(kAlignment - 1));
        }
        void forget(std::uint32_t count) {
            if (left.fetch_sub(count, std::memory_order_acq_rel) == count) std::free(this);
        }

        std::atomic<std::uint32_t> left;  // objects that are not freed yet, and places not used yet
    };
    static_assert(sizeof(Block) <= Block::kStart && kPlace % alignof(T) == 0);

    // A thread's block, and how many objects of a block the thread has freed without having told the block.
    struct Thread {
        std::byte* next = nullptr;
        std::byte* end = nullptr;
        Block* leaving = nullptr;
        std::uint32_t gone = 0;
        bool isOver = false;  // the thread is ending: each freed object is told at once

        [[gnu::noinline]] void open() {
            void* memory = nullptr;
            if (posix_memalign(&memory, Block::kAlignment, Block::kSize) != 0) throw std::bad_alloc();
            std::uint32_t count = isOver ? 1 : Block::kCount;
            ::new (memory) Block(count);
            next = static_cast<std::byte*>(memory) + Block::kStart;
            end = next + count * kPlace;
            awaitEndOfThread();
        }
        void tell() {
            if (leaving) std::exchange(leaving, nullptr)->forget(std::exchange(gone, 0));
        }
        void close() {
            isOver = true;
            tell();
            auto unmade = static_cast<std::uint32_t>(static_cast<std::size_t>(end - next) / kPlace);
            if (unmade > 0) Block::of(next)->forget(unmade);
            next = end;
        }
    };
    struct EndOfThread {
        ~EndOfThread() { _thread.close(); }
    };

    [[gnu::noinline]] static void awaitEndOfThread() { static thread_local EndOfThread endOfThread; }

    static constinit inline thread_local Thread _thread;
};

}  // namespace pelvor
