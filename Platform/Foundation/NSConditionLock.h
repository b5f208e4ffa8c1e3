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
///
/// A thread that holds the lock must not call `lock` or `lockWhenCondition`: the call would wait for ever.
/// The operations do not check which thread gives the lock back. Any thread.
class PELVOR_EXPORT NSConditionLock : public NSObject {
    PELVOR_CLASS(NSConditionLock, NSObject);
    PELVOR_CREATORS(initWithCondition);

  public:
    /// Makes a lock that nobody holds.
    static Retained<NSConditionLock> initWithCondition(int condition, Class* cls = classObject());

    /// Returns the condition at this moment. Unless the caller holds the lock, another thread may change the
    /// condition at once.
    int condition() { return _condition.load(std::memory_order_acquire); }

    /// Takes the lock, whatever the condition is.
    void lock();
    /// Waits until the lock is free and has this condition, and takes the lock.
    void lockWhenCondition(int condition);
    /// These take the lock if that is possible without waiting, and return whether the lock was taken.
    bool tryLock();
    bool tryLockWhenCondition(int condition);
    /// These wait for the lock until the date at the latest, and return whether the lock was taken. With a
    /// null date or a date in the past, they do not wait.
    bool lockBeforeDate(NSDate* date);
    bool lockWhenCondition_beforeDate(int condition, NSDate* date);

    /// These give the lock back: `unlock` keeps the condition, `unlockWithCondition` sets a new one.
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
