// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/GlyphCache.h"

#include <algorithm>

namespace pelvor {

LineGlyphs& GlyphCache::glyphs(LayoutTools& tools, const Block& block, NSUInteger unit, std::size_t line,
                               NSTextContainer* container) {
    for (Kept& kept : _kept)
        if (kept.block == &block && kept.line == line) return *kept.glyphs;
    if (_textBlock != &block) {
        _text.read(
            tools, {unit, block.units},
            block.isRightToLeft ? MeasuredText::Direction::rightToLeft : MeasuredText::Direction::leftToRight,
            MeasuredText::Purpose::glyphs);
        _textBlock = &block;
    }
    Typesetter(tools, _text, !block.continues, true).measureSpecials(block.lines[line], container);
    if (_kept.size() < kMost) _kept.resize(kMost);
    auto free = std::find_if(_kept.begin(), _kept.end(), [](const Kept& each) { return !each.block; });
    Kept& kept = free != _kept.end() ? *free : _kept[_oldest++ % kMost];
    kept = {&block, line,
            std::make_unique<LineGlyphs>(tools, _text, block.lines[line], block.endOfLine(line))};
    return *kept.glyphs;
}

void GlyphCache::forget(const Block& block) {
    for (Kept& kept : _kept)
        if (kept.block == &block) kept = {};
    if (_textBlock == &block) _textBlock = nullptr;
}

void GlyphCache::forgetAll() {
    _kept.clear();
    _textBlock = nullptr;
}

}  // namespace pelvor
