// SPDX-License-Identifier: Apache-2.0
#include "Text/TextLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"

namespace {

TEST(TextLibrary, LeavesEveryClassInOrder) {
    registerLibrary(textLibrary);
    for (Class* cls : textLibrary.classes) checkClass(cls);
}

}  // namespace
