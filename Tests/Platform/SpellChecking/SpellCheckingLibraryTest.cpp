// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/SpellCheckingLibrary.h"

#include "ClassConformity.h"
#include "DictionaryScope.h"
#include "Prelude.h"

namespace {

TEST(SpellCheckingLibrary, LeavesEveryClassInOrder) {
    DictionaryScope scope;
    registerLibrary(spellCheckingLibrary);
    for (Class* cls : spellCheckingLibrary.classes) checkClass(cls);
}

}  // namespace
