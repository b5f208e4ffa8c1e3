// SPDX-License-Identifier: Apache-2.0
#include "Foundation/FoundationLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"

namespace {

TEST(FoundationLibraryTest, EveryClassConforms) {
    registerLibrary(foundationLibrary);
    for (Class* cls : registeredClasses()) checkClass(cls);
}

}  // namespace
