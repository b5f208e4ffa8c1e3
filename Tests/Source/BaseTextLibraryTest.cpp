// SPDX-License-Identifier: Apache-2.0
#include "BaseTextLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"

namespace {

TEST(BaseTextLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseTextLibrary);
    for (Class* cls : baseTextLibrary.classes) checkClass(cls);
}

}  // namespace
