// SPDX-License-Identifier: Apache-2.0
#include "Text/TextLibrary.h"

#include "Foundation/FoundationLibrary.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

constexpr Class* kClasses[] = {
    &NSMutableParagraphStyle::classRecord,
    &NSParagraphStyle::classRecord,
    &NSTextTab::classRecord,
};

}  // namespace

constinit Library textLibrary{"PelvorText", kDependencies, kClasses, {}};

}  // namespace pelvor
