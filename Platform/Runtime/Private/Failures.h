// SPDX-License-Identifier: Apache-2.0
// What the runtime's own sources say in exceptions.
#pragma once

#include <string>

#include "Runtime/Class.h"
#include "Runtime/NSException.h"

namespace pelvor {

/// "-[PBLamp setLevel:]", "+[PBLamp lamp]"; only the selector where the receiver is null.
inline std::string methodName(Object* receiver, SEL selector) {
    const std::string name = selector ? selector.name() : "(null)";
    if (!receiver) return name;
    Class* cls = receiver->isa();
    return std::string(cls->isMetaclass() ? "+[" : "-[") + cls->publicName() + " " + name + "]";
}

[[noreturn, gnu::cold, gnu::noinline]] inline void raiseNull(const char* operation, const char* name) {
    throw NSException(NSInvalidArgumentException, std::string(operation) + " " + name + " is null");
}

/// Raises NSInvalidArgumentException, "setReturnValue: the buffer is null", if the argument is null.
inline void requireNotNull(const void* argument, const char* operation, const char* name) {
    if (!argument) [[unlikely]]
        raiseNull(operation, name);
}

}  // namespace pelvor
