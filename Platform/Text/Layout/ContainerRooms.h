// SPDX-License-Identifier: Apache-2.0
// The rooms of lines that depend on where the lines stand.
#pragma once

#include <span>
#include <vector>

#include "Text/Layout/Typesetter.h"
#include "Text/NSTextContainer.h"

namespace pelvor {

/// The room of a line in the container where no exclusion narrows it.
LineRoom roomOf(NSTextContainer* container);

/// Rooms from a height in one of the containers on, around exclusions, and on into the containers behind it.
/// What finds no container goes on below the end of the last one.
class ContainerRooms final : public LineRooms {
  public:
    using Containers = std::vector<Retained<NSTextContainer>>;

    ContainerRooms(const Containers& containers, std::size_t container, LongExtent y)
        : _containers(containers), _first{container, y, false, y == 0}, _now(_first) {}

    std::span<const LineRoom> rooms(Extent height, Extent& skip) override;
    bool descend() override;
    bool take(const Line& line) override;
    bool startsContainer() override { return _startsContainer; }
    void restart() override { _now = _first; }
    NSTextContainer* container() override {
        return _containers[std::min(_now.container, _containers.size() - 1)];
    }

  private:
    struct Place {
        std::size_t container;
        LongExtent y;
        bool isFresh;  // no line is in the container yet, and it is not the one that the lines began in
        bool isAtTop;
        bool isBeyond = false;  // there is no further container
    };

    LongExtent bottom() { return extentOf(static_cast<double>(container()->containerSize().height)); }
    void moveOn();

    const Containers& _containers;
    Place _first, _now;
    Extent _descent = 0;  // below `_now.y`, where the line at work is tried
    int _descents = 0;
    bool _startsContainer = false;
    std::vector<LineRoom> _rooms;
};

}  // namespace pelvor
