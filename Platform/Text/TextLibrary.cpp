// SPDX-License-Identifier: Apache-2.0
#include "Text/TextLibrary.h"

#include "Foundation/FoundationLibrary.h"
#include "Text/NSColor.h"
#include "Text/NSEvent.h"
#include "Text/NSFont.h"
#include "Text/NSFontDescriptor.h"
#include "Text/NSFontManager.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextStorage.h"
#include "Text/NSTextTab.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &NSColor::classRecord,
    &NSEvent::classRecord,
    &NSFont::classRecord,
    &NSFontDescriptor::classRecord,
    &NSFontManager::classRecord,
    &NSGraphicsContext::classRecord,
    &NSMutableParagraphStyle::classRecord,
    &NSParagraphStyle::classRecord,
    &NSTextStorage::classRecord,
    &NSTextTab::classRecord,
};
// clang-format on

}  // namespace

constinit Library textLibrary{"PelvorText", kDependencies, kClasses, {}};

}  // namespace pelvor
