// SPDX-License-Identifier: Apache-2.0
// What the sanitizer that a test is built with cannot bear.
#pragma once

// Compilers tell by a macro of their own or by a feature.
#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#define PELVOR_ADDRESS_SANITIZER 1
#else
#define PELVOR_ADDRESS_SANITIZER 0
#endif
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
#define PELVOR_THREAD_SANITIZER 1
#else
#define PELVOR_THREAD_SANITIZER 0
#endif

namespace pelvor {

/// Whether constructors of loaded code may raise. The thread sanitizer's own dlopen does not outlive an
/// exception: it goes on ignoring what it was to ignore in the loader, and has not seen the loader take the
/// locks that are given back.
inline constexpr bool kConstructorsMayRaise = !PELVOR_THREAD_SANITIZER;

/// Whether a program goes on with less room for addresses than the machine has.
inline constexpr bool kMemoryMayBeLimited = !PELVOR_THREAD_SANITIZER && !PELVOR_ADDRESS_SANITIZER;

}  // namespace pelvor
