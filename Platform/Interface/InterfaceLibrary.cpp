// SPDX-License-Identifier: Apache-2.0
#include "Interface/InterfaceLibrary.h"

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/NSApplication.h"
#include "Interface/NSCursor.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSPanel.h"
#include "Interface/NSResponder.h"
#include "Interface/NSScreen.h"
#include "Interface/NSView.h"
#include "Interface/Windows/WindowState.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&textLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &DisplayWatcher::classRecord,
    &NSApplication::classRecord,
    &NSCursor::classRecord,
    &NSEvent::classRecord,
    &NSImage::classRecord,
    &NSInputManager::classRecord,
    &NSMenu::classRecord,
    &NSMenuItem::classRecord,
    &NSPanel::classRecord,
    &NSResponder::classRecord,
    &NSScreen::classRecord,
    &NSView::classRecord,
    &NSWindow::classRecord,
    &WindowRootView::classRecord,
};
// clang-format on

}  // namespace

constinit Library interfaceLibrary{"PelvorInterface", kDependencies, kClasses, {}};

}  // namespace pelvor
