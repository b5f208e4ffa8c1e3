// SPDX-License-Identifier: Apache-2.0
// WRStyleMenu: fills the menus of styles and colours.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSMenu;

/// The delegate of the menu with the named styles: those of the document in front, paragraph styles first.
/// Main thread.
class WRStyleMenu : public NSObject {
    PELVOR_CLASS(WRStyleMenu, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRStyleMenu> init(Class* cls = classObject());

    void menuNeedsUpdate(NSMenu* menu);

  protected:
    WRStyleMenu() = default;
    ~WRStyleMenu() = default;
};

}  // namespace pelvor
