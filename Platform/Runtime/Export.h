// SPDX-License-Identifier: Apache-2.0
// Marks what a library shows to the programs that link it, where all else stays inside, and what lives no
// longer than what it was asked of.
#pragma once

#define PELVOR_EXPORT __attribute__((visibility("default")))

/// Stands behind operations whose result points into their receiver. Compilers that know the mark (clang)
/// warn where the receiver is a temporary and the result outlives it: `for (NSRange run :
/// set->copy()->runs())`.
#if __has_cpp_attribute(clang::lifetimebound)
#define PELVOR_LIFETIMEBOUND [[clang::lifetimebound]]
#else
#define PELVOR_LIFETIMEBOUND
#endif
