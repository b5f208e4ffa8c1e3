// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "ClassConformity.h"
#include "Foundation/FoundationLibrary.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor::testing {
namespace {

TEST(BaseLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseLibrary);
    for (Library* library : {&baseLibrary, &foundationLibrary, &runtimeLibrary})
        for (Class* cls : library->classes) checkClass(cls);
}

}  // namespace
}  // namespace pelvor::testing
