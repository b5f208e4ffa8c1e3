// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSConditionLock.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/RunLoop/Deadline.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSConditionLock, foundationLibrary) {
    methods.creator<"initWithCondition:", &NSConditionLock::initWithCondition>();
    methods.instance<"condition", &NSConditionLock::condition>();
    methods.instance<"lock", &NSConditionLock::lock>();
    methods.instance<"lockWhenCondition:", &NSConditionLock::lockWhenCondition>();
    methods.instance<"tryLock", &NSConditionLock::tryLock>();
    methods.instance<"tryLockWhenCondition:", &NSConditionLock::tryLockWhenCondition>();
    methods.instance<"lockBeforeDate:", &NSConditionLock::lockBeforeDate>();
    methods.instance<"lockWhenCondition:beforeDate:", &NSConditionLock::lockWhenCondition_beforeDate>();
    methods.instance<"unlock", &NSConditionLock::unlock>();
    methods.instance<"unlockWithCondition:", &NSConditionLock::unlockWithCondition>();
}

Retained<NSConditionLock> NSConditionLock::initWithCondition(int condition, Class* cls) {
    auto lock = make<NSConditionLock>(cls);
    lock->_condition = condition;
    return lock;
}

void NSConditionLock::lock() {
    std::unique_lock guard(_mutex);
    _changed.wait(guard, [this] { return !_isHeld; });
    _isHeld = true;
}

void NSConditionLock::lockWhenCondition(int condition) {
    std::unique_lock guard(_mutex);
    _changed.wait(guard, [&] { return isFreeAt(condition); });
    _isHeld = true;
}

bool NSConditionLock::tryLock() {
    std::lock_guard guard(_mutex);
    return takeIf(!_isHeld);
}

bool NSConditionLock::tryLockWhenCondition(int condition) {
    std::lock_guard guard(_mutex);
    return takeIf(isFreeAt(condition));
}

bool NSConditionLock::lockBeforeDate(NSDate* date) {
    std::unique_lock guard(_mutex);
    return takeIf(_changed.wait_until(guard, deadline(date), [this] { return !_isHeld; }));
}

bool NSConditionLock::lockWhenCondition_beforeDate(int condition, NSDate* date) {
    std::unique_lock guard(_mutex);
    return takeIf(_changed.wait_until(guard, deadline(date), [&] { return isFreeAt(condition); }));
}

void NSConditionLock::unlock() { unlockWithCondition(condition()); }

void NSConditionLock::unlockWithCondition(int condition) {
    std::lock_guard guard(_mutex);
    _condition = condition;
    _isHeld = false;
    _changed.notify_all();
}

}  // namespace pelvor
