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
    /// The layouts that the user has enabled, borrowed; empty where the keyboard cannot be switched. Returns
    /// the same list of the same objects until the user enables other layouts.
    static NSArray* availableKeyboardLayouts();
    /// The script system of the current layout.
    static std::int32_t currentKeySciptCode();
    /// The layout that the user types with, borrowed; null where the keyboard cannot be switched. Returns the
    /// same object until the layout or the script system changes.
    static PBKeyboardInputMethod* currentKeyboardLayout();
    /// Switches the keyboard, at first to the method's script system, and returns whether that succeeded; the
    /// script system may have been switched where it returns false. A method that cannot be switched to is
    /// marked as disabled, and the user is told in the next turn of the run loop in the default mode, but not
    /// again before a switch to the method has succeeded. Returns false for null.
    static bool setCurrentKeyboardLayout(PBKeyboardInputMethod* method);
    /// Tells the user that the keyboard cannot be switched to this layout, and offers to open the settings of
    /// the keyboard; tells the user if no program for them is installed. Does nothing for null.
    static void showAlertForFailedKeyboardLayout(PBKeyboardInputMethod* method);
};

extern const Category NSInputManager_PelvorAdditions_category;

}  // namespace pelvor
