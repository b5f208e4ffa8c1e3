// SPDX-License-Identifier: Apache-2.0
// NSRecursiveLock: mutual exclusion, with a lock that its holder may take again.
#pragma once

#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that the thread that holds it may take again. It is free after as many calls of `unlock` as of
/// `lock`. `std::lock_guard` takes it.
class PELVOR_EXPORT NSRecursiveLock : public NSObject {
    PELVOR_CLASS(NSRecursiveLock, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSRecursiveLock> init(Class* cls = classObject());

    void lock() { _mutex.lock(); }
    /// Takes the lock if no other thread holds it. Returns whether it did.
    bool tryLock() { return _mutex.try_lock(); }
    /// Waits for the lock until the date. Returns whether it was taken. A null date is over.
    bool lockBeforeDate(NSDate* date);
    void unlock() { _mutex.unlock(); }

  protected:
    NSRecursiveLock() = default;
    ~NSRecursiveLock() = default;

  private:
    std::recursive_timed_mutex _mutex;
};

}  // namespace pelvor
