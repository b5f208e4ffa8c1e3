// SPDX-License-Identifier: Apache-2.0
#include "PBSafeWeakReference.h"

#include "BaseLibrary.h"
#include "Runtime/NSInvocation.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBSafeWeakReference, baseLibrary) {
    methods.creator<"initWithObject:", &PBSafeWeakReference::initWithObject>();
    methods.instance<"methodSignatureForSelector:", &PBSafeWeakReference::methodSignatureForSelector>();
    methods.instance<"forwardInvocation:", &PBSafeWeakReference::forwardInvocation>();
}

Retained<PBSafeWeakReference> PBSafeWeakReference::initWithObject(id object, Class* cls) {
    auto reference = make<PBSafeWeakReference>(cls);
    reference->_target = WeakHandle(object);
    reference->_class = object ? object->isa() : nullptr;
    return reference;
}

bool PBSafeWeakReference::isAsItWas(id object) { return object && object->isa() == _class; }

// The target is retained for the time of a message, so that it cannot end in the middle on another thread.

NSMethodSignature* PBSafeWeakReference::methodSignatureForSelector(SEL selector) {
    Retained<Object> object = _target.object();
    if (!isAsItWas(object)) return nullptr;
    try {
        return object->methodSignatureForSelector(selector);
    } catch (...) {
        _target = WeakHandle();
        return nullptr;
    }
}

void PBSafeWeakReference::forwardInvocation(NSInvocation* invocation) {
    requireArgument(invocation, "forwardInvocation:", "the invocation");
    Retained<Object> object = _target.object();
    invocation->setTarget(object);
    if (!isAsItWas(object)) return;
    try {
        invocation->invoke();
    } catch (...) {
        _target = WeakHandle();
    }
}

}  // namespace pelvor
