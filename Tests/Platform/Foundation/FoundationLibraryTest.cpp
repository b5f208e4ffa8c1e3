// SPDX-License-Identifier: Apache-2.0
#include "Foundation/FoundationLibrary.h"

#include <gtest/gtest.h>

#include "ClassConformity.h"

namespace pelvor::testing {
namespace {

TEST(FoundationLibraryTest, EveryClassConforms) {
    registerLibrary(foundationLibrary);
    for (Class* cls : registeredClasses()) checkClass(cls);
}

}  // namespace
}  // namespace pelvor::testing
