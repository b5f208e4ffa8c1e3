// SPDX-License-Identifier: Apache-2.0
#include "Text/TextLibrary.h"

#include "Foundation/FoundationLibrary.h"
#include "Text/NSAttributedString-Drawing.h"
#include "Text/NSColor.h"
#include "Text/NSContainerRunTable.h"
#include "Text/NSFont.h"
#include "Text/NSFontDescriptor.h"
#include "Text/NSFontManager.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextAttachmentCell.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/NSTextTab.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &NSColor::classRecord,
    &NSContainerRunTable::classRecord,
    &NSFont::classRecord,
    &NSFontDescriptor::classRecord,
    &NSFontManager::classRecord,
    &NSGraphicsContext::classRecord,
    &NSLayoutManager::classRecord,
    &NSMutableParagraphStyle::classRecord,
    &NSParagraphStyle::classRecord,
    &NSTextAttachment::classRecord,
    &NSTextAttachmentCell::classRecord,
    &NSTextContainer::classRecord,
    &NSTextStorage::classRecord,
    &NSTextTab::classRecord,
};
// clang-format on

constexpr const Category* kCategories[] = {
    &NSAttributedString_Drawing_category,
    &NSString_Drawing_category,
};

}  // namespace

constinit Library textLibrary{"PelvorText", kDependencies, kClasses, kCategories};

}  // namespace pelvor
