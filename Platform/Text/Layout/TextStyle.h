// SPDX-License-Identifier: Apache-2.0
// What a dictionary of attributes means to the layout.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <unordered_map>

#include "Text/Fonts/EastAsian.h"
#include "Text/Layout/BlockList.h"
#include "Text/NSFont.h"
#include "Text/NSParagraphStyle.h"
#include "Text/NSTextAttachment.h"

namespace pelvor {

class NSLayoutManager;

struct TextStyle {
    Retained<NSDictionary> attributes;
    Retained<NSFont> font;
    Retained<NSParagraphStyle> paragraph;
    Retained<NSTextAttachment> attachment;
    std::string language;                      // empty: unknown
    EastAsian eastAsian = EastAsian::unknown;  // the language, where letters take shapes by it
    Extent kern = 0;
    Extent shift = 0;  // of the baseline, upwards
    int ligatures = 1;
    double expansion = 1;

    /// The width of a cluster that the font sets so wide.
    Extent spaced(Extent width) const {
        if (expansion != 1) width = extentOf(width * expansion / kExtentsPerPoint);
        return width ? width + kern : 0;
    }
};

struct FontExtents {
    Extent ascent = 0, descent = 0, leading = 0;
    Extent hyphen = 0;  // the width of one
};

/// Reads dictionaries of attributes, and remembers those that it read last. Attributed strings make equal
/// attributes one object, so the object's address finds them.
class TextStyles {
  public:
    /// Null stands for no attributes.
    std::shared_ptr<const TextStyle> styleFor(NSDictionary* attributes, NSLayoutManager* layoutManager);
    const FontExtents& extentsOf(NSFont* font);

  private:
    std::array<std::shared_ptr<const TextStyle>, 128> _styles;
    std::unordered_map<Retained<NSFont>, FontExtents> _fonts;
    Unretained<NSFont> _lastFont = nullptr;
    const FontExtents* _lastExtents = nullptr;
};

}  // namespace pelvor
