// SPDX-License-Identifier: Apache-2.0
// What the sanitizer that a test is built with cannot bear.
#pragma once

#if defined(__has_feature)
#define PELVOR_HAS_FEATURE(feature) __has_feature(feature)
#else
#define PELVOR_HAS_FEATURE(feature) 0
#endif

namespace pelvor {

/// Whether constructors of loaded code may raise. The thread sanitizer's own dlopen does not outlive an
/// exception: it goes on ignoring what it was to ignore in the loader, and has not seen the loader take the
/// locks that are given back.
inline constexpr bool kConstructorsMayRaise = !PELVOR_HAS_FEATURE(thread_sanitizer);

/// Whether a program goes on with less room for addresses than the machine has.
inline constexpr bool kMemoryMayBeLimited =
    !PELVOR_HAS_FEATURE(thread_sanitizer) && !PELVOR_HAS_FEATURE(address_sanitizer);

}  // namespace pelvor
