// SPDX-License-Identifier: Apache-2.0
// Lines that are laid out.
#include <algorithm>

#include "Text/Layout/LayoutState.h"

namespace pelvor {

NSRange LayoutState::laidLineRange(NSUInteger unit) {
    if (!_isScanned || unit > _blocks.units() || (!isFree() && unit >= firstUnlaid())) return {NSNotFound, 0};
    LinePlace place;
    place.block = _blocks.placeOfUnit(unit);
    const Block& block = _blocks.at(place.block);
    if (!block.isLaid) return {NSNotFound, 0};
    place.line = block.lineAt(unit - place.block.unit);
    return rangeOf(place);
}

LinePlace LayoutState::lineOf(NSUInteger unit) {
    LinePlace place;
    place.block = _blocks.placeOfUnit(unit);
    const Block& block = _blocks.at(place.block);
    const std::vector<Line>& lines = block.lines;
    place.line = block.lineAt(unit - place.block.unit);
    place.top = _blocks.topOf(place.block);
    for (std::size_t i = 0; i < place.line; ++i) place.top += lines[i].advance();
    // A further fragment stands where the first one does.
    for (std::size_t i = place.line; i > 0 && lines[i].followsInLine; --i)
        if (!lines[i - 1].followsInLine) place.top -= lines[i - 1].advance();
    return place;
}

LinePlace LayoutState::lineAtHeight(LongExtent height) {
    LinePlace place;
    place.block = _blocks.placeOfHeight(height, place.top);
    const std::vector<Line>& lines = _blocks.at(place.block).lines;
    while (place.line + 1 < lines.size() && place.top + lines[place.line].advance() <= height)
        place.top += lines[place.line++].advance();
    while (place.line > 0 && lines[place.line].followsInLine) --place.line;
    return place;
}

bool LayoutState::next(LinePlace& place) {
    const std::vector<Line>& lines = _blocks.at(place.block).lines;
    const bool staysInLine = place.line + 1 < lines.size() && lines[place.line + 1].followsInLine;
    if (!staysInLine)
        for (std::size_t i = place.line + 1; i-- > 0;)
            if (!lines[i].followsInLine) {
                place.top += lines[i].advance();
                break;
            }
    if (++place.line < lines.size()) return true;
    if (_blocks.isLast(place.block)) {
        --place.line;
        return false;
    }
    place.block = _blocks.next(place.block);
    place.line = 0;
    return _blocks.at(place.block).isLaid;
}

NSRange LayoutState::rangeOf(const LinePlace& place) {
    const Block& block = _blocks.at(place.block);
    const std::uint32_t start = block.lines[place.line].start;
    return {place.block.unit + start, block.endOfLine(place.line) - start};
}

NSRect LayoutState::rectOf(const LinePlace& place) {
    const Line& line = at(place);
    LongExtent origin = 0;
    if (isFree()) {
        const Block& first = _blocks.at(_blocks.first());
        origin = first.lines.empty() ? 0 : first.lines.front().spacingAbove;
    } else if (const std::size_t container = containerOf(place.block.unit + line.start);
               container < _fillings.size()) {
        origin = _fillings[container].top;
    }
    // The space above a paragraph is left out at the top of a container.
    const LongExtent top = place.top + line.skip - origin;
    const LongExtent cut = top < 0 ? -top : 0;
    return {{pointsOf(line.left), pointsOf(top + cut)}, {pointsOf(line.room), pointsOf(line.height - cut)}};
}

float LayoutState::baselineOf(const LinePlace& place) {
    const Line& line = at(place);
    return pointsOf(line.baseline - line.height) + rectOf(place).size.height;
}

NSRect LayoutState::usedRectOf(const LinePlace& place) {
    const Line& line = at(place);
    const NSRect rect = rectOf(place);
    const Extent padding = roomOf(containerAround(rangeOf(place).location)).padding;
    const float above = rect.size.height - pointsOf(line.height - line.spacingAbove);
    return {{pointsOf(line.textLeft - padding), rect.origin.y + above},
            {pointsOf(line.textWidth + line.extra + 2 * padding),
             pointsOf(line.height - line.spacingAbove - line.spacingBelow)}};
}

LineGlyphs& LayoutState::glyphsOf(const LinePlace& place) {
    return _glyphs.glyphs(tools, _blocks.at(place.block), place.block.unit, place.line,
                          containerAround(rangeOf(place).location));
}

}  // namespace pelvor
