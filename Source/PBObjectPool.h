// SPDX-License-Identifier: Apache-2.0
// PBObjectPool and PBExternalObjectPool: stacks of spare objects.
#pragma once

#include <atomic>
#include <memory>

#include "Foundation/NSLock.h"

namespace pelvor {

/// A stack of spare objects with room for a fixed number, for code that makes and drops objects often:
///
///     id spare = pool->popObject();
///     …
///     pool->poolObject(spare);
///
/// This is the raw form for use inside an allocation and a release: it owns what it holds, but takes
/// references over instead of adding any, and does not lock. Whoever shares it between threads takes `_lock`
/// around each call. PBExternalObjectPool is the form for everybody else.
class PELVOR_EXPORT PBObjectPool : public NSObject {
    PELVOR_CLASS(PBObjectPool, NSObject);
    PELVOR_CREATORS(initWithCapacity);

  public:
    /// Makes an empty pool. The result is null if there is no memory for so many objects.
    static Retained<PBObjectPool> initWithCapacity(std::uint32_t capacity, Class* cls = classObject());

    /// Takes over the caller's reference to the object. Returns false, and does nothing, if the object is
    /// null or the pool is full.
    virtual bool poolObject(id object);
    /// Takes out the object that came last, with the pool's reference to it; null when the pool is empty.
    Retained<Object> popObject() { return takeTop(); }
    /// "<PBObjectPool 0x…> 2 of 50, with a lock": how many objects the pool holds and how many it can.
    NSString* description() override;

    // C++ only. May be asked without the lock, to see whether taking it is worth while: the answer may be old
    // at once.

    bool isEmpty() const { return _count.load(std::memory_order_relaxed) == 0; }
    bool isFull() const { return _count.load(std::memory_order_relaxed) >= _capacity; }

    Retained<NSLock> _lock;

  protected:
    PBObjectPool() = default;
    ~PBObjectPool();
    /// What `popObject` does.
    virtual Retained<Object> takeTop();

  private:
    std::unique_ptr<id[]> _pool;
    std::uint32_t _capacity = 0;
    std::atomic<std::uint32_t> _count = 0;
};

/// The pool for callers outside: it retains what it is given, returns borrowed objects, and locks by itself
/// if it was made so.
///
///     auto spares = PBExternalObjectPool::initWithCapacity_useLock(20, true);
///     id layout = spares->popObject();                     // borrowed, null if there is no spare one
///     …
///     spares->poolObject(layout);                          // retained, if there is room
///
/// With the lock it may be used on any thread, else on one thread at a time.
class PELVOR_EXPORT PBExternalObjectPool : public PBObjectPool {
    PELVOR_CLASS(PBExternalObjectPool, PBObjectPool);
    PELVOR_CREATORS(initWithCapacity_useLock);
    PELVOR_INHERITED_CREATORS(initWithCapacity);

  public:
    static Retained<PBExternalObjectPool> initWithCapacity_useLock(std::uint32_t capacity, bool useLock,
                                                                   Class* cls = classObject());
    /// Retains the object. Returns false, and does nothing, if the object is null or the pool is full.
    bool poolObject(id object) override;
    /// Takes out the object that came last and leaves it to the current autorelease pool; null when the pool
    /// is empty. Through a PBObjectPool pointer the same object comes as an owned one.
    id popObject() { return takeTop().autorelease(); }

  protected:
    PBExternalObjectPool() = default;
    ~PBExternalObjectPool() = default;
    Retained<Object> takeTop() override;
};

}  // namespace pelvor
