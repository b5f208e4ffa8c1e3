// SPDX-License-Identifier: Apache-2.0
// Placing lines in containers, from the front of the text.
#include <algorithm>

#include "Runtime/Message.h"
#include "Text/Layout/LayoutState.h"
#include "Text/NSLayoutManager.h"

namespace pelvor {

void LayoutState::tellDelegate(NSTextContainer* container, bool isEnd) {
    const SEL told = "layoutManager:didCompleteLayoutForTextContainer:atEnd:"_sel;
    const auto listener = delegate.object();
    if (listener && listener->respondsToSelector(told))
        send(listener, told, tools.layoutManager, container, isEnd);
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
    ContainerRooms rooms(containers, _frontier.container, _frontier.y);
    layOut(place, rooms);
    Block& laid = _blocks.at(place);
    laid.startContainer = static_cast<std::uint32_t>(_frontier.container);
    laid.startY = _frontier.y;
}

// Whether text is left to be placed, and either a container for it or a delegate to ask for one.
bool LayoutState::canAdvance() const {
    return !containers.empty() && !_frontier.isDone && !(_frontier.isExhausted && _frontier.isTold);
}

// Places one more block, or what of it was left. The delegate hears when that is done, since it may change
// text and containers, and may throw.
void LayoutState::advance() {
    if (!_frontier.isExhausted) {
        const BlockPlace place = _frontier.block;
        layOutNext(place);
        placeLines(_blocks.at(place));
        if (!_frontier.isExhausted && _blocks.isLast(place)) {
            _frontier.isDone = true;
        } else if (!_frontier.isExhausted) {
            _frontier.block = _blocks.next(place);
            _frontier.line = 0;
        }
    }
    tellOfContainers();
}

// Tells the delegate which containers are complete and, where none is left, asks for more.
void LayoutState::tellOfContainers() {
    const bool isEnd = _frontier.isDone;  // the delegate may lay out the rest itself, and change text
    while (_toldContainers < _frontier.container) tellDelegate(containers[_toldContainers++], false);
    if (isEnd && _frontier.isDone) {
        _toldContainers = _frontier.container + 1;
        return tellDelegate(containers[_frontier.container], true);
    }
    if (!_frontier.isExhausted || std::exchange(_frontier.isTold, true)) return;
    try {
        if (_toldContainers == _frontier.container) tellDelegate(containers[_toldContainers++], false);
        if (_frontier.isExhausted) tellDelegate(nullptr, false);
    } catch (...) {
        _frontier.isTold = false;  // it is asked again
        throw;
    }
}

void LayoutState::placeLines(Block& block) {
    LongExtent top = _blocks.topOf(_frontier.block);
    for (std::size_t i = 0; i < _frontier.line; ++i) top += block.lines[i].advance();
    for (; _frontier.line < block.lines.size(); ++_frontier.line) {
        const Line& line = block.lines[_frontier.line];
        if (!line.followsInLine && !placeLine(line, _frontier.block.unit + line.start, top)) break;
        top += line.advance();
        if (line.endsContainer && !_blocks.isLast(_frontier.block) && !nextContainer()) {
            ++_frontier.line;
            break;
        }
    }
    NSUInteger end = endOf(_frontier.block);
    if (_frontier.isExhausted && _frontier.line < block.lines.size()) {
        end = _frontier.block.unit + block.lines[_frontier.line].start;
    } else if (_frontier.isExhausted && !_blocks.isLast(_frontier.block)) {
        _frontier.block = _blocks.next(_frontier.block);
        _frontier.line = 0;
    }
    if (!_fillings.empty()) _fillings.back().end = end;
}

// Places the line, whose upper edge is `top`, in this container or the next; false if there is none.
bool LayoutState::placeLine(const Line& line, NSUInteger unit, LongExtent top) {
    const bool isFirst = _fillings.size() <= _frontier.container;
    if (!isFirst && overflows(line)) {
        if (!nextContainer()) return false;
    } else if (!isFirst) {
        _frontier.y += line.advance();
        return true;
    }
    beginContainer(unit, top + line.spacingAbove);
    _frontier.y = line.skip + line.height - line.spacingAbove;
    return true;
}

// Whether the line has no room below those before it. Lines whose rooms depend on their place know where
// containers begin.
bool LayoutState::overflows(const Line& line) const {
    if (!_isUniform) return line.startsContainer;
    const LongExtent bottom = _frontier.y + line.skip + line.height - line.spacingBelow;
    return bottom > extentOf(static_cast<double>(containers[_frontier.container]->containerSize().height));
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

}  // namespace pelvor
