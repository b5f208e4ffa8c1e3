// SPDX-License-Identifier: Apache-2.0
// The glyphs of the lines that somebody looked at last.
#pragma once

#include "Text/Layout/LineGlyphs.h"

namespace pelvor {

class NSTextContainer;

class GlyphCache {
  public:
    /// The glyphs of a line of the block, which begins at `unit` and is laid out. Valid until other lines are
    /// asked about or forgotten.
    LineGlyphs& glyphs(LayoutTools& tools, const Block& block, NSUInteger unit, std::size_t line,
                       NSTextContainer* container);
    /// The block has other text or lines, or ends.
    void forget(const Block& block);
    void forgetAll();

  private:
    struct Kept {
        const Block* block = nullptr;
        std::size_t line = 0;
        std::unique_ptr<LineGlyphs> glyphs;
    };
    static constexpr std::size_t kMost = 128;

    std::vector<Kept> _kept;
    std::size_t _oldest = 0;
    MeasuredText _text;  // of the block whose glyphs were made last
    const Block* _textBlock = nullptr;
};

}  // namespace pelvor
