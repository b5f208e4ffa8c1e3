// SPDX-License-Identifier: Apache-2.0
// NSLock: mutual exclusion between threads.
#pragma once

#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that one thread holds at a time:
///
///     Retained<NSLock> lock = NSLock::init();
///     std::lock_guard guard(*lock);  // until the end of the scope
///
/// The thread that took the lock gives it back. A thread that takes it twice waits for ever. All locks have
/// `lock`, `tryLock` and `unlock`, so that one kind can stand for another in messages and in
/// `std::lock_guard`.
class PELVOR_EXPORT NSLock : public NSObject {
    PELVOR_CLASS(NSLock, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSLock> init(Class* cls = classObject());

    void lock() { _mutex.lock(); }
    /// Takes the lock if the lock is free, and returns whether it was free.
    bool tryLock() { return _mutex.try_lock(); }
    /// Waits for the lock until the date, and returns whether the lock was taken. With a null date, or one in
    /// the past, the operation does not wait.
    bool lockBeforeDate(NSDate* date);
    void unlock() { _mutex.unlock(); }

  protected:
    NSLock() = default;
    ~NSLock() = default;

  private:
    std::timed_mutex _mutex;
};

}  // namespace pelvor
