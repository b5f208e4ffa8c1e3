// SPDX-License-Identifier: Apache-2.0
// Checks of what operations are given, and the exceptions that they raise.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

/// Raises NSRangeException, "index (7) beyond bounds (3)".
[[noreturn]] PELVOR_EXPORT void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds);
/// Raises NSRangeException, "range {2, 2} beyond bounds (3)".
[[noreturn]] PELVOR_EXPORT void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds);
/// Raises NSInvalidArgumentException, "disableNotificationName: the name is null".
[[noreturn]] PELVOR_EXPORT void raiseNullArgument(const char* operation, const char* name);

/// Raises NSInvalidArgumentException, "a count was given without code points".
[[noreturn]] PELVOR_EXPORT void raiseMissingElements(const char* name);

/// Raises NSRangeException for an index not below `bounds`.
inline void requireIndex(NSUInteger index, NSUInteger bounds) {
    if (index >= bounds) [[unlikely]]
        raiseIndexBeyondBounds(index, bounds);
}

/// Raises NSRangeException for a range that is not inside a sequence of `count` places.
inline void requireRange(NSRange range, NSUInteger count) {
    if (!isRangeInside(range, count)) [[unlikely]]
        raiseRangeBeyondBounds(range, count);
}

/// Raises NSInvalidArgumentException if there are no elements, which the message calls `name`, but a count.
inline void requireElements(const void* elements, NSUInteger count, const char* name) {
    if (!elements && count) [[unlikely]]
        raiseMissingElements(name);
}

/// Raises NSInvalidArgumentException if the argument, which the message calls `name`, is null.
inline void requireArgument(const void* argument, const char* operation, const char* name) {
    if (!argument) [[unlikely]]
        raiseNullArgument(operation, name);
}

}  // namespace pelvor
