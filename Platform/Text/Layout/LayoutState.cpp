// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/LayoutState.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Shared/Vectors.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextStorage.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kBlockUnits = 4096;  // of the pieces of a long paragraph
constexpr std::uint32_t kLongBlock = 8192;   // what is cut into pieces
constexpr std::uint32_t kLookAhead = 256;    // beyond a piece, to see what goes into its last line

}  // namespace

// MARK: Text

void LayoutState::setStorage(NSTextStorage* storage) {
    tools.storage = storage;
    forgetEverything();
}

NSUInteger LayoutState::length() const { return tools.storage ? tools.storage->length() : 0; }

void LayoutState::forgetEverything() {
    _isScanned = false;
    forgetGlyphs(nullptr);
    _fillings.clear();
    _toldContainers = 0;
    _frontier = {};
}

BlockList& LayoutState::blocks() {
    if (!_isScanned) {
        _isScanned = true;
        _isUniform = isUniform();
        if (!containers.empty()) _room = roomOf(containers.front());
        _blocks.assign(scan({0, length()}, false));
        _frontier = {};
    }
    return _blocks;
}

namespace {

// How many units at the front neither end paragraphs nor lie between such units.
std::size_t plainUnits(std::u16string_view text) {
    std::size_t i = 0;
    for (; i + 16 <= text.size(); i += 16) {
        const auto holdsEnd = [](Units8 units) {
            return (units - vectorOf(u'\n') <= vectorOf(u'\x03')) | (units == vectorOf(u'\x85')) |
                   (units == vectorOf(u'\u2029'));
        };
        if (bitsOf(holdsEnd(loadUnits(&text[i])), holdsEnd(loadUnits(&text[i + 8])))) break;
    }
    while (i < text.size() && !(text[i] >= 0x0A && text[i] <= 0x0D) && text[i] != 0x85 && text[i] != 0x2029)
        ++i;
    return i;
}

}  // namespace

// The paragraphs of the range as blocks, long ones in pieces. At the end of a text that is empty or ends with
// a paragraph's end there is an empty block.
BlockList::Blocks LayoutState::scan(NSRange range, bool continues) {
    BlockList::Blocks blocks;
    const NSUInteger end = NSMaxRange(range);
    NSUInteger paragraph = range.location;
    bool follows = continues, wasReturn = false;
    const auto add = [&](NSUInteger paragraphEnd) {
        NSUInteger units = paragraphEnd - paragraph;
        do {
            auto block = std::make_unique<Block>();
            block->units = units > kLongBlock ? kBlockUnits : units;
            block->continues = std::exchange(follows, true);
            units -= block->units;
            blocks.push_back(std::move(block));
        } while (units > 0);
        follows = false;
        paragraph = paragraphEnd;
    };
    std::u16string text;
    for (NSUInteger start = range.location; start < end; start += static_cast<NSUInteger>(text.size())) {
        text.resize(std::min<NSUInteger>(32768, end - start));
        tools.storage->string()->getCharacters_range(text.data(),
                                                     {start, static_cast<NSUInteger>(text.size())});
        for (std::size_t i = 0; i < text.size(); ++i) {
            // A return waits for the line feed that may follow.
            if (std::exchange(wasReturn, false) && text[i] != '\n') add(start + static_cast<NSUInteger>(i));
            i += plainUnits(std::u16string_view(text).substr(i));
            if (i == text.size()) break;
            wasReturn = text[i] == '\r';
            if (isParagraphEnd(text[i]) && !wasReturn) add(start + static_cast<NSUInteger>(i) + 1);
        }
    }
    const bool isOpen = range.length ? paragraph < end && !wasReturn : continues;
    if (paragraph < end) add(end);
    if (end == length() && !isOpen) add(end);
    return blocks;
}

void LayoutState::textChanged(NSRange newRange, NSInteger delta) {
    if (!_isScanned) return;
    const NSUInteger oldLength = newRange.length - static_cast<NSUInteger>(delta);
    const NSUInteger oldEnd = newRange.location + oldLength;
    const auto total = static_cast<NSUInteger>(_blocks.sums().units);
    if (oldEnd > total || total + static_cast<NSUInteger>(delta) != length()) return forgetEverything();
    BlockPlace first = _blocks.placeOfUnit(newRange.location);
    // A return and a line feed that meet are one end.
    if (first.unit == newRange.location && !_blocks.isFirst(first) &&
        tools.storage->string()->characterAtIndex(first.unit - 1) == '\r')
        first = _blocks.previous(first);
    BlockPlace last = first;
    std::size_t count = 1;
    while (!_blocks.isLast(last) && last.unit + _blocks.at(last).units <= oldEnd) {
        last = _blocks.next(last);
        ++count;
    }
    if (last.unit + _blocks.at(last).units + static_cast<NSUInteger>(delta) == first.unit &&
        _blocks.at(first).continues) {
        first = _blocks.previous(first);  // the last piece of a paragraph is empty now
        ++count;
    }
    const bool reachesEnd = _blocks.isLast(last);
    const NSUInteger newEnd = last.unit + _blocks.at(last).units + static_cast<NSUInteger>(delta);
    const bool wasContinuation = _blocks.at(first).continues;
    BlockList::Blocks fresh = scan({first.unit, newEnd - first.unit}, wasContinuation);
    if (!reachesEnd && fresh.size() > 1 && fresh.back()->units == 0) fresh.pop_back();
    if (fresh.size() == count) {  // the heights from before are the best estimates
        BlockPlace old = first;
        for (std::size_t i = 0; i < count; ++i, old = i < count ? _blocks.next(old) : old) {
            fresh[i]->height = _blocks.at(old).height;
            fresh[i]->hasHeight = _blocks.at(old).hasHeight;
        }
    }
    retreat(first.unit);
    BlockPlace gone = first;
    for (std::size_t i = 0; i < count; ++i, gone = i < count ? _blocks.next(gone) : gone)
        forgetGlyphs(&_blocks.at(gone));
    _blocks.replace(first, count, std::move(fresh));
    _frontier.block = _blocks.placeOfUnit(_frontier.block.unit);
    if (newEnd < length()) {
        const unichar before = newEnd ? tools.storage->string()->characterAtIndex(newEnd - 1) : u'\n';
        BlockPlace behind = _blocks.placeOfUnit(newEnd);
        if (behind.unit == newEnd && _blocks.at(behind).continues == isParagraphEnd(before))
            _blocks.change(behind, [&](Block& block) {
                block.continues = !isParagraphEnd(before);
                block.isLaid = block.keepsLines = false;
            });
    }
    retreat(_blocks.forgetLines({first.unit, newEnd - first.unit}));
    forgetEmptyEnd(newEnd);
}

void LayoutState::attributesChanged(NSRange range) {
    if (!_isScanned) return;
    if (length() != _blocks.sums().units) return forgetEverything();
    BlockPlace place = _blocks.placeOfUnit(range.location);
    for (;; place = _blocks.next(place)) {
        forgetGlyphs(&_blocks.at(place));
        if (_blocks.isLast(place) || place.unit + _blocks.at(place).units >= NSMaxRange(range)) break;
    }
    const NSUInteger end = place.unit + _blocks.at(place).units;
    retreat(_blocks.forgetLines(range));
    forgetEmptyEnd(end);
}

// The line behind the last line end looks like the text before it.
void LayoutState::forgetEmptyEnd(NSUInteger changedEnd) {
    const BlockPlace last = _blocks.last();
    if (changedEnd != last.unit || _blocks.at(last).units > 0) return;
    forgetGlyphs(&_blocks.at(last));
    _blocks.change(last, [](Block& block) { block.isLaid = block.keepsLines = false; });
}

void LayoutState::placeAgainFrom(NSUInteger unit) {
    if (_isScanned) retreat(_blocks.placeOfUnit(unit).unit);
}

void LayoutState::containersChanged(std::size_t first) {
    if (!_isScanned) return;
    const bool wasUniform = std::exchange(_isUniform, isUniform());
    const LineRoom room = containers.empty() ? LineRoom{} : roomOf(containers.front());
    if (!(wasUniform && _isUniform && room == _room)) {
        forgetGlyphs(nullptr);
        _blocks.forgetAllLines();
        first = 0;
    }
    _room = room;
    if (first < _fillings.size())
        retreat(_fillings[first].start);
    else if (first == 0 || _frontier.isExhausted)
        retreat(0);
    _frontier.isTold = false;
}

void LayoutState::containerAppended() {
    if (!_isScanned) return;
    const bool wasFree = containers.size() == 2 && containers.front()->isEndless() &&
                         containers.front()->isSimpleRectangularTextContainer();
    if (containers.size() == 1 || wasFree) return containersChanged();
    _isUniform = isUniform();
    _frontier.isTold = false;
    if (!_frontier.isExhausted) return;
    if (_isUniform) {
        _frontier.isExhausted = false;
        ++_frontier.container;
        _frontier.y = 0;
    } else {  // the lines that had no container may find another room in this one
        const BlockPlace place = _frontier.block;
        _blocks.change(place, [](Block& block) { block.isLaid = block.keepsLines = false; });
        const std::size_t told = _toldContainers;
        retreat(place.unit);
        _toldContainers = told;
    }
}

// MARK: Containers

bool LayoutState::isFree() const {
    return containers.size() == 1 && containers.front()->isEndless() &&
           containers.front()->isSimpleRectangularTextContainer();
}

LineRoom LayoutState::roomOf(NSTextContainer* container) const {
    return {0, extentOf(static_cast<double>(container->containerSize().width)),
            extentOf(static_cast<double>(container->lineFragmentPadding()))};
}

bool LayoutState::isUniform() const {
    return std::all_of(containers.begin(), containers.end(), [&](const auto& container) {
        return container->isSimpleRectangularTextContainer() &&
               roomOf(container) == roomOf(containers.front());
    });
}

std::size_t LayoutState::indexOf(NSTextContainer* container) const {
    return static_cast<std::size_t>(std::find(containers.begin(), containers.end(), container) -
                                    containers.begin());
}

const std::vector<ContainerFilling>& LayoutState::fillings() {
    if (!isFree()) return _fillings;
    _freeFilling.clear();
    if (const NSUInteger end = firstUnlaid()) _freeFilling.push_back({0, end, 0});
    return _freeFilling;
}

std::size_t LayoutState::containerOf(NSUInteger unit) {
    if (isFree()) return 0;
    auto after = std::upper_bound(
        _fillings.begin(), _fillings.end(), unit,
        [](NSUInteger place, const ContainerFilling& filling) { return place < filling.start; });
    if (after == _fillings.begin()) return _fillings.size();
    return static_cast<std::size_t>(after - _fillings.begin()) - 1;
}

NSUInteger LayoutState::firstUnlaid() {
    if (!_isScanned) return 0;
    if (!isFree()) {
        if (_frontier.isDone) return length();
        const Block& block = _blocks.at(_frontier.block);
        return _frontier.block.unit + (_frontier.line < block.lines.size() && block.isLaid && _frontier.line
                                           ? block.lines[_frontier.line].start
                                           : 0);
    }
    BlockPlace place;
    return _blocks.sums().unlaidBlocks && _blocks.firstUnlaid(place) ? place.unit : length();
}

// MARK: Rooms that depend on the place

class LayoutState::ContainerRooms final : public LineRooms {
  public:
    ContainerRooms(LayoutState& state, std::size_t container, LongExtent y)
        : _state(state), _now{container, y, false, y == 0} {}

    std::span<const LineRoom> rooms(Extent height, Extent& skip) override {
        _rooms.clear();
        NSTextContainer* container = this->container();
        const LineRoom whole = _state.roomOf(container);
        skip = _descent;
        if (_now.isBeyond || container->isSimpleRectangularTextContainer()) {
            _rooms.push_back(whole);
            return _rooms;
        }
        const LongExtent y = _now.y + _descent;
        NSRect rest{{0, pointsOf(y)}, {pointsOf(whole.width), pointsOf(std::max(height, 1))}};
        NSLineMovementDirection movement = NSLineMovesDown;
        while (rest.size.width > 0) {
            NSRect behind{};
            const NSRect found =
                container->lineFragmentRectForProposedRect_sweepDirection_movementDirection_remainingRect(
                    rest, NSLineSweepRight, movement, &behind);
            if (found.size.width <= 0) break;
            if (_rooms.empty())
                skip = std::max<Extent>(
                    skip, extentOf(static_cast<double>(found.origin.y)) - static_cast<Extent>(_now.y));
            _rooms.push_back({extentOf(static_cast<double>(found.origin.x)),
                              extentOf(static_cast<double>(found.size.width)), whole.padding});
            rest = behind;
            movement = NSLineDoesntMove;
        }
        if (_rooms.empty()) {  // below all that is free; `take` moves on
            _rooms.push_back(whole);
            skip = std::max(skip, extentOf(static_cast<double>(container->containerSize().height)));
        }
        return _rooms;
    }

    bool descend() override {
        NSTextContainer* container = this->container();
        if (_now.isBeyond || ++_descents > 1000) return false;
        const LongExtent y = _now.y + _descent;
        LongExtent below = 0;
        for (const NSRect& exclusion : container->exclusions())
            if (const Extent bottom = extentOf(static_cast<double>(NSMaxY(exclusion))); bottom > y)
                below = below ? std::min<LongExtent>(below, bottom) : bottom;
        if (!below) below = y + 4 * kExtentsPerPoint;
        if (below >= extentOf(static_cast<double>(container->containerSize().height))) return false;
        _descent = static_cast<Extent>(below - _now.y);
        return true;
    }

    bool take(const Line& line) override {
        const bool isAtTop = _now.isAtTop;
        const Extent above = isAtTop ? line.spacingAbove : 0;
        const LongExtent bottom = _now.y + line.skip + line.height - line.spacingBelow - above;
        _descent = 0;
        _descents = 0;
        if (!_now.isBeyond && !(isAtTop && line.skip == 0) &&
            bottom > extentOf(static_cast<double>(container()->containerSize().height))) {
            moveOn();
            return false;
        }
        _startsContainer = _now.isFresh;
        _now.isFresh = _now.isAtTop = false;
        _now.y += line.skip + line.height - above;
        if (line.endsContainer && !_now.isBeyond) moveOn();
        return true;
    }

    bool startsContainer() override { return _startsContainer; }
    NSTextContainer* container() override {
        return _state.containers[std::min(_now.container, _state.containers.size() - 1)];
    }

  private:
    struct Place {
        std::size_t container;
        LongExtent y;
        bool isFresh;  // no line is in the container yet, and it is not the one that the lines began in
        bool isAtTop;
        bool isBeyond = false;  // there is no further container
    };

    void moveOn() {
        _now.isBeyond = _now.container + 1 >= _state.containers.size();
        ++_now.container;
        _now.y = 0;
        _now.isFresh = _now.isAtTop = true;
    }

    LayoutState& _state;
    Place _now;
    Extent _descent = 0;
    int _descents = 0;
    bool _startsContainer = false;
    std::vector<LineRoom> _rooms;
};

// MARK: Blocks

// Gives the block another number of units; what it loses begins the next block, which is its paragraph's.
void LayoutState::moveEnd(BlockPlace place, std::uint32_t units) {
    const std::uint32_t before = _blocks.at(place).units;
    if (units == before) return;
    _blocks.change(place, [&](Block& block) { block.units = units; });
    _blocks.change(_blocks.next(place), [&](Block& block) {
        block.units += before - units;
        block.isLaid = block.keepsLines = false;
        forgetGlyphs(&block);
    });
}

// Makes a block and the next one, of the same paragraph, one.
bool LayoutState::absorbNext(BlockPlace place) {
    if (_blocks.isLast(place)) return false;
    BlockPlace behind = _blocks.next(place);
    if (!_blocks.at(behind).continues) return false;
    auto whole = std::make_unique<Block>();
    whole->units = _blocks.at(place).units + _blocks.at(behind).units;
    whole->continues = _blocks.at(place).continues;
    forgetGlyphs(&_blocks.at(place));
    forgetGlyphs(&_blocks.at(behind));
    BlockList::Blocks one;
    one.push_back(std::move(whole));
    _blocks.replace(place, 2, std::move(one));
    return true;
}

void LayoutState::layOut(BlockPlace place, LineRooms& rooms) {
    AutoreleasePool pool;
    for (;;) {
        const Block& block = _blocks.at(place);
        const bool isLastPiece = _blocks.isLast(place) || !_blocks.at(_blocks.next(place)).continues;
        // Where the next block has lines they may stay, if the text ahead tells that a line ends before it.
        NSUInteger ahead = 0;
        if (!isLastPiece)
            if (const Block& next = _blocks.at(_blocks.next(place)); next.isLaid || next.keepsLines)
                ahead = std::min(kLookAhead, next.units);
        auto direction = MeasuredText::Direction::unknown;
        if (block.continues)
            direction = _blocks.at(_blocks.previous(place)).isRightToLeft
                            ? MeasuredText::Direction::rightToLeft
                            : MeasuredText::Direction::leftToRight;
        const std::uint32_t units = block.units;
        _text.read(tools, {place.unit, units + ahead}, direction);
        Typesetter typesetter(tools, _text, !block.continues, isLastPiece);
        const float own = _text.paragraph()->hyphenationFactor();
        typesetter.hyphenationFactor = own > 0 ? own : hyphenationFactor;
        typesetter.usesFontLeading = usesFontLeading;
        std::vector<Line> lines;
        std::uint32_t end = typesetter.setLines(rooms, units, lines);
        if (!isLastPiece && end > units) {  // a line that crosses the end belongs to the next block
            while (!lines.empty() && lines.back().followsInLine) lines.pop_back();
            end = lines.empty() ? 0 : lines.back().start;
            if (!lines.empty()) lines.pop_back();
        }
        if (!isLastPiece && end == 0) {  // a line longer than a block
            const std::uint32_t wanted = 2 * units;
            while (_blocks.at(place).units < wanted && absorbNext(place)) {
            }
            continue;
        }
        if (!isLastPiece) moveEnd(place, end);
        forgetGlyphs(&_blocks.at(place));
        _blocks.change(place, [&](Block& changed) {
            changed.lines = std::move(lines);
            changed.lines.shrink_to_fit();
            changed.isLaid = changed.hasHeight = true;
            changed.keepsLines = false;
            changed.isRightToLeft = _text.isRightToLeft;
            changed.startContainer = kNoContainer;
            changed.height = 0;
            changed.usedLeft = kGreatestExtent;
            changed.usedRight = 0;
            for (const Line& line : changed.lines) {
                changed.height += line.advance();
                changed.usedLeft = std::min(changed.usedLeft, line.textLeft);
                changed.usedRight = std::max(changed.usedRight, line.textLeft + line.textWidth + line.extra);
            }
        });
        return;
    }
}

// MARK: Any order

void LayoutState::layOutFree(BlockPlace place) {
    // The pieces of a long paragraph are laid out from the first one that is not.
    BlockPlace from = place;
    while (_blocks.at(from).continues && !_blocks.at(_blocks.previous(from)).isLaid)
        from = _blocks.previous(from);
    const NSUInteger unit = place.unit;
    EqualRooms rooms(containers.front(), _room);
    for (;; from = _blocks.next(from)) {
        if (_blocks.at(from).keepsLines)
            _blocks.change(from, [](Block& block) { block.isLaid = true; });
        else if (!_blocks.at(from).isLaid)
            layOut(from, rooms);
        // Pieces change their ends: the unit decides where to stop.
        if (_blocks.isLast(from) || from.unit + _blocks.at(from).units > unit) return;
    }
}

bool LayoutState::ensure(NSUInteger unit) {
    if (containers.empty() || !tools.storage) return false;
    blocks();
    if (isFree()) {
        const BlockPlace place = _blocks.placeOfUnit(unit);
        if (!_blocks.at(place).isLaid) layOutFree(place);
        return true;
    }
    while (!_frontier.isDone && !_frontier.isExhausted && firstUnlaid() <= unit) advance();
    return _frontier.isDone || firstUnlaid() > unit;
}

void LayoutState::ensureAll() {
    if (containers.empty() || !tools.storage) return;
    blocks();
    if (!isFree()) return static_cast<void>(ensure(NSNotFound));
    for (BlockPlace place; _blocks.firstUnlaid(place);) layOutFree(place);
}

bool LayoutState::layOutSome(NSUInteger units) {
    if (containers.empty() || !tools.storage) return false;
    blocks();
    const NSUInteger start = firstUnlaid();
    if (!isFree()) {
        ensure(start + std::min(units, length() - start));
        return !_frontier.isDone && !_frontier.isExhausted;
    }
    BlockPlace place;
    for (NSUInteger done = 0; done < units; done += std::max<NSUInteger>(1, _blocks.at(place).units)) {
        if (!_blocks.firstUnlaid(place)) return false;
        layOutFree(place);
    }
    return _blocks.firstUnlaid(place);
}

void LayoutState::ensureHeight(std::size_t container, LongExtent height) {
    if (containers.empty() || !tools.storage) return;
    blocks();
    if (!isFree()) {
        while (
            !_frontier.isDone && !_frontier.isExhausted &&
            (_frontier.container < container || (_frontier.container == container && _frontier.y <= height)))
            advance();
        return;
    }
    // Estimates become facts and move what follows; a few rounds settle the place.
    for (int tries = 0; tries < 8; ++tries) {
        LongExtent top;
        const BlockPlace place = _blocks.placeOfHeight(height, top);
        if (_blocks.at(place).isLaid) return;
        layOutFree(place);
    }
}

// MARK: From the front

void LayoutState::tellDelegate(NSTextContainer* container, bool isEnd) {
    const SEL told = "layoutManager:didCompleteLayoutForTextContainer:atEnd:"_sel;
    if (delegate && delegate->respondsToSelector(told))
        send(delegate, told, tools.layoutManager, container, isEnd);
}

void LayoutState::beginContainer(NSUInteger unit, LongExtent top) {
    if (!_fillings.empty()) _fillings.back().end = unit;
    _fillings.push_back({unit, unit, top});
}

bool LayoutState::nextContainer() {
    if (_frontier.container + 1 >= containers.size()) {
        _frontier.isExhausted = true;
        return false;
    }
    ++_frontier.container;
    _frontier.y = 0;
    return true;
}

// Lays out the block at the frontier, unless its lines are right.
void LayoutState::layOutNext(BlockPlace place) {
    const Block& block = _blocks.at(place);
    const bool isInPlace =
        _isUniform || (block.startContainer == _frontier.container && block.startY == _frontier.y);
    if (isInPlace && block.isLaid) return;
    if (isInPlace && block.keepsLines) return _blocks.change(place, [](Block& kept) { kept.isLaid = true; });
    if (_isUniform) {
        EqualRooms rooms(containers.front(), _room);
        return layOut(place, rooms);
    }
    ContainerRooms rooms(*this, _frontier.container, _frontier.y);
    layOut(place, rooms);
    Block& laid = _blocks.at(place);
    laid.startContainer = static_cast<std::uint32_t>(_frontier.container);
    laid.startY = _frontier.y;
}

// Places one more block, or what of it was left.
void LayoutState::advance() {
    const BlockPlace place = _frontier.block;
    layOutNext(place);
    placeLines(_blocks.at(place));
    if (_frontier.isExhausted) {
        if (std::exchange(_frontier.isTold, true)) return;
        if (_toldContainers <= _frontier.container) {
            _toldContainers = _frontier.container + 1;
            tellDelegate(containers[_frontier.container], false);
        }
        return tellDelegate(nullptr, false);
    }
    if (_blocks.isLast(place)) {
        _frontier.isDone = true;
        _toldContainers = _frontier.container + 1;
        tellDelegate(containers[_frontier.container], true);
    } else {
        _frontier.block = _blocks.next(place);
        _frontier.line = 0;
    }
}

void LayoutState::placeLines(Block& block) {
    LongExtent top = _blocks.topOf(_frontier.block);
    for (std::size_t i = 0; i < _frontier.line; ++i) top += block.lines[i].advance();
    for (; _frontier.line < block.lines.size(); ++_frontier.line) {
        const Line& line = block.lines[_frontier.line];
        const NSUInteger unit = _frontier.block.unit + line.start;
        if (line.followsInLine) continue;
        // Where lines depend on their place, they know where containers begin.
        const bool isFirst = _fillings.size() <= _frontier.container;
        const LongExtent above = isFirst ? line.spacingAbove : 0;
        const LongExtent bottom = _frontier.y + line.skip + line.height - line.spacingBelow - above;
        const bool overflows =
            _isUniform ? !isFirst && bottom > extentOf(static_cast<double>(
                                                  containers[_frontier.container]->containerSize().height))
                       : line.startsContainer && !isFirst;
        if (overflows && !nextContainer()) break;
        if (overflows || isFirst) {
            beginContainer(unit, top + line.spacingAbove);
            _frontier.y = line.skip + line.height - line.spacingAbove;
        } else {
            _frontier.y += line.advance();
        }
        top += line.advance();
        if (line.endsContainer && !_blocks.isLast(_frontier.block) && !nextContainer()) {
            ++_frontier.line;
            break;
        }
    }
    NSUInteger end = _frontier.block.unit + block.units;
    if (_frontier.isExhausted && _frontier.line < block.lines.size())
        end = _frontier.block.unit + block.lines[_frontier.line].start;
    else if (_frontier.isExhausted && !_blocks.isLast(_frontier.block)) {
        _frontier.block = _blocks.next(_frontier.block);
        _frontier.line = 0;
    }
    if (!_fillings.empty()) _fillings.back().end = end;
    while (_toldContainers < _frontier.container) tellDelegate(containers[_toldContainers++], false);
}

void LayoutState::retreat(NSUInteger unit) {
    if (!_isScanned) return;
    if (!_frontier.isDone && !_frontier.isExhausted && _frontier.block.unit < unit) return;
    const BlockPlace place = _blocks.placeOfUnit(std::min(unit, firstUnlaid()));
    while (!_fillings.empty() && _fillings.back().start >= place.unit) _fillings.pop_back();
    const bool wasTold = _frontier.isTold;
    _toldContainers = std::min(_toldContainers, std::max<std::size_t>(_fillings.size(), 1) - 1);
    _frontier = {};
    _frontier.block = place;
    _frontier.isTold = wasTold;
    if (_fillings.empty()) return;
    _fillings.back().end = place.unit;
    _frontier.container = _fillings.size() - 1;
    _frontier.y = _blocks.topOf(place) - _fillings.back().top;
    const std::vector<Line>& before = _blocks.at(_blocks.previous(place)).lines;
    if (!before.empty() && before.back().endsContainer) nextContainer();
}

// MARK: Lines

std::size_t LayoutState::lineIndex(const Block& block, NSUInteger unit) {
    auto after = std::upper_bound(block.lines.begin(), block.lines.end(), unit,
                                  [](NSUInteger start, const Line& line) { return start < line.start; });
    return after == block.lines.begin() ? 0 : static_cast<std::size_t>(after - block.lines.begin()) - 1;
}

NSRange LayoutState::laidLineRange(NSUInteger unit) {
    if (!_isScanned || (!isFree() && unit >= firstUnlaid())) return {NSNotFound, 0};
    LinePlace place;
    place.block = _blocks.placeOfUnit(unit);
    const Block& block = _blocks.at(place.block);
    if (!block.isLaid) return {NSNotFound, 0};
    place.line = lineIndex(block, unit - place.block.unit);
    return rangeOf(place);
}

LinePlace LayoutState::lineOf(NSUInteger unit) {
    LinePlace place;
    place.block = _blocks.placeOfUnit(unit);
    const std::vector<Line>& lines = _blocks.at(place.block).lines;
    place.line = lineIndex(_blocks.at(place.block), unit - place.block.unit);
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
    const std::uint32_t end =
        place.line + 1 < block.lines.size() ? block.lines[place.line + 1].start : block.units;
    return {place.block.unit + start, end - start};
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
    const Extent padding =
        roomOf(containers[std::min(containerOf(rangeOf(place).location), containers.size() - 1)]).padding;
    const float above = rect.size.height - pointsOf(line.height - line.spacingAbove);
    return {{pointsOf(line.textLeft - padding), rect.origin.y + above},
            {pointsOf(line.textWidth + line.extra + 2 * padding),
             pointsOf(line.height - line.spacingAbove - line.spacingBelow)}};
}

// MARK: Glyphs

void LayoutState::forgetGlyphs(const Block* block) {
    for (KeptGlyphs& kept : _glyphs)
        if (!block || kept.block == block) kept = {};
    if (!block || _drawnBlock == block) _drawnBlock = nullptr;
}

LineGlyphs& LayoutState::glyphsOf(const LinePlace& place) {
    const Block& block = _blocks.at(place.block);
    for (KeptGlyphs& kept : _glyphs)
        if (kept.block == &block && kept.line == place.line) return *kept.glyphs;
    if (_drawnBlock != &block) {
        _drawnText.read(
            tools, {place.block.unit, block.units},
            block.isRightToLeft ? MeasuredText::Direction::rightToLeft : MeasuredText::Direction::leftToRight,
            MeasuredText::Purpose::glyphs);
        _drawnBlock = &block;
    }
    const Line& line = block.lines[place.line];
    const NSRange range = rangeOf(place);
    Typesetter typesetter(tools, _drawnText, !block.continues, true);
    typesetter.measureSpecials(
        line, containers.empty()
                  ? nullptr
                  : containers[std::min(containerOf(range.location), containers.size() - 1)].get());
    if (_glyphs.size() < kKeptLines) _glyphs.resize(kKeptLines);
    auto free =
        std::find_if(_glyphs.begin(), _glyphs.end(), [](const KeptGlyphs& each) { return !each.block; });
    KeptGlyphs& kept = free != _glyphs.end() ? *free : _glyphs[_oldest++ % kKeptLines];
    kept = {&block, place.line,
            std::make_unique<LineGlyphs>(tools, _drawnText, line, NSMaxRange(range) - place.block.unit)};
    return *kept.glyphs;
}

}  // namespace pelvor
