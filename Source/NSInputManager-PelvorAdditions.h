// SPDX-License-Identifier: Apache-2.0
// The user's keyboard layouts, and switching between them.
#pragma once

#include "Interface/NSInputManager.h"
#include "PBKeyboardInputMethod.h"

namespace pelvor {

struct Category;

/// Class operations of NSInputManager. A menu of keyboards:
///
///     using Keyboards = NSInputManager_PelvorAdditions;
///     for (id each : Keyboards::availableKeyboardLayouts()) {
///         auto* method = static_cast<PBKeyboardInputMethod*>(each);
///         NSMenuItem* item = menu->addItemWithTitle_action_keyEquivalent(method->displayName(), …);
///         item->setRepresentedObject(method);
///         item->setImage(method->displayIcon());
///         item->setState(method->isEqual(Keyboards::currentKeyboardLayout()));
///     }
///
/// NSKeyboardLayoutsDidChangeNotification tells when to make it again. Main thread.
struct PELVOR_EXPORT NSInputManager_PelvorAdditions {
    /// The layouts that the user has enabled; empty where there are none. The list, and each method in it, is
    /// the same object until the user enables others. Borrowed.
    static NSArray* availableKeyboardLayouts();
    /// The script system of the current layout.
    static std::int32_t currentKeySciptCode();
    /// Null where there are no layouts. Borrowed; the same object until the layout or the script changes.
    static PBKeyboardInputMethod* currentKeyboardLayout();
    /// Switches the keyboard and returns whether that succeeded. If it failed, the method is marked as
    /// disabled, and the user is told in the next turn of the run loop in the default mode; once, until the
    /// method could be switched to again. Returns false for null.
    static bool setCurrentKeyboardLayout(PBKeyboardInputMethod* method);
    /// Tells the user that the keyboard cannot be switched to this layout, and opens the settings of the
    /// keyboard if the user wants to; says so if there is no program for them. Does nothing for null.
    static void showAlertForFailedKeyboardLayout(PBKeyboardInputMethod* method);
};

extern const Category NSInputManager_PelvorAdditions_category;

}  // namespace pelvor
