// SPDX-License-Identifier: Apache-2.0
// Marks of declarations: what a library shows to the programs that link it, and results that must not outlive
// the object that returned them.
#pragma once

/// Before a class, function or variable of a public header: programs that link the library may use it.
#define PELVOR_EXPORT __attribute__((visibility("default")))

/// Behind an operation whose result points into its receiver. Compilers that know the mark (clang)
/// warn where the receiver is a temporary and the result outlives it: `for (NSRange run :
/// set->copy()->runs())`.
#if __has_cpp_attribute(clang::lifetimebound)
#define PELVOR_LIFETIMEBOUND [[clang::lifetimebound]]
#else
#define PELVOR_LIFETIMEBOUND
#endif
