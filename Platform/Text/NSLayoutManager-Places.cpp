// SPDX-License-Identifier: Apache-2.0
// From places to text and back: hit-testing, carets, selections.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "Shared/ArgumentChecks.h"
#include "Text/Layout/LayoutState.h"
#include "Text/NSLayoutManager.h"

namespace pelvor {
namespace {

// A height in the container from the top of the first block.
LongExtent heightFrom(LayoutState& state, std::size_t container, float y) {
    LongExtent origin = 0;
    if (!state.isFree() && container < state.fillings().size()) origin = state.fillings()[container].top;
    return origin + extentOf(static_cast<double>(y));
}

// The line of the container at the height, or the nearest one, among those that are laid out there. False if
// the container has no line.
bool findLine(LayoutState& state, std::size_t container, float y, bool mayLayOut, LinePlace& place) {
    if (container >= state.containers.size()) return false;
    if (mayLayOut) state.ensureHeight(container, extentOf(std::max(static_cast<double>(y), 0.0)));
    if (state.length() == 0 && !state.ensure(0)) return false;
    if (!state.isFree() && container >= state.fillings().size()) return false;
    place = state.lineAtHeight(heightFrom(state, container, y));
    if (state.isFree()) return state.blockOf(place).isLaid;
    // The space between two containers' lines belongs to neither: stay inside this one.
    const ContainerFilling& filling = state.fillings()[container];
    const bool hasLines = !state.blockOf(place).lines.empty();  // not where nobody has laid it out
    const NSUInteger start = hasLines ? state.rangeOf(place).location : place.block.unit;
    if (start < filling.start) place = state.lineOf(filling.start);
    const bool holdsEnd = filling.end == state.length() && container + 1 == state.fillings().size();
    if (start >= filling.end && !holdsEnd)
        place = state.lineOf(filling.end > filling.start ? filling.end - 1 : filling.start);
    return state.blockOf(place).isLaid && !state.blockOf(place).lines.empty();
}

// Among the fragments of a line the one at x.
void findFragment(LayoutState& state, float x, LinePlace& place) {
    for (LinePlace further = place; state.next(further) && state.at(further).followsInLine; place = further)
        if (x < NSMinX(state.rectOf(further))) return;
}

// How far a place is from a piece: 0 inside.
Extent distanceTo(const GlyphPiece& piece, Extent x) {
    return x < piece.left ? piece.left - x : x > piece.left + piece.width ? x - piece.left - piece.width : 0;
}

struct Hit {
    NSUInteger unit = 0;
    float fraction = 0;
};

Hit nearestGlyph(LayoutState& state, const LinePlace& place, float pointX) {
    const Line& line = state.at(place);
    LineGlyphs& glyphs = state.glyphsOf(place);
    const Extent x = extentOf(static_cast<double>(pointX)) - line.textLeft;
    const GlyphPiece* nearest = nullptr;
    for (const GlyphPiece& piece : glyphs.pieces()) {
        // What takes no room is hit only where nothing else is.
        if (nearest && (piece.width == 0 || distanceTo(piece, x) >= distanceTo(*nearest, x)) &&
            !(nearest->width == 0 && piece.width > 0))
            continue;
        nearest = &piece;
    }
    if (!nearest) return {state.rangeOf(place).location, 0};
    float fraction = 0;
    if (nearest->width > 0) {
        fraction = std::clamp(static_cast<float>(x - nearest->left) / static_cast<float>(nearest->width),
                              0.0F, 1.0F);
        if (nearest->isRightToLeft) fraction = 1 - fraction;
    }
    return {place.block.unit + nearest->start, fraction};
}

// The character that covers x, by its unit in the block. Characters part a piece at the carets in it; the
// piece that follows in the text may stand elsewhere.
std::optional<Hit> characterAt(std::span<const GlyphPiece> pieces,
                               const std::vector<LineGlyphs::Caret>& carets, Extent x) {
    const auto hit = [&](NSUInteger unit, Extent from, Extent to) -> std::optional<Hit> {
        if (x < std::min(from, to) || x >= std::max(from, to)) return std::nullopt;
        return Hit{unit, static_cast<float>(x - from) / static_cast<float>(to - from)};
    };
    auto caret = carets.begin();
    NSUInteger unit = caret->unit;
    for (const GlyphPiece& piece : pieces) {
        const Extent right = piece.left + piece.width;
        Extent from = piece.isRightToLeft ? right : piece.left;
        for (; caret != carets.end() && caret->unit < piece.end; ++caret) {
            if (const auto found = hit(unit, from, caret->place)) return found;
            unit = caret->unit;
            from = caret->place;
        }
        if (const auto found = hit(unit, from, piece.isRightToLeft ? piece.left : right)) return found;
    }
    return std::nullopt;
}

}  // namespace

// MARK: Points

NSUInteger NSLayoutManager::glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph(
    NSPoint point, NSTextContainer* container, float* fraction) {
    if (fraction) *fraction = 0;
    LinePlace place;
    if (!findLine(*_state, _state->indexOf(container), point.y, true, place)) return 0;
    findFragment(*_state, point.x, place);
    const Hit hit = nearestGlyph(*_state, place, point.x);
    if (fraction) *fraction = hit.fraction;
    return hit.unit;
}

NSUInteger NSLayoutManager::glyphIndexForPoint_inTextContainer(NSPoint point, NSTextContainer* container) {
    return glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph(point, container, nullptr);
}

NSUInteger NSLayoutManager::characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
    NSPoint point, NSTextContainer* container, float* fraction) {
    if (fraction) *fraction = 0;
    LinePlace place;
    if (!findLine(*_state, _state->indexOf(container), point.y, true, place)) return 0;
    findFragment(*_state, point.x, place);
    const Extent x = extentOf(static_cast<double>(point.x)) - _state->at(place).textLeft;
    const auto& carets = _state->glyphsOf(place).carets(_state->tools.boundaries);
    // The character that the point is in, or the one with the nearest caret.
    if (const auto hit = characterAt(_state->glyphsOf(place).pieces(), carets, x)) {
        if (fraction) *fraction = hit->fraction;
        return place.block.unit + hit->unit;
    }
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < carets.size(); ++i)
        if (std::abs(carets[i].place - x) < std::abs(carets[nearest].place - x)) nearest = i;
    const bool endsText =
        NSMaxRange(_state->rangeOf(place)) == _state->length() && !_state->at(place).endsHard;
    // Behind a line's end nothing can be inserted but what belongs to the next line.
    const bool isBehind = nearest + 1 == carets.size() && carets.size() > 1;
    if (isBehind && !endsText && NSMaxRange(_state->rangeOf(place)) < _state->length()) --nearest;
    return place.block.unit + carets[nearest].unit;
}

NSRange NSLayoutManager::glyphRangeForBoundingRectWithoutAdditionalLayout_inTextContainer(
    NSRect bounds, NSTextContainer* container) {
    const std::size_t index = _state->indexOf(container);
    LinePlace first, last;
    if (_state->length() == 0 || !findLine(*_state, index, NSMinY(bounds), false, first) ||
        !findLine(*_state, index, NSMaxY(bounds), false, last))
        return {};
    for (LinePlace fragment = last; _state->next(fragment) && _state->at(fragment).followsInLine;)
        last = fragment;
    return NSUnionRange(_state->rangeOf(first), _state->rangeOf(last));
}

NSRange NSLayoutManager::glyphRangeForBoundingRect_inTextContainer(NSRect bounds,
                                                                   NSTextContainer* container) {
    const std::size_t index = _state->indexOf(container);
    if (index >= _state->containers.size()) return {};
    if (!_state->isFree()) {
        _state->ensureHeight(index, extentOf(static_cast<double>(NSMaxY(bounds))));
    } else {
        _state->ensureHeight(index, extentOf(static_cast<double>(NSMinY(bounds))));
        // From there down, block by block.
        LongExtent top;
        BlockList& blocks = _state->blocks();
        for (BlockPlace place = blocks.placeOfHeight(extentOf(static_cast<double>(NSMinY(bounds))), top);;
             place = blocks.next(place)) {
            const NSUInteger unit = place.unit;
            _state->ensure(unit);
            place = blocks.placeOfUnit(unit);
            top += blocks.at(place).height;
            if (blocks.isLast(place) || top > extentOf(static_cast<double>(NSMaxY(bounds)))) break;
        }
    }
    return glyphRangeForBoundingRectWithoutAdditionalLayout_inTextContainer(bounds, container);
}

std::vector<LaidLine> NSLayoutManager::linesInRect(NSRect bounds, NSTextContainer* container) {
    std::vector<LaidLine> lines;
    const std::size_t index = _state->indexOf(container);
    const NSRange range = glyphRangeForBoundingRect_inTextContainer(bounds, container);
    _state->eachLine(range, [&](const LinePlace& place, NSRange units) {
        if (_state->containerOf(units.location) == index)
            lines.push_back(
                {units, _state->rectOf(place), _state->usedRectOf(place), _state->at(place).isRightToLeft});
    });
    return lines;
}

// MARK: Carets

namespace {

// Where the caret before the character stands, or behind it; zeros where there is no room for the line.
NSRect caretRect(LayoutState& state, NSUInteger index, bool isBehind) {
    if (!state.ensure(index)) return {};
    const LinePlace place = state.lineOf(index);
    if (state.blockOf(place).lines.empty()) return {};
    const Line& line = state.at(place);
    NSRect rect = state.usedRectOf(place);
    const auto& carets = state.glyphsOf(place).carets(state.tools.boundaries);
    auto caret =
        std::upper_bound(carets.begin(), carets.end(), index - place.block.unit,
                         [](NSUInteger unit, const LineGlyphs::Caret& each) { return unit < each.unit; });
    if (caret != carets.begin() && (!isBehind || caret == carets.end())) --caret;
    rect.origin.x = pointsOf(line.textLeft + caret->place);
    rect.size.width = 0;
    return rect;
}

}  // namespace

NSRect NSLayoutManager::caretRectForCharacterAtIndex(NSUInteger index) {
    if (index > _state->length())
        raiseIndexBeyondBounds(index, _state->length() + 1, "caretRectForCharacterAtIndex:");
    return caretRect(*_state, index, false);
}

NSRect NSLayoutManager::caretRectBehindCharacterAtIndex(NSUInteger index) {
    if (index >= _state->length())
        raiseIndexBeyondBounds(index, _state->length(), "caretRectBehindCharacterAtIndex:");
    return caretRect(*_state, index, true);
}

// MARK: Ranges

namespace {

// From the left edge of a line's text.
struct Span {
    Extent left, right;
};

// The part of a piece between two units of the block, as carets divide the piece.
Span spanOf(const GlyphPiece& piece, std::uint32_t start, std::uint32_t end,
            const std::vector<LineGlyphs::Caret>& carets) {
    Span span{piece.left, piece.left + piece.width};
    const auto cut = [&](std::uint32_t unit, Extent& edge) {
        if (unit <= piece.start || unit >= piece.end) return;
        const auto caret = std::ranges::lower_bound(carets, unit, {}, &LineGlyphs::Caret::unit);
        if (caret != carets.end() && caret->unit == unit) edge = caret->place;
    };
    cut(start, piece.isRightToLeft ? span.right : span.left);
    cut(end, piece.isRightToLeft ? span.left : span.right);
    return span;
}

// From the end of a line's text to the edge behind it.
Span spanBehind(const Line& line) {
    if (line.isRightToLeft) return {line.left - line.textLeft, 0};
    return {line.textWidth + line.extra, line.left + line.room - line.textLeft};
}

// What characters of a line cover, from the left, and what is behind the line if the selection goes on
// there; spans that touch are one.
std::vector<Span> spansOf(LayoutState& state, const LinePlace& place, NSRange range, bool goesOn) {
    LineGlyphs& glyphs = state.glyphsOf(place);
    const auto& carets = glyphs.carets(state.tools.boundaries);
    const std::uint32_t start = range.location - place.block.unit, end = NSMaxRange(range) - place.block.unit;
    std::vector<Span> all, joined;
    for (const GlyphPiece& piece : glyphs.pieces())
        if (piece.end > start && piece.start < end && piece.width)
            all.push_back(spanOf(piece, start, end, carets));
    if (const Span behind = spanBehind(state.at(place)); goesOn && behind.left < behind.right)
        all.push_back(behind);
    std::sort(all.begin(), all.end(), [](Span a, Span b) { return a.left < b.left; });
    for (const Span& span : all)
        if (joined.empty() || span.left > joined.back().right)
            joined.push_back(span);
        else
            joined.back().right = std::max(joined.back().right, span.right);
    return joined;
}

// The area of the glyphs of a line, without the spacing around the line.
NSRect glyphArea(LayoutState& state, const LinePlace& place, NSRange range) {
    const Line& line = state.at(place);
    NSRect area = state.usedRectOf(place);
    area.origin.x = pointsOf(line.textLeft);
    area.size.width = pointsOf(line.textWidth + line.extra);
    if (range == state.rangeOf(place)) return area;
    Extent left = kGreatestExtent, right = -kGreatestExtent;
    for (const GlyphPiece& piece : state.glyphsOf(place).pieces()) {
        if (place.block.unit + piece.end <= range.location ||
            place.block.unit + piece.start >= NSMaxRange(range))
            continue;
        left = std::min(left, piece.left);
        right = std::max(right, piece.left + piece.width);
    }
    area.origin.x = pointsOf(line.textLeft + left);
    area.size.width = pointsOf(right - left);
    return area;
}

// As NSUnionRect, but rectangles without width count too.
NSRect unionOf(const NSRect& a, const NSRect& b) {
    const float left = std::min(NSMinX(a), NSMinX(b)), top = std::min(NSMinY(a), NSMinY(b));
    return {{left, top}, {std::max(NSMaxX(a), NSMaxX(b)) - left, std::max(NSMaxY(a), NSMaxY(b)) - top}};
}

}  // namespace

const NSRect*
NSLayoutManager::rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
    NSRange range, NSRange selection, NSTextContainer* container, NSUInteger* count) {
    requireRange(range, _state->length(),
                 "rectArrayForCharacterRange:withinSelectedCharacterRange:inTextContainer:rectCount:");
    std::vector<NSRect>& rects = _state->selectionRects;
    rects.clear();
    const std::size_t index = _state->indexOf(container);
    _state->eachLine(range, [&](const LinePlace& place, NSRange lineRange) {
        if (_state->containerOf(lineRange.location) != index) return;
        const NSRect rect = _state->rectOf(place);
        const NSRange part = NSIntersectionRange(range, lineRange);
        // Whole lines that are selected beyond their ends are selected from edge to edge.
        if (part == lineRange && selection.location <= lineRange.location &&
            NSMaxRange(selection) > NSMaxRange(lineRange))
            return rects.push_back(rect);
        const Extent textLeft = _state->at(place).textLeft;
        const bool goesOn = NSMaxRange(part) == NSMaxRange(lineRange) &&
                            selection.location < NSMaxRange(part) && NSMaxRange(selection) > NSMaxRange(part);
        for (auto [left, right] : spansOf(*_state, place, part, goesOn))
            rects.push_back(
                {{pointsOf(textLeft + left), rect.origin.y}, {pointsOf(right - left), rect.size.height}});
    });
    if (count) *count = static_cast<NSUInteger>(rects.size());
    return rects.data();
}

NSRect NSLayoutManager::boundingRectForGlyphRange_inTextContainer(NSRange range, NSTextContainer* container) {
    requireRange(range, _state->length(), "boundingRectForGlyphRange:inTextContainer:");
    const std::size_t index = _state->indexOf(container);
    std::optional<NSRect> bounds;
    _state->eachLine(range, [&](const LinePlace& place, NSRange lineRange) {
        if (_state->containerOf(lineRange.location) != index) return;
        const NSRect area = glyphArea(*_state, place, NSIntersectionRange(range, lineRange));
        bounds = bounds ? unionOf(*bounds, area) : area;
    });
    return bounds.value_or(NSRect{});
}

}  // namespace pelvor
