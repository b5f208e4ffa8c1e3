// SPDX-License-Identifier: Apache-2.0
// Which keys mean a menu item, and how they are shown to the user.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Whether a pressed key means a key equivalent. `characters` are what the key gives with Shift alone. Where
/// the equivalent is a letter, Shift has to be down if the mask has it or the letter is a capital one, and
/// otherwise up; where it is a sign that Shift may be needed for, such as "+", Shift does not matter unless
/// the mask has it.
PELVOR_EXPORT bool isKeyEquivalent(NSString* equivalent, NSUInteger mask, NSString* characters,
                                   NSUInteger modifiers);

/// "Ctrl+Shift+": the modifiers in the user's language; "" for none. Borrowed.
PELVOR_EXPORT NSString* modifierText(NSUInteger modifiers);
/// "S", "F5", "Page Up": the key with this character. Borrowed.
PELVOR_EXPORT NSString* keyText(unichar character);
/// "Ctrl+Shift+S", of a menu item's key equivalent and mask; "" for no key. Borrowed.
PELVOR_EXPORT NSString* keyEquivalentText(NSString* equivalent, NSUInteger mask);

}  // namespace pelvor
