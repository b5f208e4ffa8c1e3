// SPDX-License-Identifier: Apache-2.0
// WRProfilesPanel: a window with a table of what plug-ins offer.
#pragma once

#include "Writer/Windows/WRTablePanel.h"

namespace pelvor {

class NSArray;
class NSNotification;

/// Lists the profiles of the registry by their names. It follows the registry. Main thread.
class WRProfilesPanel : public WRTablePanel {
    PELVOR_CLASS(WRProfilesPanel, WRTablePanel);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRProfilesPanel> init(Class* cls = classObject());

    void profilesDidChange(NSNotification* notification);

  protected:
    WRProfilesPanel() = default;
    ~WRProfilesPanel();

    NSUInteger rowCount() override;
    id valueAt(NSUInteger row, NSUInteger column) override;

  private:
    Retained<NSArray> _profiles;  // in the order of their names
};

}  // namespace pelvor
