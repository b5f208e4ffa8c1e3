// SPDX-License-Identifier: Apache-2.0
// NSConditionLock: a lock with a number that threads wait for.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "Runtime/NSObject.h"

namespace pelvor {

class NSDate;

/// A lock that can be taken when its condition, a number of the user's, has a certain value: a producer
/// gives it back with "something is there", a consumer takes it under that condition.
class PELVOR_EXPORT NSConditionLock : public NSObject {
    PELVOR_CLASS(NSConditionLock, NSObject);

  public:
    static Retained<NSConditionLock> initWithCondition(int condition, Class* cls = classObject());

    /// The value at this moment; it stays only while the lock is held.
    int condition() { return _condition.load(std::memory_order_acquire); }

    /// Takes the lock whatever the condition.
    void lock();
    void lockWhenCondition(int condition);
    /// Take the lock if that is possible at once; whether they did.
    bool tryLock();
    bool tryLockWhenCondition(int condition);
    /// Wait until the date; whether the lock was taken.
    bool lockBeforeDate(NSDate* date);
    bool lockWhenCondition_beforeDate(int condition, NSDate* date);

    /// Gives the lock back, with the condition unchanged or new.
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
