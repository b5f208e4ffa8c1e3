// SPDX-License-Identifier: Apache-2.0
#include "Foundation/FoundationLibrary.h"

#include "Foundation/NSBufferString.h"
#include "Foundation/NSInlineString.h"
#include "Foundation/NSString.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&runtimeLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
constexpr Class* kClasses[] = {
    &NSBufferString::classRecord, &NSConstantString::classRecord, &NSExternalString::classRecord,
    &NSInlineString::classRecord, &NSMutableString::classRecord,  &NSString::classRecord,
};

}  // namespace

constinit Library foundationLibrary{"Foundation", kDependencies, kClasses, {}};

}  // namespace pelvor
