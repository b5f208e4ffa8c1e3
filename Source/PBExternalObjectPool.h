// SPDX-License-Identifier: Apache-2.0
// PBExternalObjectPool: a pool that retains what it is given.
#pragma once

#include "PBObjectPool.h"

namespace pelvor {

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
