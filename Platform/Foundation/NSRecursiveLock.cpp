// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSRecursiveLock.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/Threads/TimedLock.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSRecursiveLock, foundationLibrary) {
    methods.creator<"init", &NSRecursiveLock::init>();
    methods.instance<"lock", &NSRecursiveLock::lock>();
    methods.instance<"tryLock", &NSRecursiveLock::tryLock>();
    methods.instance<"lockBeforeDate:", &NSRecursiveLock::lockBeforeDate>();
    methods.instance<"unlock", &NSRecursiveLock::unlock>();
}

Retained<NSRecursiveLock> NSRecursiveLock::init(Class* cls) { return make<NSRecursiveLock>(cls); }

bool NSRecursiveLock::lockBeforeDate(NSDate* date) { return lockUntil(_mutex, date); }

}  // namespace pelvor
