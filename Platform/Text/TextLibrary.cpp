// SPDX-License-Identifier: Apache-2.0
#include "Text/TextLibrary.h"

#include "Foundation/FoundationLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

}  // namespace

constinit Library textLibrary{"PelvorText", kDependencies, {}, {}};

}  // namespace pelvor
