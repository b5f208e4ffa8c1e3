// SPDX-License-Identifier: Apache-2.0
#include "BaseTextLibrary.h"

#include "BaseLibrary.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary, &textLibrary};

}  // namespace

constinit Library baseTextLibrary{"PelvorBaseText", kDependencies, {}, {}};

}  // namespace pelvor
