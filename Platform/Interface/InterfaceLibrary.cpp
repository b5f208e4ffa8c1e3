// SPDX-License-Identifier: Apache-2.0
#include "Interface/InterfaceLibrary.h"

#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&textLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &NSEvent::classRecord,
    &NSImage::classRecord,
    &NSMenu::classRecord,
    &NSMenuItem::classRecord,
};
// clang-format on

}  // namespace

constinit Library interfaceLibrary{"PelvorInterface", kDependencies, kClasses, {}};

}  // namespace pelvor
