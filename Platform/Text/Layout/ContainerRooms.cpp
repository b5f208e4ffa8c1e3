// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/ContainerRooms.h"

#include <algorithm>

namespace pelvor {

LineRoom roomOf(NSTextContainer* container) {
    return {0, extentOf(static_cast<double>(container->containerSize().width)),
            extentOf(static_cast<double>(container->lineFragmentPadding()))};
}

std::span<const LineRoom> ContainerRooms::rooms(Extent height, Extent& skip) {
    _rooms.clear();
    NSTextContainer* container = this->container();
    const LineRoom whole = roomOf(container);
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
        if (behind.origin.x <= rest.origin.x) break;  // a shape that gives no end
        rest = behind;
        movement = NSLineDoesntMove;
    }
    if (_rooms.empty()) {  // below all that is free; `take` moves on
        _rooms.push_back(whole);
        skip = std::max(skip, static_cast<Extent>(bottom()));
    }
    return _rooms;
}

bool ContainerRooms::descend() {
    constexpr int kMostDescents = 1000;
    if (_now.isBeyond || ++_descents > kMostDescents) return false;
    const LongExtent y = _now.y + _descent;
    LongExtent below = 0;
    for (const NSRect& exclusion : container()->exclusions())
        if (const Extent end = extentOf(static_cast<double>(NSMaxY(exclusion))); end > y)
            below = below ? std::min<LongExtent>(below, end) : end;
    if (!below) below = y + 4 * kExtentsPerPoint;
    if (below >= bottom()) return false;
    _descent = static_cast<Extent>(below - _now.y);
    return true;
}

bool ContainerRooms::take(const Line& line) {
    const bool isAtTop = _now.isAtTop;
    const Extent above = isAtTop ? line.spacingAbove : 0;
    const LongExtent end = _now.y + line.skip + line.height - line.spacingBelow - above;
    _descent = 0;
    _descents = 0;
    if (!_now.isBeyond && !(isAtTop && line.skip == 0) && end > bottom()) {
        moveOn();
        return false;
    }
    _startsContainer = _now.isFresh;
    _now.isFresh = _now.isAtTop = false;
    _now.y += line.skip + line.height - above;
    if (line.endsContainer && !_now.isBeyond) moveOn();
    return true;
}

void ContainerRooms::moveOn() {
    _now.isBeyond = _now.container + 1 >= _containers.size();
    ++_now.container;
    _now.y = 0;
    _now.isFresh = _now.isAtTop = true;
}

}  // namespace pelvor
