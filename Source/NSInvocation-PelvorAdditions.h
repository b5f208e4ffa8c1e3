// SPDX-License-Identifier: Apache-2.0
// Additions to invocations: creators from a class or a target, and the result as an object.
#pragma once

#include "Runtime/NSInvocation.h"

namespace pelvor {

struct Category;

/// Class operations of invocations:
///
///     using Additions = NSInvocation_PelvorAdditions;
///     NSInvocation* message = Additions::invocationWithTarget_selector(page, "title"_sel);
///     message->invoke();
///     id title = returnObject(message);
struct PELVOR_EXPORT NSInvocation_PelvorAdditions {
    /// An invocation of the message without a target, borrowed. It has the types of the method that instances
    /// of the class have. Raises NSInvalidArgumentException if the class is null or its instances have no
    /// such method.
    static NSInvocation* invocationWithTargetClass_selector(Class* targetClass, SEL selector);
    /// An invocation of the message with the target, borrowed. It has the types that the target's
    /// `methodSignatureForSelector` returns. Raises NSInvalidArgumentException if the target is null or has
    /// no signature for the message.
    static NSInvocation* invocationWithTarget_selector(id target, SEL selector);
};

/// The result of an invocation that was invoked, if the method returns an object. Null if the method returns
/// anything else; a class counts as something else.
PELVOR_EXPORT id returnObject(NSInvocation* invocation);

extern const Category NSInvocation_PelvorAdditions_category;

}  // namespace pelvor
