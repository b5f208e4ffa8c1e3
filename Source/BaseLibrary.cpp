// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "Foundation/FoundationLibrary.h"
#include "NSObject-PelvorAdditions.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
constexpr Class* kClasses[] = {
    &PBUniqueObject::classRecord,
};

}  // namespace

constinit Library baseLibrary{"PelvorBase", kDependencies, kClasses, {}};

}  // namespace pelvor
