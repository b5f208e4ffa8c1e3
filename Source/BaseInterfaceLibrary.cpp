// SPDX-License-Identifier: Apache-2.0
#include "BaseInterfaceLibrary.h"

#include "BaseTextLibrary.h"
#include "Interface/InterfaceLibrary.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Menus/PBMenuItem.h"
#include "NSEvent-PelvorAdditions.h"
#include "NSInputManager-PelvorAdditions.h"
#include "NSResponder-PelvorAdditions.h"
#include "NSSegmentedControl-PelvorPantherAdditions.h"
#include "NSTableView-PelvorAdditions.h"
#include "NSView-PelvorAdditions.h"
#include "PBAutoscrollingTableView.h"
#include "PBGUIUtil.h"
#include "PBKeyboardInputMethod.h"
#include "PBScrollView.h"
#include "PantherCursor.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseTextLibrary, &interfaceLibrary};

// Alphabetical.
// clang-format off
constexpr Class* kClasses[] = {
    &PBAutoscrollingTableView::classRecord,
    &PBKeyboardInputMethod::classRecord,
    &PBMenuItem::classRecord,
    &PBScrollView::classRecord,
    &PantherCursor::classRecord,
};
constexpr const Category* kCategories[] = {
    &NSEvent_PelvorAdditions_category,
    &NSInputManager_PelvorAdditions_category,
    &NSMenuItem_PelvorAdditions_category,
    &NSMenuItem_PelvorGUIAdditions_category,
    &NSMenu_PelvorAdditions_category,
    &NSObject_PelvorValidatedUserInterfaceItemAdditions_category,
    &NSResponder_PelvorAdditions_category,
    &NSSegmentedControl_PelvorPantherAdditions_category,
    &NSTableView_PelvorAdditions_category,
    &NSView_PelvorAdditions_category,
};
// clang-format on

}  // namespace

constinit Library baseInterfaceLibrary{"PelvorBaseInterface", kDependencies, kClasses, kCategories};

}  // namespace pelvor
