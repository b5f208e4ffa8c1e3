// SPDX-License-Identifier: Apache-2.0
// Checks of what operations of strings, character sets and scanners are given. Messages name the operation
// that was called, as its selector, and what was wrong: "substringFromIndex: index (7) beyond bounds (3)".
#pragma once

#include <limits>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Raise NSInvalidArgumentException, NSRangeException and NSMallocException.
[[noreturn]] void raiseNull(const char* operation, const char* argument);
[[noreturn]] void raiseIndex(const char* operation, NSUInteger index, NSUInteger bounds);
[[noreturn]] void raiseRange(const char* operation, NSRange range, NSUInteger bounds);
[[noreturn]] void raiseTooLong(const char* operation, std::uint64_t length);

/// Refuses null: `requireArgument(prefix, "hasPrefix:", "prefix is")` says "hasPrefix: the prefix is null".
inline void requireArgument(const void* argument, const char* operation, const char* name) {
    if (!argument) [[unlikely]]
        raiseNull(operation, name);
}

/// Refuses null where there is a length.
inline void requireMemory(const void* memory, NSUInteger length, const char* operation, const char* name) {
    if (!memory && length) [[unlikely]]
        raiseNull(operation, name);
}

/// Refuses an index that is not below `bounds`.
inline void requireIndex(NSUInteger index, NSUInteger bounds, const char* operation) {
    if (index >= bounds) [[unlikely]]
        raiseIndex(operation, index, bounds);
}

/// Refuses a place past the end. The end itself is one.
inline void requirePlace(NSUInteger place, NSUInteger end, const char* operation) {
    if (place > end) [[unlikely]]
        raiseIndex(operation, place, end);
}

/// Refuses a range that is not inside a text of `bounds` units.
inline void requireRange(NSRange range, NSUInteger bounds, const char* operation) {
    if (!isRangeInside(range, bounds)) [[unlikely]]
        raiseRange(operation, range, bounds);
}

/// The length, if a string can have it.
inline NSUInteger requireTextLength(std::uint64_t length, const char* operation) {
    if (length > std::numeric_limits<NSUInteger>::max()) [[unlikely]]
        raiseTooLong(operation, length);
    return static_cast<NSUInteger>(length);
}

}  // namespace pelvor
