// SPDX-License-Identifier: Apache-2.0
#include "BaseTextLibrary.h"

#include "BaseLibrary.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSFont-PelvorAdditions.h"
#include "NSLayoutManager-PelvorAdditions.h"
#include "NSParagraphStyle-PelvorAdditions.h"
#include "NSString-PelvorDrawingAdditions.h"
#include "NSTextStorage-PelvorAdditions.h"
#include "PantherFont.h"
#include "PantherObject.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary, &textLibrary};

// Alphabetical.
// clang-format off
constexpr Class* kClasses[] = {
    &PantherFont::classRecord,
    &PantherObject::classRecord,
};
constexpr const Category* kCategories[] = {
    &NSAttributedString_PelvorAdditions_category,
    &NSFont_PelvorAdditions_category,
    &NSLayoutManager_PBInternalsExposed_category,
    &NSLayoutManager_PelvorAdditions_category,
    &NSMutableAttributedString_PelvorAdditions_category,
    &NSParagraphStyle_PelvorAdditions_category,
    &NSString_PelvorDrawingAdditions_category,
    &NSTextStorage_DisplayAndModelAdditions_category,
    &NSTextStorage_LongestEffectiveRangeAdditions_category,
    &NSTextTab_PropertyListSerializing_category,
};
// clang-format on

}  // namespace

constinit Library baseTextLibrary{"PelvorBaseText", kDependencies, kClasses, kCategories};

}  // namespace pelvor
