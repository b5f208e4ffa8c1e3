// SPDX-License-Identifier: Apache-2.0
// ReadScope: reading shared objects without a lock while others replace them; for Foundation's own sources.
#pragma once

#include <atomic>
#include <vector>

#include "Runtime/Export.h"

namespace pelvor {

/// A thread says in a scope which objects it reads; those that others have replaced meanwhile and
/// retired are freed once no scope of any thread names them. Scopes nest as calls do. Entering, protecting
/// and leaving take no lock and no fence where the kernel can run one on the reader's behalf.
class ReadScope {
  public:
    /// How many objects one scope protects.
    static constexpr int kPlaces = 4;

    ReadScope() noexcept {
        Reader& reader = _ownReader ? *_ownReader : beginReader();
        if (reader.depth == Places::kScopes) [[unlikely]]
            reader.goDeeper();
        _places = reader.current->objects + reader.depth++ * kPlaces;
    }
    ~ReadScope() {
        for (int i = 0; i < _count; ++i) _places[i].store(nullptr, std::memory_order_release);
        if (--_ownReader->depth == 0 && _ownReader->current != &_ownReader->places) [[unlikely]]
            _ownReader->goBack();
    }
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

    /// What `source` points to now, safe until the scope ends.
    template <class T>
    T* protect(const std::atomic<T*>& source) noexcept {
        for (T* object = source.load(std::memory_order_acquire);;) {
            protect(object);
            fenceReader();
            T* current = source.load(std::memory_order_acquire);
            if (current == object) return object;
            object = current;
            --_count;
        }
    }
    /// The same for an object that the caller's lock keeps from being replaced at the moment.
    void protect(const void* object) noexcept { _places[_count++].store(object, std::memory_order_release); }

    /// Has `free` called with the object when nobody reads it any more, on whatever thread that turns out.
    /// The object must no longer be found in shared places. Any thread.
    static void retire(const void* object, void (*free)(const void*));
    template <class T>
    static void retire(const T* object) {
        if (object) retire(object, [](const void* retired) { delete static_cast<const T*>(retired); });
    }
    /// How many retired objects wait.
    PELVOR_EXPORT static std::size_t retiredCount();

    /// Prepares the kernel's part; before it, every reader has a fence of its own.
    static void prepare();

  private:
    // The places of eight nested scopes of a thread. Never freed, for other threads look through them.
    struct Places {
        static constexpr int kScopes = 8;
        std::atomic<const void*> objects[kScopes * kPlaces] = {};
        std::atomic<Places*> deeper{nullptr};
    };
    // A thread that reads, or one that has ended and whose record the next new thread takes.
    struct Reader {
        void goDeeper();
        void goBack();

        Places places;
        Places* current = &places;  // of the innermost scope
        std::vector<Places*> outer;
        int depth = 0;  // scopes within `current`
        std::atomic<bool> isTaken{true};
        Reader* next = nullptr;
    };
    struct EndOfThread;
    struct Readers;

    static Reader& beginReader();
    static void fenceReader() noexcept {
        if (_needsFence.load(std::memory_order_relaxed)) [[unlikely]]
            std::atomic_thread_fence(std::memory_order_seq_cst);
        else
            std::atomic_signal_fence(std::memory_order_seq_cst);
    }

    static std::atomic<bool> _needsFence;
    static constinit thread_local Reader* _ownReader;

    std::atomic<const void*>* _places;
    int _count = 0;
};

}  // namespace pelvor
