// SPDX-License-Identifier: Apache-2.0
// NSConditionLock: a lock with a number that threads wait for.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that can be taken when its condition, a number that the program chooses, has a certain value:
///
///     enum { kEmpty, kFull };
///     lock->lockWhenCondition(kEmpty);  // the producer
///     …
///     lock->unlockWithCondition(kFull);
///
///     lock->lockWhenCondition(kFull);   // the consumer
///     …
///     lock->unlockWithCondition(kEmpty);
class PELVOR_EXPORT NSConditionLock : public NSObject {
    PELVOR_CLASS(NSConditionLock, NSObject);
    PELVOR_CREATORS(initWithCondition);

  public:
    static Retained<NSConditionLock> initWithCondition(int condition, Class* cls = classObject());

    /// Returns the condition at this moment. Unless the caller holds the lock, another thread may change the
    /// condition at once.
    int condition() { return _condition.load(std::memory_order_acquire); }

    /// Takes the lock, whatever the condition is.
    void lock();
    void lockWhenCondition(int condition);
    /// These take the lock if they need not wait for it, and return whether the lock was taken.
    bool tryLock();
    bool tryLockWhenCondition(int condition);
    /// These wait for the lock until the date, and return whether the lock was taken. With a null date, or
    /// one in the past, they do not wait.
    bool lockBeforeDate(NSDate* date);
    bool lockWhenCondition_beforeDate(int condition, NSDate* date);

    /// These give the lock back, with the condition as it is, or with a new one.
    void unlock();
    void unlockWithCondition(int condition);

  protected:
    NSConditionLock() = default;
    ~NSConditionLock() = default;

  private:
    bool isFreeAt(int condition) { return !_isHeld && _condition.load() == condition; }
    bool takeIf(bool isPossible) {
        if (isPossible) _isHeld = true;
        return isPossible;
    }

    std::mutex _mutex;  // guards the fields, for moments only
    std::condition_variable _changed;
    bool _isHeld = false;
    std::atomic<int> _condition{0};
};

}  // namespace pelvor
