// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"
#include "Runtime/RuntimeLibrary.h"

namespace {

TEST(BaseLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseLibrary);
    for (Library* library : {&baseLibrary, &foundationLibrary, &runtimeLibrary})
        for (Class* cls : library->classes) checkClass(cls);
}

}  // namespace
