// SPDX-License-Identifier: Apache-2.0
// The exceptions that collections, values and strings raise; for Foundation's own sources.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Raises NSRangeException, "index (7) beyond bounds (3)".
[[noreturn]] void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds);
/// Raises NSRangeException, "range {2, 2} beyond bounds (3)".
[[noreturn]] void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds);
/// Raises NSInvalidArgumentException: `operation` was given no object.
[[noreturn]] void raiseNoObject(const char* operation);

inline void requireIndex(NSUInteger index, NSUInteger bounds) {
    if (index >= bounds) [[unlikely]]
        raiseIndexBeyondBounds(index, bounds);
}

/// Raises NSRangeException for a range that is not inside a sequence of `count` places.
inline void requireRange(NSRange range, NSUInteger count) {
    if (!isRangeInside(range, count)) [[unlikely]]
        raiseRangeBeyondBounds(range, count);
}

inline void requireObject(id object, const char* operation) {
    if (!object) [[unlikely]]
        raiseNoObject(operation);
}

void requireObjects(Object* const* objects, NSUInteger count, const char* operation);

}  // namespace pelvor
