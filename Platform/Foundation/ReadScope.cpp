// SPDX-License-Identifier: Apache-2.0
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "Foundation/ReadScopePrivate.h"

namespace pelvor {
namespace {

// The places of eight nested scopes of a thread. Never freed, for other threads look through them.
struct Places {
    static constexpr int kScopes = 8;
    std::atomic<const void*> objects[kScopes * ReadScope::kPlaces] = {};
    std::atomic<Places*> deeper{nullptr};
};

// A thread that reads, or one that has ended and whose record the next new thread takes.
struct Reader {
    Places places;
    Places* current = &places;  // of the innermost scope
    std::vector<Places*> outer;
    int depth = 0;  // scopes within `current`
    std::atomic<bool> isTaken{true};
    Reader* next = nullptr;
};

std::atomic<Reader*> firstReader{nullptr};
constinit thread_local Reader* ownReader = nullptr;

struct EndOfThread {
    ~EndOfThread() {
        ownReader->isTaken.store(false, std::memory_order_release);
        ownReader = nullptr;
    }
};

Reader* takeReader() {
    for (Reader* reader = firstReader.load(std::memory_order_acquire); reader; reader = reader->next) {
        bool expected = false;
        if (reader->isTaken.compare_exchange_strong(expected, true)) return reader;
    }
    auto* reader = new Reader;
    reader->next = firstReader.load(std::memory_order_relaxed);
    while (!firstReader.compare_exchange_weak(reader->next, reader)) continue;
    return reader;
}

[[gnu::noinline]] Reader& beginReader() {
    ownReader = takeReader();
    static thread_local EndOfThread endOfThread;
    return *ownReader;
}

[[gnu::noinline]] void goDeeper(Reader& reader) {
    Places* deeper = reader.current->deeper.load(std::memory_order_relaxed);
    if (!deeper) {
        deeper = new Places;
        reader.current->deeper.store(deeper, std::memory_order_release);
    }
    reader.outer.push_back(reader.current);
    reader.current = deeper;
    reader.depth = 0;
}

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

std::unordered_set<const void*> protectedObjects() {
    std::unordered_set<const void*> found;
    for (Reader* reader = firstReader.load(std::memory_order_acquire); reader; reader = reader->next)
        for (Places* places = &reader->places; places;
             places = places->deeper.load(std::memory_order_acquire))
            for (auto& place : places->objects)
                if (const void* object = place.load(std::memory_order_acquire)) found.insert(object);
    return found;
}

// Takes what nobody reads out of the waiting ones.
std::vector<Retired> collect(Retirement& state) {
    auto readObjects = protectedObjects();
    auto middle = std::partition(state.waiting.begin(), state.waiting.end(), [&](const Retired& retired) {
        return readObjects.contains(retired.object);
    });
    std::vector<Retired> unread(middle, state.waiting.end());
    state.waiting.erase(middle, state.waiting.end());
    state.enough = std::max<std::size_t>(64, state.waiting.size() * 2);
    return unread;
}

}  // namespace

constinit std::atomic<bool> ReadScope::_needsFence{true};

void ReadScope::prepare() {
    static const bool isPrepared = callMembarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
    if (isPrepared) _needsFence.store(false, std::memory_order_relaxed);
}

ReadScope::ReadScope() noexcept {
    Reader& reader = ownReader ? *ownReader : beginReader();
    if (reader.depth == Places::kScopes) [[unlikely]]
        goDeeper(reader);
    _places = reader.current->objects + reader.depth++ * kPlaces;
}

ReadScope::~ReadScope() {
    for (int i = 0; i < _count; ++i) _places[i].store(nullptr, std::memory_order_release);
    Reader& reader = *ownReader;
    if (--reader.depth == 0 && !reader.outer.empty()) [[unlikely]] {
        reader.current = reader.outer.back();
        reader.outer.pop_back();
        reader.depth = Places::kScopes;
    }
}

void ReadScope::retire(const void* object, void (*free)(const void*)) {
    std::vector<Retired> unread;
    {
        Retirement& state = retirement();
        std::lock_guard guard(state.mutex);
        state.waiting.push_back({object, free});
        if (state.waiting.size() >= state.enough && fenceReaders(_needsFence)) unread = collect(state);
    }
    for (const Retired& retired : unread) retired.free(retired.object);
}

std::size_t ReadScope::retiredCount() {
    std::lock_guard guard(retirement().mutex);
    return retirement().waiting.size();
}

}  // namespace pelvor
