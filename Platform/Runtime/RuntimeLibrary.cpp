// SPDX-License-Identifier: Apache-2.0
#include "Runtime/RuntimeLibrary.h"

#include "Runtime/NSInvocation.h"
#include "Runtime/NSProxy.h"

namespace pelvor {
namespace {

constexpr Class* kClasses[] = {
    &NSObject::classRecord,          &Class::classRecord,   &NSInvocation::classRecord,
    &NSMethodSignature::classRecord, &NSProxy::classRecord,
};

}  // namespace

constinit Library runtimeLibrary{"Runtime", {}, kClasses, {}};

}  // namespace pelvor
