// SPDX-License-Identifier: Apache-2.0
// WRColorMenu: a menu of colours for text.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSMenu;

/// The delegate of the menu with the colours of text, each with a swatch. Main thread.
class WRColorMenu : public NSObject {
    PELVOR_CLASS(WRColorMenu, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRColorMenu> init(Class* cls = classObject());

    /// Fills an empty menu.
    void menuNeedsUpdate(NSMenu* menu);

  protected:
    WRColorMenu() = default;
    ~WRColorMenu() = default;
};

}  // namespace pelvor
