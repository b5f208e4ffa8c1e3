// SPDX-License-Identifier: Apache-2.0
// NSRecursiveLock: mutual exclusion that a thread may take again.
#pragma once

#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that the thread that holds it may take again; it is free after as many `unlock`s.
class PELVOR_EXPORT NSRecursiveLock : public NSObject {
    PELVOR_CLASS(NSRecursiveLock, NSObject);

  public:
    static Retained<NSRecursiveLock> init(Class* cls = classObject());

    void lock() { _mutex.lock(); }
    /// Takes the lock if no other thread has it; whether it did.
    bool tryLock() { return _mutex.try_lock(); }
    /// Waits for the lock until the date; whether it was taken.
    bool lockBeforeDate(NSDate* date);
    void unlock() { _mutex.unlock(); }

  protected:
    NSRecursiveLock() = default;
    ~NSRecursiveLock() = default;

  private:
    std::recursive_timed_mutex _mutex;
};

}  // namespace pelvor
