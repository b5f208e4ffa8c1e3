// SPDX-License-Identifier: Apache-2.0
// PBSafeWeakReference: stands in for an object as long as that lives.
#pragma once

#include "Runtime/NSProxy.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

/// A proxy that passes messages on to an object, its target, and does not keep the target alive:
///
///     auto owner = PBSafeWeakReference::initWithObject(document);
///     send(owner, "pageDidChange:"_sel, page);  // reaches the document while it lives
///
/// Once the target has been destroyed, or has got another class than it had when the proxy was made, the
/// proxy returns no signatures: messages to the proxy are not understood, and an invocation that reaches it
/// is dropped. The proxy does not touch the memory of a destroyed target. A target that raises is forgotten
/// for good. For one thread at a time; the target may end on any thread.
class PELVOR_EXPORT PBSafeWeakReference : public NSProxy {
    PELVOR_CLASS(PBSafeWeakReference, NSProxy);
    PELVOR_CREATORS(initWithObject);

  public:
    static Retained<PBSafeWeakReference> initWithObject(id object, Class* cls = classObject());

    /// The target's signature; null when the target is gone, does not know the message, or raises.
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    /// Invokes the message on the target. What the target raises is swallowed.
    void forwardInvocation(NSInvocation* invocation) override;

  protected:
    PBSafeWeakReference() = default;
    ~PBSafeWeakReference() = default;

  private:
    bool isAsItWas(id object);

    WeakHandle _target;
    Class* _class = nullptr;  // of the target, when the proxy was made
};

}  // namespace pelvor
