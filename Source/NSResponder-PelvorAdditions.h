// SPDX-License-Identifier: Apache-2.0
// Hooks of responders that want to see key equivalents before the menus do, such as a field in which the user
// types a shortcut. Both have methods that such a responder overrides; the functions here are what every
// other responder does. The application class of the host asks the first responder in its `sendEvent`;
// NSApplication itself does not.
#pragma once

#include "Interface/NSResponder.h"

namespace pelvor {

struct Category;

/// False: the menus see key equivalents first.
PELVOR_EXPORT bool allowCapturingKeyboardShortcuts(NSResponder* responder);
/// Does nothing with the event.
PELVOR_EXPORT void captureKeyboardShortcut(NSResponder* responder, NSEvent* event);

extern const Category NSResponder_PelvorAdditions_category;

}  // namespace pelvor
