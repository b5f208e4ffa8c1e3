// SPDX-License-Identifier: Apache-2.0
// Checks of the arguments of operations, and the exceptions that the checks raise. A message names the
// operation that was called, so an operation that passes its arguments on to another operation checks them
// itself.
#pragma once

#include <limits>
#include <string>

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

class Object;

/// "{3, 4}".
PELVOR_EXPORT std::string rangeText(NSRange range);

/// Raises NSRangeException, "characterAtIndex: index (7) beyond bounds (3)". With a null operation, the
/// message begins with "index".
[[noreturn]] PELVOR_EXPORT void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds,
                                                       const char* operation = nullptr);
/// Raises NSRangeException, "getCharacters:range: range {2, 2} beyond bounds (3)".
[[noreturn]] PELVOR_EXPORT void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds,
                                                       const char* operation);
/// Raises NSInvalidArgumentException, "operation: sentence"; the sentence names the argument and what is
/// wrong with it.
[[noreturn]] PELVOR_EXPORT void raiseBadArgument(const char* operation, const std::string& sentence);
/// Raises NSInvalidArgumentException, "disableNotificationName: the name is null".
[[noreturn]] PELVOR_EXPORT void raiseNullArgument(const char* operation, const char* name);
/// Raises NSInvalidArgumentException, "rangeOfBytes:length: the bytes must not be null where the length is
/// 3".
[[noreturn]] PELVOR_EXPORT void raiseNullMemory(NSUInteger length, const char* operation, const char* name);

/// Raises NSMallocException, "appendString: a string cannot have 5000000000 units".
[[noreturn]] PELVOR_EXPORT void raiseTooLong(std::uint64_t length, const char* operation);

/// Raises NSRangeException for an index not below `bounds`.
inline void requireIndex(NSUInteger index, NSUInteger bounds, const char* operation) {
    if (index >= bounds) [[unlikely]]
        raiseIndexBeyondBounds(index, bounds, operation);
}

/// Raises NSRangeException for a place beyond the end. The end itself is a valid place.
inline void requirePlace(NSUInteger place, NSUInteger end, const char* operation) {
    if (place > end) [[unlikely]]
        raiseIndexBeyondBounds(place, end, operation);
}

/// Raises NSRangeException for a range that is not inside a sequence of `count` places.
inline void requireRange(NSRange range, NSUInteger count, const char* operation) {
    if (!isRangeInside(range, count)) [[unlikely]]
        raiseRangeBeyondBounds(range, count, operation);
}

/// Raises NSInvalidArgumentException if the memory is null and the length is not 0. The message calls the
/// memory `name`.
inline void requireMemory(const void* memory, NSUInteger length, const char* operation, const char* name) {
    if (!memory && length) [[unlikely]]
        raiseNullMemory(length, operation, name);
}

/// The length of a text. Raises NSMallocException if no string can have it.
inline NSUInteger requireTextLength(std::uint64_t length, const char* operation) {
    if (length > std::numeric_limits<NSUInteger>::max()) [[unlikely]]
        raiseTooLong(length, operation);
    return static_cast<NSUInteger>(length);
}

/// Raises NSInvalidArgumentException if the argument is null. The message calls the argument `name`.
inline void requireArgument(const void* argument, const char* operation, const char* name) {
    if (!argument) [[unlikely]]
        raiseNullArgument(operation, name);
}

/// Raises NSInvalidArgumentException if `objects` is null and the count is not 0, and if one of the objects
/// is null: "arrayWithObjects:count: object 2 of 3 is null". The message calls an object `name`.
PELVOR_EXPORT void requireObjects(Object* const* objects, NSUInteger count, const char* operation,
                                  const char* name = "object");

}  // namespace pelvor
