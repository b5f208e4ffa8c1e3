// SPDX-License-Identifier: Apache-2.0
// Invocations made from a class or a target, and their result as an object.
#pragma once

#include "Runtime/NSInvocation.h"

namespace pelvor {

struct Category;

struct PELVOR_EXPORT NSInvocation_PelvorAdditions {
    /// An invocation, without target, of the message as instances of the class answer it. Raises
    /// NSInvalidArgumentException if they do not.
    static NSInvocation* invocationWithTargetClass_selector(Class* targetClass, SEL selector);
    /// An invocation of the message with its target, which is asked for the message's types. Raises
    /// NSInvalidArgumentException if it knows none.
    static NSInvocation* invocationWithTarget_selector(id target, SEL selector);
};

/// The result of an invoked message that answers an object; none for results of every other type, class
/// records among them.
PELVOR_EXPORT id returnObject(NSInvocation* invocation);

extern const Category NSInvocation_PelvorAdditions_category;

}  // namespace pelvor
