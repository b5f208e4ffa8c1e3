// SPDX-License-Identifier: Apache-2.0
// FontChoice: finds the fonts that rich text files name, and names fonts for them.
#pragma once

#include <map>
#include <tuple>

#include "Writer/PlugIns/RichText/RichTextFormats.h"

namespace pelvor {

class NSFont;

/// A font and what it stands for.
struct ChosenFont {
    NSFont* font = nullptr;     ///< never null in a result
    bool isSubstitute = false;  ///< the machine has no font of the name
};

/// What a font is asked for by.
struct FontRequest {
    FontEntry entry;
    bool isBold = false, isItalic = false;
    std::int32_t halfPoints = 24;
};

/// Remembers what it has found. Main thread.
class FontChoice {
  public:
    /// The font of that name, else that of the alternative name, else one of the kind.
    ChosenFont fontFor(const FontRequest& request);

    /// The request by which the font is found again. `wantedName`, unless it is empty, is the missing name
    /// that the font stands in for. The size is rounded to half points.
    FontRequest requestFor(NSFont* font, const std::u16string& wantedName);

  private:
    struct Family {
        NSFont* faces[4] =
            {};  // upright, bold, italic, bold italic, at any size; null where not asked for yet
        bool isSubstitute = false, isKnown = false;
    };
    Family& familyOf(const FontEntry& entry);

    std::map<std::tuple<std::u16string, std::u16string, int>, Family> _families;
};

}  // namespace pelvor
