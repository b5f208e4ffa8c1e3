// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/LayoutState.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextStorage.h"

namespace pelvor {

// MARK: Text

void LayoutState::setStorage(NSTextStorage* storage) {
    tools.storage = storage;
    forgetEverything();
}

NSUInteger LayoutState::length() const { return tools.storage ? tools.storage->length() : 0; }

void LayoutState::forgetEverything() {
    _isScanned = false;
    _glyphs.forgetAll();
    _fillings.clear();
    _toldContainers = 0;
    _frontier = {};
}

BlockList& LayoutState::blocks() {
    if (tools.storage && tools.storage->hasUntoldChangesFor(tools.layoutManager))
        throw NSException(NSInternalInconsistencyException,
                          "NSLayoutManager: the text was changed and the change is not processed yet; layout "
                          "can be asked for after endEditing, when the layout managers have been told");
    if (!_isScanned) {
        _isScanned = true;
        _isUniform = isUniform();
        if (!containers.empty()) _room = roomOf(containers.front());
        _blocks.assign(length(), [this](NSRange rest) {
            return firstBlocksIn(tools.storage ? tools.storage->string() : u""_ns, rest);
        });
        _frontier = {};
    }
    return _blocks;
}

void LayoutState::textChanged(NSRange newRange, NSInteger delta) {
    if (!_isScanned) return;
    const NSUInteger oldEnd = newRange.location + newRange.length - static_cast<NSUInteger>(delta);
    if (oldEnd > _blocks.units() || _blocks.units() + static_cast<NSUInteger>(delta) != length())
        return forgetEverything();
    if (!_blocks.isAllRead() && oldEnd >= _blocks.readUnits()) {
        // Text was edited whose paragraphs nobody has asked for.
        if (newRange.location <= _blocks.readUnits()) return forgetEverything();
        return _blocks.stretchUnread(delta);
    }
    const BlockSpan edited = blocksAround({newRange.location, oldEnd - newRange.location}, delta);
    const NSRange fresh{edited.first.unit,
                        endOf(edited.last) + static_cast<NSUInteger>(delta) - edited.first.unit};
    retreat(fresh.location);
    readAgain(edited, fresh);
    _frontier.block = _blocks.placeOfUnit(_frontier.block.unit);
    joinBehind(NSMaxRange(fresh));
    retreat(_blocks.forgetLines(fresh));
    forgetEmptyEnd(NSMaxRange(fresh));
}

// The blocks that the range of the text before the edit touches.
LayoutState::BlockSpan LayoutState::blocksAround(NSRange range, NSInteger delta) {
    BlockPlace first = _blocks.placeOfUnit(range.location);
    // A return and a line feed that meet are one end.
    if (first.unit == range.location && !_blocks.isFirst(first) &&
        tools.storage->string()->characterAtIndex(first.unit - 1) == '\r')
        first = _blocks.previous(first);
    BlockSpan span{first, first, 1};
    for (; endOf(span.last) <= NSMaxRange(range) && !_blocks.isLastRead(span.last); ++span.count)
        span.last = _blocks.next(span.last);
    const bool isEmptied = endOf(span.last) + static_cast<NSUInteger>(delta) == first.unit;
    if (isEmptied && _blocks.at(first).continues) {  // a paragraph's last piece, which goes
        span.first = _blocks.previous(first);
        ++span.count;
    }
    return span;
}

// Puts the blocks of the range of the text as it is now in the place of those.
void LayoutState::readAgain(const BlockSpan& span, NSRange range) {
    BlockList::Blocks fresh = blocksIn(tools.storage->string(), range, _blocks.at(span.first).continues,
                                       NSMaxRange(range) == length());
    const bool holdsEnd = _blocks.isAllRead() && _blocks.isLastRead(span.last);
    if (!holdsEnd && fresh.size() > 1 && fresh.back()->units == 0) fresh.pop_back();
    BlockPlace place = span.first;
    for (std::size_t i = 0; i < span.count; ++i) {
        if (i > 0) place = _blocks.next(place);
        const Block& old = _blocks.at(place);
        _glyphs.forget(old);
        if (fresh.size() != span.count) continue;
        fresh[i]->height = old.height;  // the best estimate
        fresh[i]->hasHeight = old.hasHeight;
    }
    _blocks.replace(span.first, span.count, std::move(fresh));
}

// The block that begins there goes on with a paragraph or not, as the text before it says.
void LayoutState::joinBehind(NSUInteger unit) {
    if (unit >= length()) return;
    const bool continues = unit > 0 && !isParagraphEnd(tools.storage->string()->characterAtIndex(unit - 1));
    const BlockPlace behind = _blocks.placeOfUnit(unit);
    if (behind.unit == unit && _blocks.at(behind).continues != continues)
        _blocks.change(behind, [&](Block& block) {
            block.continues = continues;
            block.isLaid = block.keepsLines = false;
        });
}

void LayoutState::attributesChanged(NSRange range) {
    if (!_isScanned) return;
    if (length() != _blocks.units()) return forgetEverything();
    if (!_blocks.isAllRead()) {
        if (range.location >= _blocks.readUnits()) return;
        range.length = std::min(range.length, _blocks.readUnits() - range.location);
    }
    BlockPlace place = _blocks.placeOfUnit(range.location);
    for (;; place = _blocks.next(place)) {
        _glyphs.forget(_blocks.at(place));
        if (_blocks.isLastRead(place) || endOf(place) >= NSMaxRange(range)) break;
    }
    const NSUInteger end = endOf(place);
    retreat(_blocks.forgetLines(range));
    forgetEmptyEnd(end);
}

// The line behind the last line end looks like the text before it.
void LayoutState::forgetEmptyEnd(NSUInteger changedEnd) {
    if (changedEnd != length() || !_blocks.isAllRead()) return;
    const BlockPlace last = _blocks.last();
    if (_blocks.at(last).units > 0) return;
    _glyphs.forget(_blocks.at(last));
    _blocks.change(last, [](Block& block) { block.isLaid = block.keepsLines = false; });
}

void LayoutState::placeAgainFrom(NSUInteger unit) {
    if (_isScanned && (_blocks.isAllRead() || unit < _blocks.readUnits()))
        retreat(_blocks.placeOfUnit(unit).unit);
}

void LayoutState::containerChanged(std::size_t index) {
    const bool staysUniform =
        _isScanned && _isUniform && index < containers.size() && hasRoom(containers[index], _room);
    if (staysUniform)
        placeAgainInContainer(index);
    else
        containersChanged(index);
}

void LayoutState::containersChanged(std::size_t first) {
    if (!_isScanned) return;
    const bool wasUniform = std::exchange(_isUniform, isUniform());
    const LineRoom room = containers.empty() ? LineRoom{} : roomOf(containers.front());
    if (!(wasUniform && _isUniform && room == _room)) {
        _glyphs.forgetAll();
        _blocks.forgetAllLines();
        first = 0;
    }
    _room = room;
    placeAgainInContainer(first);
}

void LayoutState::placeAgainInContainer(std::size_t first) {
    if (first < _fillings.size())
        retreat(_fillings[first].start);
    else if (first == 0 || _frontier.isExhausted)
        retreat(0);
    else if (first <= _frontier.container)  // where the next line was to stand
        retreat(_fillings.back().start);
    _frontier.isTold = false;
}

void LayoutState::containerAppended() {
    if (!_isScanned) return;
    if (containers.size() == 1 || (containers.size() == 2 && isEndless(containers.front())))
        return containersChanged();
    _isUniform = _isUniform && hasRoom(containers.back(), _room);
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

// Containers of one shape stay so without one of them.
void LayoutState::containerRemoved(std::size_t index) {
    if (_isScanned && _isUniform && containers.size() > 1)
        placeAgainInContainer(index);
    else
        containersChanged(index);
}

// MARK: Containers

bool LayoutState::isEndless(NSTextContainer* container) {
    return container->isEndless() && container->isSimpleRectangularTextContainer();
}

bool LayoutState::isFree() const { return containers.size() == 1 && isEndless(containers.front()); }

bool LayoutState::hasRoom(NSTextContainer* container, const LineRoom& room) {
    return container->isSimpleRectangularTextContainer() && roomOf(container) == room;
}

bool LayoutState::isUniform() const {
    if (containers.empty()) return true;
    const LineRoom room = roomOf(containers.front());
    return std::all_of(containers.begin(), containers.end(),
                       [&](const auto& container) { return hasRoom(container, room); });
}

const std::vector<std::size_t>& LayoutState::textViewStarts() {
    if (_textViewStarts.empty()) {
        id before = nullptr;
        for (std::size_t i = 0; i < containers.size(); ++i) {
            id view = containers[i]->textView();
            if (i == 0 || view != before) _textViewStarts.push_back(i);
            before = view;
        }
    }
    return _textViewStarts;
}

std::size_t LayoutState::indexOf(NSTextContainer* container) const {
    // Callers go from one container to the next.
    for (const std::size_t near : {_lastIndex, _lastIndex + 1})
        if (near < containers.size() && containers[near] == container) return _lastIndex = near;
    return _lastIndex = static_cast<std::size_t>(std::find(containers.begin(), containers.end(), container) -
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

NSTextContainer* LayoutState::containerAround(NSUInteger unit) {
    return containers.empty() ? nullptr
                              : containers[std::min(containerOf(unit), containers.size() - 1)].get();
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
    if (_blocks.sums().unlaidBlocks && _blocks.firstUnlaid(place)) return place.unit;
    return _blocks.readUnits();
}

// MARK: Blocks

namespace {

constexpr std::uint32_t kLookAhead = 256;  // beyond a piece, to see what goes into its last line

}  // namespace

// Gives the block another number of units; what it loses begins the next block, which is its paragraph's.
void LayoutState::moveEnd(BlockPlace place, std::uint32_t units) {
    const std::uint32_t before = _blocks.at(place).units;
    if (units == before) return;
    _blocks.change(place, [&](Block& block) { block.units = units; });
    _blocks.change(_blocks.next(place), [&](Block& block) {
        block.units += before - units;
        block.isLaid = block.keepsLines = false;
        _glyphs.forget(block);
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
    _glyphs.forget(_blocks.at(place));
    _glyphs.forget(_blocks.at(behind));
    BlockList::Blocks one;
    one.push_back(std::move(whole));
    _blocks.replace(place, 2, std::move(one));
    return true;
}

void LayoutState::layOut(BlockPlace place, LineRooms& rooms) {
    AutoreleasePool pool;
    std::vector<Line> lines;
    while (!setLines(place, rooms, lines)) {  // a line longer than the block
        const std::uint32_t wanted = 2 * _blocks.at(place).units;
        while (_blocks.at(place).units < wanted && absorbNext(place)) {
        }
        lines.clear();
        rooms.restart();
    }
    _glyphs.forget(_blocks.at(place));
    _blocks.change(place, [&](Block& block) {
        block.lines = std::move(lines);
        block.lines.shrink_to_fit();
        block.isLaid = block.hasHeight = true;
        block.keepsLines = false;
        block.isRightToLeft = _text.isRightToLeft;
        block.startContainer = kNoContainer;
        block.height = 0;
        block.usedLeft = kGreatestExtent;
        block.usedRight = 0;
        for (const Line& line : block.lines) {
            block.height += line.advance();
            block.usedLeft = std::min(block.usedLeft, line.textLeft);
            block.usedRight = std::max(block.usedRight, line.textLeft + line.textWidth + line.extra);
        }
    });
}

// Breaks the block into lines; of a long paragraph, the block then ends where its last line does. False if
// the block has no room for a line.
bool LayoutState::setLines(BlockPlace place, LineRooms& rooms, std::vector<Line>& lines) {
    const Block& block = _blocks.at(place);
    const bool isLastPiece = _blocks.isLast(place) || !_blocks.at(_blocks.next(place)).continues;
    // Where the next block has lines they may stay, if the text ahead tells that a line ends before it.
    NSUInteger ahead = 0;
    if (!isLastPiece)
        if (const Block& next = _blocks.at(_blocks.next(place)); next.isLaid || next.keepsLines)
            ahead = std::min(kLookAhead, next.units);
    auto direction = MeasuredText::Direction::unknown;
    if (block.continues)
        direction = _blocks.at(_blocks.previous(place)).isRightToLeft ? MeasuredText::Direction::rightToLeft
                                                                      : MeasuredText::Direction::leftToRight;
    const std::uint32_t units = block.units;
    _text.read(tools, {place.unit, units + ahead}, direction);
    Typesetter typesetter(tools, _text, !block.continues, isLastPiece);
    const float own = _text.paragraph()->hyphenationFactor();
    typesetter.hyphenationFactor = own > 0 ? own : hyphenationFactor;
    typesetter.usesFontLeading = usesFontLeading;
    std::uint32_t end = typesetter.setLines(rooms, units, lines);
    if (isLastPiece) return true;
    if (end > units) {  // a line that crosses the end belongs to the next block
        while (!lines.empty() && lines.back().followsInLine) lines.pop_back();
        end = lines.empty() ? 0 : lines.back().start;
        if (!lines.empty()) lines.pop_back();
    }
    if (end == 0) return false;
    moveEnd(place, end);
    return true;
}

// MARK: Any order

void LayoutState::layOutFree(BlockPlace place) {
    // The pieces of a long paragraph are laid out from the first one that is not.
    BlockPlace from = place;
    while (_blocks.at(from).continues && !_blocks.at(_blocks.previous(from)).isLaid)
        from = _blocks.previous(from);
    const NSUInteger unit = place.unit;
    const LongExtent estimated = _blocks.estimatedHeight();
    EqualRooms rooms(containers.front(), _room);
    for (;; from = _blocks.next(from)) {
        if (_blocks.at(from).keepsLines)
            _blocks.change(from, [](Block& block) { block.isLaid = true; });
        else if (!_blocks.at(from).isLaid)
            layOut(from, rooms);
        // Pieces change their ends: the unit decides where to stop.
        if (_blocks.isLast(from) || endOf(from) > unit) break;
    }
    // Views show what stands below at places that are no longer right.
    if (_blocks.estimatedHeight() != estimated) tools.layoutManager->tellTextViews({}, 0, {});
}

bool LayoutState::ensure(NSUInteger unit) {
    if (containers.empty() || !tools.storage) return false;
    blocks();
    if (isFree()) {
        const BlockPlace place = _blocks.placeOfUnit(unit);
        if (!_blocks.at(place).isLaid) layOutFree(place);
        return true;
    }
    while (canAdvance() && firstUnlaid() <= unit) advance();
    return _frontier.isDone || firstUnlaid() > unit;
}

void LayoutState::ensure(NSRange range) {
    if (!isFree()) return static_cast<void>(ensure(NSMaxRange(range) - (range.length ? 1 : 0)));
    for (NSUInteger unit = range.location; ensure(unit);) {
        const BlockPlace place = _blocks.placeOfUnit(unit);
        unit = endOf(place);
        if (_blocks.isLast(place) || unit >= NSMaxRange(range)) return;
    }
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
        return canAdvance();
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
        while (canAdvance() && (_frontier.container < container ||
                                (_frontier.container == container && _frontier.y <= height)))
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

}  // namespace pelvor
