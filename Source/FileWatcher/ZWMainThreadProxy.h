// SPDX-License-Identifier: Apache-2.0
// ZWMainThreadProxy: stands in for an object that is to be used on the main thread.
#pragma once

#include "Runtime/NSInvocation.h"

namespace pelvor {

struct Category;

/// Forwards every message that it does not understand itself to its target on the main thread, in the
/// common modes, and waits until that is done; on the main thread at once. Results come back to the caller,
/// and so does what the method raises. The target is not retained: the owner of the proxy keeps it alive. A
/// main thread that itself waits for the caller never comes to it. Any thread.
class PELVOR_EXPORT ZWMainThreadProxy : public NSObject {
    PELVOR_CLASS(ZWMainThreadProxy, NSObject);

  public:
    static Retained<ZWMainThreadProxy> initWithTarget(id target, Class* cls = classObject());

    /// Whether the proxy itself or the target does.
    bool respondsToSelector(SEL selector) override;
    /// The proxy's own, else the target's.
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    /// Raises NSInvalidArgumentException, on the calling thread, for a message that the target does not know.
    void forwardInvocation(NSInvocation* invocation) override;

    /// What the proxy implements is performed on it, here and now. All else is performed on the target on the
    /// main thread, with waiting, and its result is lost: the answer is none. Raise as `forwardInvocation`.
    id performSelector(SEL selector) override;
    id performSelector_withObject(SEL selector, id object) override;

    /// The proxy itself, retained by the second: there is no proxy of a proxy.
    ZWMainThreadProxy* mainThreadProxy() { return this; }
    Retained<ZWMainThreadProxy> copyMainThreadProxy() { return Retained<ZWMainThreadProxy>::retaining(this); }

  protected:
    ZWMainThreadProxy() = default;
    ~ZWMainThreadProxy() = default;

  private:
    bool implements(SEL selector);
    void requireTarget(SEL selector);

    id _unretainedTarget = nullptr;
};

/// A proxy for the object; of a proxy, itself.
PELVOR_EXPORT ZWMainThreadProxy* mainThreadProxy(NSObject* object);
PELVOR_EXPORT Retained<ZWMainThreadProxy> copyMainThreadProxy(NSObject* object);

extern const Category NSObject_ZWMainThreadProxy_category;

}  // namespace pelvor
