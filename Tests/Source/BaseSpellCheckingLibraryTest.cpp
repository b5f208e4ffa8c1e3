// SPDX-License-Identifier: Apache-2.0
#include "BaseSpellCheckingLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"

namespace {

TEST(BaseSpellCheckingLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseSpellCheckingLibrary);
    for (Class* cls : baseSpellCheckingLibrary.classes) checkClass(cls);
    checkClass(classNamed("NSSpellChecker"));
}

}  // namespace
