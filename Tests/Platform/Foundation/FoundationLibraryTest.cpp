// SPDX-License-Identifier: Apache-2.0
#include "Foundation/FoundationLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"
#include "Runtime/RuntimeLibrary.h"

namespace {

TEST(FoundationLibraryTest, EveryClassConforms) {
    registerLibrary(foundationLibrary);
    for (Library* library : {&foundationLibrary, &runtimeLibrary})
        for (Class* cls : library->classes) checkClass(cls);
}

}  // namespace
