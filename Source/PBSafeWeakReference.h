// SPDX-License-Identifier: Apache-2.0
// PBSafeWeakReference: stands in for an object as long as that lives.
#pragma once

#include "Runtime/NSProxy.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

/// Passes messages on to an object that it does not keep alive. Once the object has been destroyed, or its
/// class is another than when the proxy was made, messages are dropped and no signature is known; the
/// memory of a destroyed object is not touched. An object that raises is forgotten for good. One thread at
/// a time; the object may end on any.
class PELVOR_EXPORT PBSafeWeakReference : public NSProxy {
    PELVOR_CLASS(PBSafeWeakReference, NSProxy);

  public:
    static Retained<PBSafeWeakReference> initWithObject(id object, Class* cls = classObject());

    /// None when the object is gone, does not know the message, or raises.
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    /// Swallows what the object raises.
    void forwardInvocation(NSInvocation* invocation) override;

  protected:
    PBSafeWeakReference() = default;
    ~PBSafeWeakReference() = default;

  private:
    bool isAsItWas(id object);

    WeakHandle _target;
    Class* _class = nullptr;  // the target's when the proxy was made
};

}  // namespace pelvor
