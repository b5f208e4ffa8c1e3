// SPDX-License-Identifier: Apache-2.0
// NSPanel: a window beside documents.
#pragma once

#include "Interface/NSWindow.h"

namespace pelvor {

/// A window beside documents, such as a palette: it never becomes the main window, and goes while the program
/// is not active if it is told so.
class PELVOR_EXPORT NSPanel : public NSWindow {
    PELVOR_CLASS(NSPanel, NSWindow);
    PELVOR_CREATORS(initWithContentRect_styleMask_backing_defer);

  public:
    static Retained<NSPanel> initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                         NSUInteger styleMask,
                                                                         NSBackingStoreType backing,
                                                                         bool defer,
                                                                         Class* cls = classObject());

    bool canBecomeMainWindow() override { return false; }
    /// Whether it stands in front of documents.
    bool isFloatingPanel() { return level() == NSFloatingWindowLevel; }
    void setFloatingPanel(bool isFloating) {
        setLevel(isFloating ? NSFloatingWindowLevel : NSNormalWindowLevel);
    }
    /// Whether a press makes it the key window only where it is on a view that takes keys.
    bool becomesKeyOnlyIfNeeded() { return _becomesKeyOnlyIfNeeded; }
    void setBecomesKeyOnlyIfNeeded(bool isNeeded) { _becomesKeyOnlyIfNeeded = isNeeded; }
    bool worksWhenModal() override { return _worksWhenModal; }
    void setWorksWhenModal(bool works) { _worksWhenModal = works; }

  protected:
    NSPanel() = default;
    ~NSPanel() = default;

  private:
    bool _becomesKeyOnlyIfNeeded = false;
    bool _worksWhenModal = false;
};

}  // namespace pelvor
