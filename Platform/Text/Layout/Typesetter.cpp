// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/Typesetter.h"

#include <algorithm>

#include "Foundation/NSCharacterSet.h"
#include "Runtime/Message.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextTab.h"

namespace pelvor {

namespace {

constexpr double kPlainTabInterval = 36;

SEL tabQuestion() { return "textTabForGlyphLocation:writingDirection:maxLocation:"_sel; }
SEL frameQuestion() {
    return "cellFrameForTextContainer:proposedLineFragment:glyphPosition:characterIndex:"_sel;
}

bool isCutting(NSLineBreakMode mode) { return mode >= NSLineBreakByClipping; }

}  // namespace

// A tab whose width depends on the text behind it.
struct Typesetter::PendingTab {
    bool isOpen = false;
    std::uint32_t unit = 0;
    Extent pen = 0;  // where the tab begins
    Extent stop = 0;
    NSTextTabType type = NSLeftTabStopType;
    id terminators = nullptr;
    Extent text = 0;  // the width of the text behind it that stands before the stop
    // At a decimal tab digits stand before the stop on their side of the point: text at the column's end
    // that runs against the paragraph stands behind the stop.
    Extent against = 0;

    Extent width() const {
        const Extent before = type == NSCenterTabStopType ? text / 2 : type == NSLeftTabStopType ? 0 : text;
        return std::max(0, stop - pen - before);
    }
};

// A room while text fills it.
struct Typesetter::Fill {
    std::uint32_t start;
    Box box;
    bool breaksAnywhere;
    PendingTab tab = {};
    // The best end so far, and how far the pen and the text behind the tab were there.
    std::uint32_t best = start;
    Filling bestFilling = {};
    Extent bestPen = 0, bestTabText = 0;
};

Typesetter::Typesetter(LayoutTools& tools, MeasuredText& text, bool beginsParagraph, bool endsParagraph)
    : _tools(tools),
      _text(text),
      _style(text.paragraph()),
      _beginsParagraph(beginsParagraph),
      _endsParagraph(endsParagraph),
      _asksForTabs(text.hasSpecials && _style->respondsToSelector(tabQuestion())) {}

// MARK: Tabs and attachments

bool Typesetter::findTab(Extent pen, Extent limit, PendingTab& pending) const {
    NSTextTab* tab = nullptr;
    if (_asksForTabs) {
        tab = cast<NSTextTab>(
            send<id>(_style, tabQuestion(), pointsOf(pen), _style->baseWritingDirection(), pointsOf(limit)));
        if (!tab) return false;
    } else {
        for (id each : _style->tabStops())
            if (extentOf(static_cast<double>(cast<NSTextTab>(each)->location())) > pen) {
                tab = cast<NSTextTab>(each);
                break;
            }
    }
    if (tab) {
        pending.stop = std::max(extentOf(static_cast<double>(tab->location())), pen);
        pending.type = tab->tabStopType();
        pending.terminators = pending.type == NSDecimalTabStopType
                                  ? tab->options()->objectForKey(NSTabColumnTerminatorsAttributeName)
                                  : nullptr;
    } else {
        const float interval = _style->defaultTabInterval();
        const Extent step =
            std::max(1, extentOf(interval > 0 ? static_cast<double>(interval) : kPlainTabInterval));
        pending.stop = pen - pen % step + step;
        pending.type = NSLeftTabStopType;
    }
    return pending.stop < limit;
}

// Whether the unit's direction is not that of the paragraph.
bool Typesetter::runsAgainst(std::uint32_t unit) const {
    return ((_text.runs[_text.runAt(unit)].level & 1) != 0) != _text.isRightToLeft;
}

bool Typesetter::endsColumn(const PendingTab& pending, unichar unit) const {
    if (auto set = cast<NSCharacterSet>(pending.terminators)) return set->characterIsMember(unit);
    auto text = cast<NSString>(pending.terminators);
    for (NSUInteger i = 0; text && i < text->length(); ++i)
        if (text->characterAtIndex(i) == unit) return true;
    return false;
}

Extent Typesetter::attachmentWidth(std::uint32_t unit, const LineRoom& room, Extent pen,
                                   NSTextContainer* container) {
    TextRun& run = _text.runs[_text.runAt(unit)];
    NSTextAttachment* attachment = run.style->attachment;
    if (run.kind != TextRun::Kind::attachment) return _text.advances[unit];
    id cell = attachment->attachmentCell();
    run.frame = attachment->bounds();
    if (cell && cell->respondsToSelector(frameQuestion())) {
        const NSRect line{{pointsOf(room.left), 0}, {pointsOf(room.width), 0}};
        run.frame = send<NSRect>(cell, frameQuestion(), container, line, NSPoint{pointsOf(pen), 0},
                                 _text.range.location + unit);
    }
    return std::max(0, extentOf(static_cast<double>(run.frame.size.width)));
}

void Typesetter::measureSpecials(const Line& line, NSTextContainer* container) {
    if (!_text.hasSpecials) return;
    const LineRoom room{line.left, line.room,
                        container ? extentOf(static_cast<double>(container->lineFragmentPadding())) : 0};
    fill(line.start, boxOf(room, line.isFirst, !line.followsInLine), true, room, container);
}

// MARK: What fits into a room

Typesetter::Box Typesetter::boxOf(const LineRoom& room, bool isFirst, bool isFirstFragment) const {
    const double indent = static_cast<double>(isFirst ? _style->firstLineHeadIndent() : _style->headIndent());
    const double tail = static_cast<double>(_style->tailIndent());
    const Extent width = std::max(0, room.width - 2 * room.padding);
    Box box{isFirstFragment ? extentOf(indent) : 0,
            tail > 0 ? std::min(extentOf(tail), width) : width + extentOf(tail)};
    box.end = std::max(box.end, box.start);
    return box;
}

// Hyphenates the word that does not fit, if a division of it does.
bool Typesetter::hyphenate(std::uint32_t from, std::uint32_t overflow, Extent pen, Extent limit,
                           Filling& filling) {
    const auto isLetter = [&](std::uint32_t unit) {
        return (_text.marks[unit] & MeasuredText::kText) &&
               NSCharacterSet::letterCharacterSet()->characterIsMember(_text.units[unit]);
    };
    while (from < overflow && !isLetter(from)) pen += _text.advances[from++];
    std::uint32_t end = from;
    while (end < _text.size() && isLetter(end)) ++end;
    const TextRun& run = _text.runs[_text.runAt(from)];
    const Extent hyphen = _tools.styles.extentsOf(run.font).hyphen;
    bool isFound = false;
    std::uint32_t unit = from;
    for (std::uint32_t point :
         _tools.boundaries.hyphenationPoints(_text.text().substr(from, end - from), run.style->language)) {
        for (; unit < from + point; ++unit) pen += _text.advances[unit];
        if (pen + hyphen > limit) break;
        filling.end = unit;
        filling.width = pen + hyphen;
        filling.isHyphenated = isFound = true;
    }
    return isFound;
}

// Remembers that the line may end before the unit.
void Typesetter::noteBreak(Fill& fill, std::uint32_t unit, Extent pen, Extent textEnd) const {
    const bool isSoftHyphen = _text.units[unit - 1] == kSoftHyphen;
    if (isSoftHyphen) {
        textEnd += _tools.styles.extentsOf(_text.runs[_text.runAt(unit - 1)].font).hyphen;
        if (textEnd > fill.box.end) return;
    }
    fill.best = unit;
    fill.bestFilling.end = unit;
    fill.bestFilling.width = textEnd - fill.box.start;
    fill.bestFilling.isHyphenated = isSoftHyphen;
    fill.bestTabText = fill.tab.text;
    fill.bestPen = pen;
}

// Where to end a line whose text overflows at a unit; `pen` is where that unit begins.
Filling Typesetter::breakAt(const Fill& fill, std::uint32_t overflow, Extent pen) {
    Filling filling = fill.bestFilling;
    filling.isComplete = true;
    const std::uint32_t start = fill.start;
    if (fill.best > start && _style->lineBreakMode() != NSLineBreakByCharWrapping) return filling;
    if (!fill.breaksAnywhere) return {start, 0, false, false, false, false, true};
    std::uint32_t end = overflow;
    // Between characters, and where it can be between pieces that are set as one.
    for (int tries = 0; tries < 32 && end > start; ++tries) {
        end = _tools.boundaries.characterStart(_text.text(), end);
        if (end == overflow || end <= start || _text.advances[end]) break;
        --end;
    }
    if (end <= start) end = _tools.boundaries.characterEnd(_text.text(), start);
    for (std::uint32_t unit = end; unit < overflow; ++unit) pen -= _text.advances[unit];
    for (std::uint32_t unit = overflow; unit < end; ++unit) pen += _text.advances[unit];
    filling = {};
    filling.width = pen - fill.box.start;
    while (end < _text.size() && (_text.marks[end] & MeasuredText::kBlank)) ++end;
    filling.end = end;
    filling.isComplete = true;
    return filling;
}

// Ends a line whose text overflows, which may divide a word.
Filling Typesetter::overflowAt(Fill& fill, std::uint32_t unit, Extent pen) {
    // Everything behind the best end goes to the next line, and with it what it moved.
    const bool hadTab = fill.tab.isOpen;
    settleTab(fill, hadTab && fill.best > fill.tab.unit ? fill.bestTabText : fill.tab.text);
    const auto width = static_cast<float>(fill.box.end - fill.box.start);
    if (hyphenationFactor > 0 && !hadTab &&
        static_cast<float>(fill.bestFilling.width) < hyphenationFactor * width) {
        Filling filling;
        const Extent wordPen = fill.best > fill.start ? fill.bestPen : fill.box.start;
        if (hyphenate(fill.best, unit, wordPen, fill.box.end, filling)) {
            filling.width -= fill.box.start;
            filling.isComplete = true;
            return filling;
        }
    }
    return breakAt(fill, unit, pen);
}

void Typesetter::settleTab(Fill& fill, Extent text) {
    if (!fill.tab.isOpen) return;
    fill.tab.text = text;
    _text.advances[fill.tab.unit] = fill.tab.width();
    fill.tab.isOpen = false;
}

// Gives the tab at the unit its width; false if no stop is left in the line.
bool Typesetter::takeTab(Fill& fill, std::uint32_t unit, Extent pen) {
    settleTab(fill, fill.tab.text);
    PendingTab found;
    found.unit = unit;
    found.pen = pen;
    const bool isFound = findTab(pen, fill.box.end, found);
    if (isFound) {
        found.isOpen = found.type != NSLeftTabStopType;
        fill.tab = found;
    }
    _text.advances[unit] = isFound ? found.width() : 0;
    return isFound;
}

// Where the pen is behind a unit, which an open tab may move.
Extent Typesetter::advanced(Fill& fill, std::uint32_t unit, Extent pen) {
    const Extent advance = _text.advances[unit];
    PendingTab& tab = fill.tab;
    if (unit == tab.unit) return std::min(pen + advance, kGreatestExtent);
    const bool isAgainst = tab.type == NSDecimalTabStopType && runsAgainst(unit);
    const bool isEnd = tab.terminators && endsColumn(tab, _text.units[unit]);
    const Extent behind = std::min(tab.text + tab.against + advance, kGreatestExtent);
    if (isEnd && isAgainst) {  // what follows the point in its run stands before the stop
        for (std::uint32_t next = unit; next < _text.size() && runsAgainst(next); ++next)
            tab.text = std::min(tab.text + _text.advances[next], kGreatestExtent);
    } else if (isAgainst) {
        tab.against = behind - tab.text;
    } else if (!isEnd) {
        tab.text = behind;
        tab.against = 0;
    }
    if (isEnd) settleTab(fill, tab.text);
    return std::min(tab.pen + tab.width() + behind, kGreatestExtent);
}

// What fits up to a line end or the end of the text.
Filling Typesetter::fillingUpTo(Fill& fill, std::uint32_t end, Extent textEnd) {
    settleTab(fill, fill.tab.text);
    Filling filling;
    filling.end = end;
    filling.isCut = isCutting(_style->lineBreakMode()) && textEnd > fill.box.end;
    filling.width = (filling.isCut ? fill.box.end : textEnd) - fill.box.start;
    return filling;
}

Filling Typesetter::fill(std::uint32_t start, Box box, bool breaksAnywhere, const LineRoom& room,
                         NSTextContainer* container) {
    const bool breaks = !isCutting(_style->lineBreakMode());
    const std::uint32_t size = _text.size();
    Fill fill{start, box, breaksAnywhere};
    Extent pen = box.start, textEnd = box.start;
    for (std::uint32_t unit = start; unit < size; ++unit) {
        const std::uint8_t mark = _text.marks[unit];
        if ((mark & MeasuredText::kMayBreak) && unit > start && breaks) noteBreak(fill, unit, pen, textEnd);
        if (mark & MeasuredText::kSpecial) {
            const unichar special = _text.units[unit];
            if (isLineEnd(special)) {
                const bool isPair = special == '\r' && unit + 1 < size && _text.units[unit + 1] == '\n';
                Filling filling = fillingUpTo(fill, unit + (isPair ? 2 : 1), textEnd);
                filling.isComplete = filling.endsHard = true;
                filling.endsContainer = special == 0x0C;
                return filling;
            }
            if (special == '\t' && !takeTab(fill, unit, pen) && unit > start && breaks) {
                fill.best = unit;
                fill.bestFilling = {};
                fill.bestFilling.end = unit;
                fill.bestFilling.width = textEnd - box.start;
                return breakAt(fill, unit, pen);
            }
            if (special == NSAttachmentCharacter)
                _text.advances[unit] = attachmentWidth(unit, room, pen, container);
        }
        const Extent before = pen;
        pen = fill.tab.isOpen ? advanced(fill, unit, pen)
                              : std::min(pen + _text.advances[unit], kGreatestExtent);
        if (mark & MeasuredText::kBlank) continue;
        // So far nothing stands behind an open tab.
        const bool isOpenTab = fill.tab.isOpen && unit == fill.tab.unit;
        if (pen > box.end && breaks && !isOpenTab) return overflowAt(fill, unit, before);
        textEnd = pen;
    }
    Filling filling = fillingUpTo(fill, size, textEnd);
    filling.endsHard = filling.isComplete = _endsParagraph;
    return filling;
}

// MARK: Lines

void Typesetter::measureHeight(std::uint32_t start, std::uint32_t end, bool isFirst, bool isLast) {
    Extent ascent = 0, descent = 0, leading = 0;
    while (_run > 0 && _text.runs[_run].start > start) --_run;
    while (_run + 1 < _text.runs.size() && _text.runs[_run].end <= start && start < _text.size()) ++_run;
    for (std::size_t i = _run; i < _text.runs.size(); ++i) {
        const TextRun& run = _text.runs[i];
        if (run.start >= end && i > _run) break;
        const Extent shift = run.style->shift;
        if (run.kind == TextRun::Kind::attachment) {
            const NSRect& frame = run.frame;
            ascent = std::max(ascent, extentOf(static_cast<double>(NSMaxY(frame))) + shift);
            descent = std::max(descent, extentOf(-static_cast<double>(NSMinY(frame))) - shift);
        } else {
            const FontExtents& extents = _tools.styles.extentsOf(run.font);
            ascent = std::max(ascent, extents.ascent + std::max(shift, 0));
            descent = std::max(descent, extents.descent - std::min(shift, 0));
            if (usesFontLeading) leading = std::max(leading, extents.leading);
        }
    }
    const auto limit = [](float points) { return extentOf(static_cast<double>(points)); };
    Extent height = ascent + descent + leading;
    if (const float multiple = _style->lineHeightMultiple(); multiple > 0)
        height = extentOf(static_cast<double>(multiple) * height / kExtentsPerPoint);
    height = std::max(height, limit(_style->minimumLineHeight()));
    if (_style->maximumLineHeight() > 0) height = std::min(height, limit(_style->maximumLineHeight()));
    _height = {};
    _height.spacingAbove = isFirst ? std::max(0, limit(_style->paragraphSpacingBefore())) : 0;
    _height.spacingBelow = std::max(0, limit(isLast ? _style->paragraphSpacing() : _style->lineSpacing()));
    // What a line is higher or lower than its text, it is above the text.
    _height.baseline = _height.spacingAbove + height - descent - leading;
    _height.height = _height.spacingAbove + height + _height.spacingBelow;
}

void Typesetter::align(Line& line, const Filling& filling, Box box, const LineRoom& room) const {
    const bool isRightToLeft = _text.isRightToLeft;
    const Extent from = isRightToLeft ? room.left + room.width - room.padding - box.end
                                      : room.left + room.padding + box.start;
    const Extent free = box.end - box.start - filling.width;
    NSTextAlignment alignment = _style->alignment();
    const NSTextAlignment natural = isRightToLeft ? NSRightTextAlignment : NSLeftTextAlignment;
    line.textWidth = filling.width;
    if (alignment == NSJustifiedTextAlignment && !filling.endsHard && !filling.isCut && free > 0 &&
        _text.canSpread(line.start, filling.end)) {
        line.extra = free;
        line.textLeft = from;
        return;
    }
    if (alignment == NSNaturalTextAlignment || alignment == NSJustifiedTextAlignment) alignment = natural;
    if (free < 0) alignment = natural;
    line.textLeft = alignment == NSRightTextAlignment    ? from + free
                    : alignment == NSCenterTextAlignment ? from + free / 2
                                                         : from;
}

// Fills the rooms of one line; false if nothing fits.
bool Typesetter::setFragments(std::span<const LineRoom> rooms, std::uint32_t start, bool forced,
                              NSTextContainer* container) {
    _fragments.clear();
    const bool isFirst = _beginsParagraph && start == 0;
    for (const LineRoom& room : rooms) {
        const Box box = boxOf(room, isFirst, _fragments.empty());
        Fragment fragment;
        fragment.filling = fill(start, box, forced || rooms.size() == 1, room, container);
        if (fragment.filling.end == start && start < _text.size()) continue;
        Line& line = fragment.line;
        line.start = start;
        line.left = room.left;
        line.room = room.width;
        line.isFirst = isFirst;
        line.followsInLine = !_fragments.empty();
        line.endsHard = fragment.filling.endsHard;
        line.endsContainer = fragment.filling.endsContainer;
        line.isHyphenated = fragment.filling.isHyphenated;
        line.isCut = fragment.filling.isCut;
        line.isRightToLeft = _text.isRightToLeft;
        align(line, fragment.filling, box, room);
        start = fragment.filling.end;
        _fragments.push_back(fragment);
        if (fragment.filling.endsHard || !fragment.filling.isComplete || start >= _text.size()) break;
    }
    return !_fragments.empty();
}

// Sets the line at `start`, which moves behind it. Returns false if the line may go on behind the text.
bool Typesetter::setLine(LineRooms& source, std::uint32_t& start, std::vector<Line>& lines) {
    const bool isFirst = _beginsParagraph && start == 0;
    Extent skip = 0, guess = lines.empty() ? 0 : lines.back().height;
    for (int tries = 0;; ++tries) {
        const auto rooms = source.rooms(guess, skip);
        if (!setFragments(rooms, start, tries > 1000, source.container())) {
            if (source.descend()) continue;
            setFragments(rooms, start, true, source.container());
        }
        const Filling& last = _fragments.back().filling;
        const bool isLast =
            last.endsHard && (last.end >= _text.size() || isParagraphEnd(_text.units[last.end - 1]));
        measureHeight(start, last.end, isFirst, isLast);
        // A higher line may meet other exclusions.
        if (_height.height > guess && (rooms.size() > 1 || tries == 0)) {
            guess = _height.height;
            if (tries < 4) {
                Extent other = 0;
                std::vector<LineRoom> before(rooms.begin(), rooms.end());
                const auto now = source.rooms(guess, other);
                if (other != skip || !std::equal(before.begin(), before.end(), now.begin(), now.end()))
                    continue;
            }
        }
        Line taken = _height;
        taken.skip = skip;
        taken.endsContainer = last.endsContainer;
        if (source.take(taken)) break;
    }
    for (Fragment& fragment : _fragments) {
        Line& line = fragment.line;
        line.skip = skip;
        line.height = _height.height;
        line.baseline = _height.baseline;
        line.spacingAbove = _height.spacingAbove;
        line.spacingBelow = _height.spacingBelow;
        line.startsContainer = source.startsContainer() && !line.followsInLine;
        lines.push_back(line);
    }
    start = _fragments.back().filling.end;
    return _fragments.back().filling.isComplete;
}

std::uint32_t Typesetter::setLines(LineRooms& rooms, std::uint32_t limit, std::vector<Line>& lines) {
    std::uint32_t start = 0;
    do {
        const std::size_t before = lines.size();
        const std::uint32_t lineStart = start;
        if (!setLine(rooms, start, lines)) {
            lines.resize(before);
            return lineStart;
        }
    } while (start < limit && start < _text.size());
    return start;
}

}  // namespace pelvor
