// SPDX-License-Identifier: Apache-2.0
// Checks of what operations are given; for the library's own sources.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

/// Raises NSInvalidArgumentException, "disableNotificationName: the name is null", if the argument is null.
inline void requireArgument(const void* argument, const char* operation, const char* name) {
    if (!argument) [[unlikely]]
        raiseException(NSInvalidArgumentException, u"%s %s is null"_ns, operation, name);
}

}  // namespace pelvor
