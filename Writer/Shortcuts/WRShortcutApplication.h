// SPDX-License-Identifier: Apache-2.0
// WRShortcutApplication: the application object, in which shortcuts of several keys come before all else.
#pragma once

#include "Interface/NSApplication.h"

namespace pelvor {

/// Takes the place of NSApplication when Writer's windows are loaded. Keys go first to a first responder that
/// wants to capture keyboard shortcuts, then to the WRShortcutMatcher. Main thread.
class WRShortcutApplication : public NSApplication {
    PELVOR_CLASS(WRShortcutApplication, NSApplication);

  public:
    static void performPosing();
    void sendEvent(NSEvent* event) override;

  protected:
    WRShortcutApplication() = default;
    ~WRShortcutApplication() = default;
};

}  // namespace pelvor
