// SPDX-License-Identifier: Apache-2.0
// PBExternalObjectPool: a pool that retains what it is given.
#pragma once

#include "PBObjectPool.h"

namespace pelvor {

/// The pool of spare objects for hosts. It retains the objects that it is given, returns borrowed objects,
/// and takes its own lock around each operation if it was made with `useLock`:
///
///     auto spares = PBExternalObjectPool::initWithCapacity_useLock(20, true);
///     id layout = spares->popObject();                     // borrowed, null if there is no spare one
///     …
///     spares->poolObject(layout);                          // retained, if there is room
///
/// A pool with the lock may be used on any thread, a pool without it on one thread at a time.
class PELVOR_EXPORT PBExternalObjectPool : public PBObjectPool {
    PELVOR_CLASS(PBExternalObjectPool, PBObjectPool);
    PELVOR_CREATORS(initWithCapacity_useLock);
    PELVOR_INHERITED_CREATORS(initWithCapacity);

  public:
    static Retained<PBExternalObjectPool> initWithCapacity_useLock(std::uint32_t capacity, bool useLock,
                                                                   Class* cls = classObject());
    /// Retains the object. Returns false, and does nothing, if the object is null or the pool is full.
    bool poolObject(id object) override;
    /// Takes out the object that came last, and leaves it to the current autorelease pool. Returns null if
    /// the pool is empty. Called through a PBObjectPool pointer, `popObject` returns the object owned.
    id popObject() { return takeTop().autorelease(); }

  protected:
    PBExternalObjectPool() = default;
    ~PBExternalObjectPool() = default;
    Retained<Object> takeTop() override;
};

}  // namespace pelvor
