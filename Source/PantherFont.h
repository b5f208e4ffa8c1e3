// SPDX-License-Identifier: Apache-2.0
// PantherFont: the font class with sizes for controls and a menu bar font, for older platforms.
#pragma once

#include "Text/NSFont.h"

namespace pelvor {

/// Gives NSFont two class operations on platforms that lack them; see PantherCompatibility.h.
class PELVOR_EXPORT PantherFont : public NSFont, NSFont::HiddenCreators {
    PELVOR_CLASS(PantherFont, NSFont);
    PELVOR_CREATORS();

  public:
    /// Takes the place of NSFont on old platforms.
    static void performPosing();

    /// The small system font size for small and mini controls, the regular one for all others.
    static float systemFontSizeForControlSize(NSControlSize controlSize);
    /// The system font of that size.
    static NSFont* menuBarFontOfSize(float size);

  protected:
    PantherFont() = default;
    ~PantherFont() = default;
};

}  // namespace pelvor
