// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/LineGlyphs.h"

#include <algorithm>

#include "Text/NSLayoutManager.h"

namespace pelvor {
namespace {

constexpr unichar kHyphen[] = u"-";
constexpr unichar kEllipsis[] = u"\u2026";

}  // namespace

LineGlyphs::LineGlyphs(LayoutTools& tools, const MeasuredText& text, const Line& line, std::uint32_t end)
    : _start(line.start),
      _end(end),
      _textEnd(text.shownEnd(line.start, end)),
      _isRightToLeft(line.isRightToLeft) {
    _units = text.units.substr(_start, _end - _start);
    if (line.isCut && text.paragraph()->lineBreakMode() != NSLineBreakByClipping) {
        const Hidden hidden = hiddenPart(tools, text, line);
        addRuns(text, _start, hidden.start, false);
        addSign(text, std::min(hidden.start, _end - 1), kEllipsis);
        addRuns(text, hidden.end, _textEnd, false);
    } else {
        addRuns(text, _start, _textEnd, false);
        if (line.isHyphenated) addSign(text, _textEnd - 1, kHyphen);
    }
    const std::size_t shown = _runs.size();
    if (line.extra) spread(line.extra, shown);
    addRuns(text, _textEnd, _end, true);
    orderRuns(0, shown);
    orderRuns(shown, _runs.size());
    const Extent width = placeRuns(0, shown, 0);
    // Blanks at the end hang over: behind the text, in the direction of the paragraph.
    Extent trailing = 0;
    for (std::size_t i = shown; i < _runs.size(); ++i) trailing += _runs[i].width;
    placeRuns(shown, _runs.size(), _isRightToLeft ? -trailing : width);
    findPieces();
}

// What makes way for an ellipsis.
LineGlyphs::Hidden LineGlyphs::hiddenPart(LayoutTools& tools, const MeasuredText& text,
                                          const Line& line) const {
    const auto& advances = text.advances;
    Extent ellipsis = 0;
    ShapingRun sign;
    sign.text = kEllipsis;
    sign.textLength = sign.length = 1;
    sign.font = text.runs[text.runAt(_start)].font;
    measureAdvances(sign, {&ellipsis, 1});
    const Extent room = std::max(0, line.textWidth - ellipsis);
    const NSLineBreakMode mode = text.paragraph()->lineBreakMode();
    const Extent front = mode == NSLineBreakByTruncatingTail     ? room
                         : mode == NSLineBreakByTruncatingMiddle ? room / 2
                                                                 : 0;
    Hidden hidden{_start, _textEnd};
    for (Extent width = 0; hidden.start < _textEnd && (width += advances[hidden.start]) <= front;)
        ++hidden.start;
    while (hidden.start > _start && hidden.start < _textEnd && !advances[hidden.start]) --hidden.start;
    for (Extent width = 0; hidden.end > hidden.start && (width += advances[hidden.end - 1]) <= room - front;)
        --hidden.end;
    while (hidden.end < _textEnd && !advances[hidden.end]) ++hidden.end;
    hidden.start = tools.boundaries.characterStart(text.text(), hidden.start);
    hidden.end = tools.boundaries.characterEnd(text.text(), hidden.end ? hidden.end - 1 : 0);
    hidden.end = std::clamp(hidden.end, hidden.start, _textEnd);
    return hidden;
}

// MARK: Runs

void LineGlyphs::addRuns(const MeasuredText& text, std::uint32_t start, std::uint32_t end, bool isTrailing) {
    if (start >= end) return;
    for (std::size_t i = text.runAt(start); i < text.runs.size() && text.runs[i].start < end; ++i) {
        const TextRun& source = text.runs[i];
        LineRun run;
        run.kind = source.kind;
        run.level = isTrailing || source.kind == TextRun::Kind::lineEnd ? _isRightToLeft : source.level;
        run.start = std::max(start, source.start);
        run.end = std::min(end, source.end);
        run.style = source.style;
        run.font = source.font;
        run.frame = source.frame;
        run.firstGlyph = _glyphs.size();
        if (source.kind == TextRun::Kind::text)
            shapeText(text, source, run);
        else
            run.width = text.advances[run.start];
        if (source.style) text.keepStyle(source.style, _styles);
        _runs.push_back(run);
    }
}

void LineGlyphs::shapeText(const MeasuredText& text, const TextRun& source, LineRun& run) {
    static thread_local std::vector<PlacedGlyph> glyphs;
    ShapingRun shaping = text.shapingOf(source);
    shaping.start = run.start;
    shaping.length = run.end - run.start;
    shaping.isRightToLeft = run.level & 1;
    shape(shaping, glyphs);
    // Expansion and kern change the width of a cluster by its last glyph.
    for (std::size_t first = 0, last; first < glyphs.size(); first = last) {
        Extent width = 0;
        for (last = first; last < glyphs.size() && glyphs[last].unit == glyphs[first].unit; ++last)
            width += glyphs[last].advance;
        const Extent wanted = source.style->spaced(width);
        glyphs[last - 1].advance += wanted - width;
        run.width += wanted;
    }
    for (PlacedGlyph& glyph : glyphs) glyph.unit -= _start;
    _glyphs.insert(_glyphs.end(), glyphs.begin(), glyphs.end());
    run.glyphCount = glyphs.size();
}

// A hyphen or an ellipsis in the font of a unit; no unit belongs to it.
void LineGlyphs::addSign(const MeasuredText& text, std::uint32_t unit, const unichar* sign) {
    const TextRun& source = text.runs[text.runAt(unit)];
    LineRun run;
    run.level = source.level;
    run.start = run.end = std::min(unit + 1, _textEnd);
    run.isSign = true;
    run.style = source.style;
    run.font = source.font;
    run.firstGlyph = _glyphs.size();
    ShapingRun shaping;
    shaping.text = sign;
    shaping.textLength = shaping.length = 1;
    shaping.font = source.font;
    std::vector<PlacedGlyph> glyphs;
    shape(shaping, glyphs);
    for (const PlacedGlyph& glyph : glyphs) run.width += glyph.advance;
    _glyphs.insert(_glyphs.end(), glyphs.begin(), glyphs.end());
    run.glyphCount = glyphs.size();
    text.keepStyle(source.style, _styles);
    _runs.push_back(run);
}

// MARK: Justification

// Widens the blanks behind the last tab; where there are none, the room between ideographs.
void LineGlyphs::spread(Extent extra, std::size_t runCount) {
    std::size_t first = 0;
    for (std::size_t i = 0; i < runCount; ++i)
        if (_runs[i].kind == TextRun::Kind::tab) first = i + 1;
    const auto unitOf = [&](const PlacedGlyph& glyph) { return _units[glyph.unit]; };
    std::vector<std::pair<LineRun*, PlacedGlyph*>> places;
    for (const bool takesBlanks : {true, false}) {
        for (std::size_t i = first; i < runCount; ++i) {
            LineRun& run = _runs[i];
            if (run.isSign) continue;
            for (std::size_t g = run.firstGlyph; g < run.firstGlyph + run.glyphCount; ++g)
                if (takesBlanks ? isSpreadBlank(unitOf(_glyphs[g]))
                                : isIdeograph(unitOf(_glyphs[g])) && _start + _glyphs[g].unit + 1 < _textEnd)
                    places.emplace_back(&run, &_glyphs[g]);
        }
        if (!places.empty()) break;
    }
    const auto count = static_cast<LongExtent>(places.size());
    for (LongExtent i = 0; i < count; ++i) {
        const auto share = static_cast<Extent>(extra * (i + 1) / count - extra * i / count);
        places[static_cast<std::size_t>(i)].second->advance += share;
        places[static_cast<std::size_t>(i)].first->width += share;
    }
}

// MARK: Order and places

// Reverses, from the highest level down to the lowest odd one, each stretch of runs of that level or higher.
void LineGlyphs::orderRuns(std::size_t first, std::size_t last) {
    std::uint8_t highest = 0, lowest = 255;
    for (std::size_t i = first; i < last; ++i) {
        highest = std::max(highest, _runs[i].level);
        if (_runs[i].level & 1) lowest = std::min(lowest, _runs[i].level);
    }
    for (int level = highest; level >= lowest; --level)
        for (std::size_t from = first, to; from < last; from = to + 1) {
            for (to = from; to < last && _runs[to].level >= level;) ++to;
            std::reverse(_runs.begin() + static_cast<std::ptrdiff_t>(from),
                         _runs.begin() + static_cast<std::ptrdiff_t>(to));
        }
}

Extent LineGlyphs::placeRuns(std::size_t first, std::size_t last, Extent left) {
    for (std::size_t i = first; i < last; ++i) {
        LineRun& run = _runs[i];
        run.left = left;
        left += run.width;
    }
    return left;
}

// MARK: Pieces

void LineGlyphs::addClusters(const LineRun& run) {
    const std::size_t firstPiece = _pieces.size();
    Extent left = run.left;
    for (const PlacedGlyph& glyph : glyphsOf(run)) {
        const std::uint32_t unit = _start + glyph.unit;
        if (_pieces.size() == firstPiece || _pieces.back().start != unit)
            _pieces.push_back({unit, unit, left, 0, (run.level & 1) != 0, glyph.glyph});
        _pieces.back().width += glyph.advance;
        left += glyph.advance;
    }
    if (run.level & 1) std::reverse(_pieces.begin() + static_cast<std::ptrdiff_t>(firstPiece), _pieces.end());
    for (std::size_t i = firstPiece; i < _pieces.size(); ++i)
        _pieces[i].end = i + 1 < _pieces.size() ? _pieces[i + 1].start : run.end;
}

void LineGlyphs::findPieces() {
    std::vector<const LineRun*> runs;
    for (const LineRun& run : _runs)
        if (run.start < run.end) runs.push_back(&run);
    std::sort(runs.begin(), runs.end(), [](auto a, auto b) { return a->start < b->start; });
    std::uint32_t covered = _start;
    const auto coverTo = [&](std::uint32_t unit, Extent left) {  // what an ellipsis hides
        if (covered < unit) _pieces.push_back({covered, unit, left, 0, _isRightToLeft, NSNullGlyph});
        covered = std::max(covered, unit);
    };
    for (const LineRun* run : runs) {
        coverTo(run->start, run->left);
        if (run->kind == TextRun::Kind::text)
            addClusters(*run);
        else
            _pieces.push_back(
                {run->start, run->end, run->left, run->width, (run->level & 1) != 0, NSControlGlyph});
        covered = run->end;
    }
    coverTo(_end, _pieces.empty() ? 0 : _pieces.back().left + _pieces.back().width);
}

const GlyphPiece& LineGlyphs::pieceAt(std::uint32_t unit) const {
    auto after =
        std::upper_bound(_pieces.begin(), _pieces.end(), unit,
                         [](std::uint32_t place, const GlyphPiece& piece) { return place < piece.start; });
    return after == _pieces.begin() ? *after : *(after - 1);
}

const std::vector<LineGlyphs::Caret>& LineGlyphs::carets(Boundaries& boundaries) {
    if (!_carets.empty()) return _carets;
    for (const GlyphPiece& piece : _pieces) {
        const Extent leading = piece.isRightToLeft ? piece.left + piece.width : piece.left;
        std::vector<std::uint32_t> characters;
        for (std::uint32_t unit = piece.start - _start; unit < piece.end - _start;) {
            if (boundaries.characterStart(_units, unit) == unit) characters.push_back(unit);
            unit = std::min<std::uint32_t>(boundaries.characterEnd(_units, unit), piece.end - _start);
        }
        const auto count = static_cast<Extent>(characters.size());
        for (Extent i = 0; i < count; ++i) {
            const Extent part = static_cast<Extent>(static_cast<LongExtent>(piece.width) * i / count);
            _carets.push_back({_start + characters[static_cast<std::size_t>(i)],
                               leading + (piece.isRightToLeft ? -part : part)});
        }
    }
    Extent end = 0;
    if (!_pieces.empty()) {
        const GlyphPiece& last = _pieces.back();
        end = last.isRightToLeft ? last.left : last.left + last.width;
    }
    _carets.push_back({_end, end});
    return _carets;
}

}  // namespace pelvor
