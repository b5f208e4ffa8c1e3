// SPDX-License-Identifier: Apache-2.0
// NSProxy: the root for objects that stand in for others.
#pragma once

#include "Runtime/NSObject.h"

namespace pelvor {

/// A root class with almost no methods, so that nearly every message reaches `forwardInvocation`. A
/// subclass overrides that and `methodSignatureForSelector`. It counts references, tells its class,
/// and compares by identity; no more.
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
