// SPDX-License-Identifier: Apache-2.0
#include "BaseInterfaceLibrary.h"

#include "ClassConformity.h"
#include "Interface/InterfaceLibrary.h"
#include "Prelude.h"

namespace {

TEST(BaseInterfaceLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseInterfaceLibrary);
    for (Class* cls : baseInterfaceLibrary.classes) checkClass(cls);
    for (Class* cls : interfaceLibrary.classes) checkClass(cls);  // with this library's categories
}

}  // namespace
