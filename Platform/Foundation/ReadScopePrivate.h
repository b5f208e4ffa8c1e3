// SPDX-License-Identifier: Apache-2.0
// ReadScope: reading shared objects without a lock while others replace them; for Foundation's own sources.
#pragma once

#include <atomic>

#include "Runtime/Export.h"

namespace pelvor {

/// A thread says in a scope which objects it reads; those that others have replaced meanwhile and
/// retired are freed once no scope of any thread names them. Scopes nest as calls do. Entering, protecting
/// and leaving take no lock and no fence where the kernel can run one on the reader's behalf.
class ReadScope {
  public:
    /// How many objects one scope protects.
    static constexpr int kPlaces = 4;

    ReadScope() noexcept;
    ~ReadScope();
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
    static void fenceReader() noexcept {
        if (_needsFence.load(std::memory_order_relaxed)) [[unlikely]]
            std::atomic_thread_fence(std::memory_order_seq_cst);
        else
            std::atomic_signal_fence(std::memory_order_seq_cst);
    }

    static std::atomic<bool> _needsFence;

    std::atomic<const void*>* _places;
    int _count = 0;
};

}  // namespace pelvor
