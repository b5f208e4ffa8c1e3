// SPDX-License-Identifier: Apache-2.0
// The exceptions that collections, values and strings raise; for Foundation's own sources.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

/// Raises NSInvalidArgumentException: `operation` was given no object.
[[noreturn]] void raiseNoObject(const char* operation);

inline void requireObject(id object, const char* operation) {
    if (!object) [[unlikely]]
        raiseNoObject(operation);
}

void requireObjects(Object* const* objects, NSUInteger count, const char* operation);

}  // namespace pelvor
