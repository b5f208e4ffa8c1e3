// SPDX-License-Identifier: Apache-2.0
// NSLock: mutual exclusion between threads.
#pragma once

#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that one thread holds at a time. The thread that took it gives it back; a thread that takes it
/// twice waits for itself. The locks of this family share `lock`, `tryLock`, `unlock`, so that each can
/// stand for the other by selector, and `std::lock_guard` takes them all.
class PELVOR_EXPORT NSLock : public NSObject {
    PELVOR_CLASS(NSLock, NSObject);

  public:
    static Retained<NSLock> init(Class* cls = classObject());

    void lock() { _mutex.lock(); }
    /// Takes the lock if it is free; whether it did.
    bool tryLock() { return _mutex.try_lock(); }
    /// Waits for the lock until the date; whether it was taken.
    bool lockBeforeDate(NSDate* date);
    void unlock() { _mutex.unlock(); }

  protected:
    NSLock() = default;
    ~NSLock() = default;

  private:
    std::timed_mutex _mutex;
};

}  // namespace pelvor
