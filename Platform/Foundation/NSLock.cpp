// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSLock.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/Threads/TimedLock.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSLock, foundationLibrary) {
    methods.creator<"init", &NSLock::init>();
    methods.instance<"lock", &NSLock::lock>();
    methods.instance<"tryLock", &NSLock::tryLock>();
    methods.instance<"lockBeforeDate:", &NSLock::lockBeforeDate>();
    methods.instance<"unlock", &NSLock::unlock>();
}

Retained<NSLock> NSLock::init(Class* cls) { return make<NSLock>(cls); }

bool NSLock::lockBeforeDate(NSDate* date) { return lockUntil(_mutex, date); }

}  // namespace pelvor
