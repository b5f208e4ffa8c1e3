// SPDX-License-Identifier: Apache-2.0
#include "NSInvocation-PelvorAdditions.h"

#include <cstring>

#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSInvocation>& methods) {
    using Additions = NSInvocation_PelvorAdditions;
    methods
        .classLevel<"invocationWithTargetClass:selector:", &Additions::invocationWithTargetClass_selector>();
    methods.classLevel<"invocationWithTarget:selector:", &Additions::invocationWithTarget_selector>();
    methods.instance<"returnObject", &returnObject>();
}

NSInvocation* invocationOf(NSMethodSignature* signature, SEL selector) {
    NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(signature);
    invocation->setSelector(selector);
    return invocation;
}

}  // namespace

constinit const Category NSInvocation_PelvorAdditions_category =
    Category::of<NSInvocation, defineAdditions>("PelvorAdditions");

NSInvocation* NSInvocation_PelvorAdditions::invocationWithTargetClass_selector(Class* targetClass,
                                                                               SEL selector) {
    requireArgument(targetClass, "invocationWithTargetClass:selector:", "the class");
    NSMethodSignature* signature = targetClass->signatureOfInstanceMethod(selector);
    if (!signature)
        raiseException(NSInvalidArgumentException,
                       u"invocationWithTargetClass:selector: instances of %s have no method %s"_ns,
                       targetClass->name(), selector.name());
    return invocationOf(signature, selector);
}

NSInvocation* NSInvocation_PelvorAdditions::invocationWithTarget_selector(id target, SEL selector) {
    requireArgument(target, "invocationWithTarget:selector:", "the target");
    NSMethodSignature* signature = target->methodSignatureForSelector(selector);
    if (!signature)
        raiseException(NSInvalidArgumentException,
                       u"invocationWithTarget:selector: the target has no method %s"_ns, selector.name());
    NSInvocation* invocation = invocationOf(signature, selector);
    invocation->setTarget(target);
    return invocation;
}

id returnObject(NSInvocation* invocation) {
    requireArgument(invocation, "returnObject", "the invocation");
    if (std::strcmp(invocation->methodSignature()->methodReturnType(), "@") != 0) return nullptr;
    id result = nullptr;
    invocation->getReturnValue(&result);
    return result;
}

}  // namespace pelvor
