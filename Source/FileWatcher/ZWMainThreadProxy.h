// SPDX-License-Identifier: Apache-2.0
// ZWMainThreadProxy: stands in for an object that must be used on the main thread.
#pragma once

#include "Runtime/NSInvocation.h"

namespace pelvor {

struct Category;

/// A proxy that forwards messages to an object, its target, on the main thread. A thread that does work in
/// the background tells the document of it in this way:
///
///     Retained<ZWMainThreadProxy> proxy = copyMainThreadProxy(document);
///     …  // on another thread
///     send(proxy, "fileDidChange:"_sel, path);  // returns when the document has run it on the main thread
///
/// If the proxy itself does not understand a message, the main run loop runs the message in the common modes,
/// while the caller waits; on the main thread the message runs at once. The caller gets the result, or the
/// exception that the method raises. The proxy does not retain its target: the owner of the proxy keeps the
/// target alive. A main thread that itself waits for the caller never runs the message. Any thread.
class PELVOR_EXPORT ZWMainThreadProxy : public NSObject {
    PELVOR_CLASS(ZWMainThreadProxy, NSObject);
    PELVOR_CREATORS(initWithTarget);

  public:
    static Retained<ZWMainThreadProxy> initWithTarget(id target, Class* cls = classObject());

    /// Whether the proxy itself or the target responds.
    bool respondsToSelector(SEL selector) override;
    /// The proxy's own signature if it has such a method, else the target's.
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    /// Runs the invocation on the main thread with the target. Raises NSInvalidArgumentException, on the
    /// calling thread, if the target does not respond to the message.
    void forwardInvocation(NSInvocation* invocation) override;

    // Messages that the proxy implements are performed on the proxy, on the calling thread. All others are
    // performed on the target on the main thread; their results are lost, and null is returned. They raise as
    // `forwardInvocation` does.

    id performSelector(SEL selector) override;
    id performSelector_withObject(SEL selector, id object) override;

    // The proxy itself: there is no proxy of a proxy.

    ZWMainThreadProxy* mainThreadProxy() { return this; }
    Retained<ZWMainThreadProxy> copyMainThreadProxy() { return Retained<ZWMainThreadProxy>::retaining(this); }

  protected:
    ZWMainThreadProxy() = default;
    ~ZWMainThreadProxy() = default;

  private:
    bool implements(SEL selector);
    void requireTarget(SEL selector);

    Unretained<Object> _target = nullptr;
};

// A proxy for the object: `mainThreadProxy` returns it borrowed, `copyMainThreadProxy` owned. For an object
// that is a proxy, both return the object itself.

PELVOR_EXPORT ZWMainThreadProxy* mainThreadProxy(NSObject* object);
PELVOR_EXPORT Retained<ZWMainThreadProxy> copyMainThreadProxy(NSObject* object);

extern const Category NSObject_ZWMainThreadProxy_category;

}  // namespace pelvor
