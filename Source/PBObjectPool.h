// SPDX-License-Identifier: Apache-2.0
// PBObjectPool and PBExternalObjectPool: stacks of spare objects.
#pragma once

#include <memory>

#include "Foundation/NSLock.h"

namespace pelvor {

/// A stack of spare objects with room for a fixed number, for recycling instances inside an allocation and
/// release path. It owns what it holds but neither retains nor locks: whoever shares it between threads
/// takes `_lock` around each call.
class PELVOR_EXPORT PBObjectPool : public NSObject {
    PELVOR_CLASS(PBObjectPool, NSObject);

  public:
    /// An empty pool; none if there is no memory for so many objects.
    static Retained<PBObjectPool> initWithCapacity(std::uint32_t capacity, Class* cls = classObject());

    /// Takes over the caller's reference to the object; false, with nothing done, for none or when the pool
    /// is full.
    bool poolObject(id object);
    /// The object that came last, whose reference the caller owns; none when the pool is empty.
    Retained<Object> popObject();

    // C++ only. Also without the lock, to see whether taking it is worth while; the answer may be old at
    // once.
    bool isEmpty() const { return _count.load(std::memory_order_relaxed) == 0; }
    bool isFull() const { return _count.load(std::memory_order_relaxed) >= _capacity; }

    Retained<NSLock> _lock;

  protected:
    PBObjectPool() = default;
    ~PBObjectPool();

  private:
    std::unique_ptr<id[]> _pool;
    std::uint32_t _capacity = 0;
    std::atomic<std::uint32_t> _count = 0;
};

/// The pool for callers outside: it retains what it holds, answers borrowed objects, and locks by itself
/// if that was asked for. With the lock it may be used on any thread.
class PELVOR_EXPORT PBExternalObjectPool : public PBObjectPool {
    PELVOR_CLASS(PBExternalObjectPool, PBObjectPool);

  public:
    static Retained<PBExternalObjectPool> initWithCapacity_useLock(std::uint32_t capacity, bool useLock,
                                                                   Class* cls = classObject());
    /// Retains the object; false, with nothing done, for none or when the pool is full.
    bool poolObject(id object);
    /// The object that came last, left to the current autorelease pool; none when the pool is empty.
    id popObject();

  protected:
    PBExternalObjectPool() = default;
    ~PBExternalObjectPool() = default;
};

}  // namespace pelvor
