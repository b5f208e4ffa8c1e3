// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSPanel.h"

#include "Interface/InterfaceLibrary.h"
#include "Interface/Windows/WindowState.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPanel, interfaceLibrary) {
    methods.creator<"initWithContentRect:styleMask:backing:defer:",
                    &NSPanel::initWithContentRect_styleMask_backing_defer>();
    methods.instance<"isFloatingPanel", &NSPanel::isFloatingPanel>();
    methods.instance<"setFloatingPanel:", &NSPanel::setFloatingPanel>();
    methods.instance<"becomesKeyOnlyIfNeeded", &NSPanel::becomesKeyOnlyIfNeeded>();
    methods.instance<"setBecomesKeyOnlyIfNeeded:", &NSPanel::setBecomesKeyOnlyIfNeeded>();
    methods.instance<"setWorksWhenModal:", &NSPanel::setWorksWhenModal>();
}

Retained<NSPanel> NSPanel::initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                       NSUInteger styleMask,
                                                                       NSBackingStoreType backing, bool defer,
                                                                       Class* cls) {
    auto panel = cast<NSPanel>(
        NSWindow::initWithContentRect_styleMask_backing_defer(contentRect, styleMask, backing, defer, cls));
    panel->state().isPanel = true;
    return panel;
}

}  // namespace pelvor
