// SPDX-License-Identifier: Apache-2.0
// NSProxy: the root for objects that stand in for others.
#pragma once

#include "Runtime/NSObject.h"

namespace pelvor {

/// A root class with almost no methods, so that nearly every message reaches `forwardInvocation`. A proxy
/// counts references, tells its class and compares by identity, and does nothing else. A subclass overrides
/// two operations:
///
///     class PBLampProxy : public NSProxy {
///         PELVOR_CLASS(PBLampProxy, NSProxy);
///
///       public:
///         NSMethodSignature* methodSignatureForSelector(SEL selector) override {
///             return _lamp->methodSignatureForSelector(selector);
///         }
///         void forwardInvocation(NSInvocation* message) override { message->invokeWithTarget(_lamp); }
class PELVOR_EXPORT NSProxy : public Object {
    PELVOR_CLASS(NSProxy, Object);

  public:
    bool isProxy() override { return true; }
    /// Whether the proxy has a method for the selector, or a signature of the object that it stands for.
    bool respondsToSelector(SEL selector) override;

  protected:
    constexpr NSProxy() noexcept = default;
    ~NSProxy() = default;
};

}  // namespace pelvor
