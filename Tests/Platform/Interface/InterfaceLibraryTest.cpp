// SPDX-License-Identifier: Apache-2.0
#include "Interface/InterfaceLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"

namespace {

TEST(InterfaceLibrary, LeavesEveryClassInOrder) {
    registerLibrary(interfaceLibrary);
    for (Class* cls : interfaceLibrary.classes) checkClass(cls);
}

}  // namespace
