// SPDX-License-Identifier: Apache-2.0
// PBObjectPool: a stack of spare objects.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "Foundation/NSLock.h"

namespace pelvor {

/// A stack of spare objects with room for a fixed number, for code that makes and drops objects often:
///
///     id spare = pool->popObject();
///     …
///     pool->poolObject(spare);
///
/// This is the raw form, for code that allocates and releases objects itself: the pool takes references over
/// instead of adding them, and does not lock. Callers that share a pool between threads take `_lock` around
/// each call. PBExternalObjectPool is the form for all other code.
class PELVOR_EXPORT PBObjectPool : public NSObject {
    PELVOR_CLASS(PBObjectPool, NSObject);
    PELVOR_CREATORS(initWithCapacity);

  public:
    /// Makes an empty pool. The result is null if there is no memory for so many objects.
    static Retained<PBObjectPool> initWithCapacity(std::uint32_t capacity, Class* cls = classObject());

    /// Takes over the caller's reference to the object. Returns false, and does nothing, if the object is
    /// null or the pool is full.
    virtual bool poolObject(id object);
    /// Takes out the object that came last, and gives the pool's reference to the caller. Returns null if the
    /// pool is empty.
    Retained<Object> popObject() { return takeTop(); }
    /// "<PBObjectPool 0x…> 2 of 50, with a lock": how many objects the pool holds and how many it can.
    NSString* description() override;

    // C++ only. These may be called without the lock, to see whether it is worth while to take it: another
    // thread may change the pool at once.

    bool isEmpty() const { return _count.load(std::memory_order_relaxed) == 0; }
    bool isFull() const { return _count.load(std::memory_order_relaxed) >= _capacity; }

    Retained<NSLock> _lock;

  protected:
    PBObjectPool() = default;
    ~PBObjectPool();
    /// What `popObject` does.
    virtual Retained<Object> takeTop();
    // Holds the lock, if there is one, as long as the result lives.
    [[nodiscard]] std::unique_lock<NSLock> guard();

  private:
    std::unique_ptr<id[]> _pool;
    std::uint32_t _capacity = 0;
    std::atomic<std::uint32_t> _count = 0;
};

}  // namespace pelvor
