// SPDX-License-Identifier: Apache-2.0
// Waiting for a mutex until a date; for Foundation's own sources.
#pragma once

#include "Foundation/RunLoop/Deadline.h"

#if defined(__has_feature)
#if __has_feature(thread_sanitizer) && __clang_major__ < 15
#include <sanitizer/tsan_interface.h>
#define PELVOR_TELL_OF_LOCK(mutex)                        \
    (__tsan_mutex_pre_lock(mutex, __tsan_mutex_try_lock), \
     __tsan_mutex_post_lock(mutex, __tsan_mutex_try_lock, 0))
#endif
#endif
// Clang 14's thread sanitizer does not see a mutex taken that is waited for by a steady clock.
#ifndef PELVOR_TELL_OF_LOCK
#define PELVOR_TELL_OF_LOCK(mutex) ((void)0)
#endif

namespace pelvor {

/// Waits for the mutex until the date. Returns whether the mutex was taken.
template <class Mutex>
bool lockUntil(Mutex& mutex, NSDate* date) {
    if (!mutex.try_lock_until(deadline(date))) return false;
    PELVOR_TELL_OF_LOCK(mutex.native_handle());
    return true;
}

}  // namespace pelvor
