// SPDX-License-Identifier: Apache-2.0
#include "BaseTextLibrary.h"

#include "ClassConformity.h"
#include "Prelude.h"
#include "Text/TextLibrary.h"

namespace {

TEST(BaseTextLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseTextLibrary);
    for (Class* cls : baseTextLibrary.classes) checkClass(cls);
    for (Class* cls : textLibrary.classes) checkClass(cls);  // with this library's categories
    for (const char* name : {"NSAttributedString", "NSMutableAttributedString"}) checkClass(classNamed(name));
}

}  // namespace
