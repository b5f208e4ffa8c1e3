// SPDX-License-Identifier: Apache-2.0
// NSRecursiveLock: mutual exclusion, with a lock that its holder may take again.
#pragma once

#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that the thread which holds it may take again. The lock is free after as many calls of `unlock` as
/// of `lock`:
///
///     Retained<NSRecursiveLock> lock = NSRecursiveLock::init();
///     std::lock_guard outer(*lock);
///     {
///         std::lock_guard inner(*lock);  // does not wait: this thread holds the lock
///     }
class PELVOR_EXPORT NSRecursiveLock : public NSObject {
    PELVOR_CLASS(NSRecursiveLock, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSRecursiveLock> init(Class* cls = classObject());

    void lock() { _mutex.lock(); }
    /// Takes the lock if no other thread holds it, and returns whether the lock was taken.
    bool tryLock() { return _mutex.try_lock(); }
    /// Waits for the lock until the date, and returns whether the lock was taken. With a null date, or one in
    /// the past, the operation does not wait.
    bool lockBeforeDate(NSDate* date);
    void unlock() { _mutex.unlock(); }

  protected:
    NSRecursiveLock() = default;
    ~NSRecursiveLock() = default;

  private:
    std::recursive_timed_mutex _mutex;
};

}  // namespace pelvor
