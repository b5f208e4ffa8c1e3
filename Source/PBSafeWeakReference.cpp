// SPDX-License-Identifier: Apache-2.0
#include "PBSafeWeakReference.h"

#include "BaseLibrary.h"
#include "Runtime/NSInvocation.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBSafeWeakReference, baseLibrary) {
    methods.classLevel<"initWithObject:", &PBSafeWeakReference::initWithObject>();
    methods.instance<"methodSignatureForSelector:", &PBSafeWeakReference::methodSignatureForSelector>();
    methods.instance<"forwardInvocation:", &PBSafeWeakReference::forwardInvocation>();
}

Retained<PBSafeWeakReference> PBSafeWeakReference::initWithObject(id object, Class* cls) {
    auto reference = make<PBSafeWeakReference>(cls);
    reference->_target = WeakHandle(object);
    reference->_class = object ? object->isa() : nullptr;
    return reference;
}

// Kept for the time of a message, so that it cannot end in the middle on another thread.
Retained<Object> PBSafeWeakReference::target() {
    Retained<Object> target = _target.object();
    return target && target->isa() == _class ? target : nullptr;
}

NSMethodSignature* PBSafeWeakReference::methodSignatureForSelector(SEL selector) {
    Retained<Object> object = target();
    if (!object) return nullptr;
    try {
        return object->methodSignatureForSelector(selector);
    } catch (...) {
        _target = WeakHandle();
        return nullptr;
    }
}

void PBSafeWeakReference::forwardInvocation(NSInvocation* invocation) {
    Retained<Object> object = target();
    invocation->setTarget(object);
    if (!object) return;
    try {
        invocation->invoke();
    } catch (...) {
        _target = WeakHandle();
    }
}

}  // namespace pelvor
