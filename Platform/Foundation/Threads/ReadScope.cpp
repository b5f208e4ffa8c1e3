// SPDX-License-Identifier: Apache-2.0
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "Foundation/Threads/ReadScope.h"

namespace pelvor {
namespace {

// MARK: Retired objects

struct Retired {
    const void* object;
    void (*free)(const void*);
};

struct Retirement {
    std::mutex mutex;
    std::vector<Retired> waiting;
    std::size_t enough = 64;  // so many are worth a look at all readers
};

Retirement& retirement() {
    static auto& shared = *new Retirement;
    return shared;
}

int callMembarrier(int command) { return static_cast<int>(syscall(SYS_membarrier, command, 0, 0)); }

// After it, every reader either has its object in its places or will see that the object was replaced;
// false where that cannot be had.
bool fenceReaders(const std::atomic<bool>& readersFence) {
    std::atomic_thread_fence(std::memory_order_seq_cst);
    return callMembarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED) == 0 || readersFence.load();
}

// Takes what nobody reads out of the waiting ones.
std::vector<Retired> collect(Retirement& state, const std::unordered_set<const void*>& readObjects) {
    auto middle = std::partition(state.waiting.begin(), state.waiting.end(), [&](const Retired& retired) {
        return readObjects.contains(retired.object);
    });
    std::vector<Retired> unread(middle, state.waiting.end());
    state.waiting.erase(middle, state.waiting.end());
    state.enough = std::max<std::size_t>(64, state.waiting.size() * 2);
    return unread;
}

}  // namespace

// MARK: Readers

constinit thread_local ReadScope::Reader* ReadScope::_ownReader = nullptr;

struct ReadScope::EndOfThread {
    ~EndOfThread() {
        _ownReader->isTaken.store(false, std::memory_order_release);
        _ownReader = nullptr;
    }
};

struct ReadScope::Readers {
    static Reader* take();
    static std::unordered_set<const void*> protectedObjects();

    static constinit std::atomic<Reader*> first;
};

constinit std::atomic<ReadScope::Reader*> ReadScope::Readers::first{nullptr};

ReadScope::Reader* ReadScope::Readers::take() {
    for (Reader* reader = first.load(std::memory_order_acquire); reader; reader = reader->next) {
        bool expected = false;
        if (reader->isTaken.compare_exchange_strong(expected, true)) return reader;
    }
    auto* reader = new Reader;
    reader->next = first.load(std::memory_order_relaxed);
    while (!first.compare_exchange_weak(reader->next, reader)) continue;
    return reader;
}

std::unordered_set<const void*> ReadScope::Readers::protectedObjects() {
    std::unordered_set<const void*> found;
    for (Reader* reader = first.load(std::memory_order_acquire); reader; reader = reader->next)
        for (Places* places = &reader->places; places;
             places = places->deeper.load(std::memory_order_acquire))
            for (auto& place : places->objects)
                if (const void* object = place.load(std::memory_order_acquire)) found.insert(object);
    return found;
}

[[gnu::noinline]] ReadScope::Reader& ReadScope::beginReader() {
    _ownReader = Readers::take();
    static thread_local EndOfThread endOfThread;
    return *_ownReader;
}

void ReadScope::Reader::goDeeper() {
    Places* deeper = current->deeper.load(std::memory_order_relaxed);
    if (!deeper) {
        deeper = new Places;
        current->deeper.store(deeper, std::memory_order_release);
    }
    outer.push_back(current);
    current = deeper;
    depth = 0;
}

void ReadScope::Reader::goBack() {
    current = outer.back();
    outer.pop_back();
    depth = Places::kScopes;
}

// MARK: The kernel's part

constinit std::atomic<bool> ReadScope::_needsFence{true};

void ReadScope::prepare() {
    static const bool isPrepared = callMembarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
    if (isPrepared) _needsFence.store(false, std::memory_order_relaxed);
}

void ReadScope::retire(const void* object, void (*free)(const void*)) {
    std::vector<Retired> unread;
    {
        Retirement& state = retirement();
        std::lock_guard guard(state.mutex);
        state.waiting.push_back({object, free});
        if (state.waiting.size() >= state.enough && fenceReaders(_needsFence))
            unread = collect(state, Readers::protectedObjects());
    }
    for (const Retired& retired : unread) retired.free(retired.object);
}

std::size_t ReadScope::retiredCount() {
    std::lock_guard guard(retirement().mutex);
    return retirement().waiting.size();
}

}  // namespace pelvor
