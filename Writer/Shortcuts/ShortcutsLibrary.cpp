// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/ShortcutsLibrary.h"

#include "BaseInterfaceLibrary.h"
#include "Writer/Shortcuts/WRShortcut.h"
#include "Writer/Shortcuts/WRShortcutApplication.h"
#include "Writer/Shortcuts/WRShortcutLabel.h"
#include "Writer/Shortcuts/WRShortcutMatcher.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseInterfaceLibrary};
constexpr Class* kClasses[] = {&WRShortcut::classRecord, &WRShortcutApplication::classRecord,
                               &WRShortcutLabel::classRecord, &WRShortcutMatcher::classRecord};

}  // namespace

constinit Library shortcutsLibrary{"WriterShortcuts", kDependencies, kClasses, {}};

}  // namespace pelvor
