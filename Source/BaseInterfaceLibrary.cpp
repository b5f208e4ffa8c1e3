// SPDX-License-Identifier: Apache-2.0
#include "BaseInterfaceLibrary.h"

#include "BaseTextLibrary.h"
#include "Interface/InterfaceLibrary.h"
#include "NSEvent-PelvorAdditions.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseTextLibrary, &interfaceLibrary};

// Alphabetical.
// clang-format off
constexpr const Category* kCategories[] = {
    &NSEvent_PelvorAdditions_category,
};
// clang-format on

}  // namespace

constinit Library baseInterfaceLibrary{"PelvorBaseInterface", kDependencies, {}, kCategories};

}  // namespace pelvor
