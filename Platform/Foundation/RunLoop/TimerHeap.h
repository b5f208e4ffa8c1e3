// SPDX-License-Identifier: Apache-2.0
// The timers of one mode of a run loop, the next to fire on top; for Foundation's own sources.
#pragma once

#include <cstdint>
#include <vector>

#include "Foundation/NSTimer.h"

namespace pelvor {

/// A heap of four branches a node, ordered by moment and, among equal moments, by arrival. It retains its
/// timers.
class TimerHeap {
  public:
    TimerHeap() = default;
    ~TimerHeap();
    TimerHeap(const TimerHeap&) = delete;
    TimerHeap& operator=(const TimerHeap&) = delete;

    bool isEmpty() const { return _nodes.empty(); }
    NSTimeInterval topMoment() const { return _nodes.front().moment; }
    NSTimer* top() const { return _nodes.front().place->timer; }
    /// Returns the number that the next arrival will have; earlier arrivals have lower numbers.
    std::uint64_t nextArrival() const { return _arrivals; }
    std::uint64_t topArrival() const { return _nodes.front().arrival; }
    /// Returns the timers in the order in which they fire.
    std::vector<NSTimer*> timers() const;

    void add(NSTimer* timer, NSTimeInterval moment);
    void remove(TimerPlace* place);
    void move(TimerPlace* place, NSTimeInterval moment);

  private:
    struct Node {
        NSTimeInterval moment;
        std::uint64_t arrival;
        TimerPlace* place;
        bool isBefore(const Node& other) const {
            return moment != other.moment ? moment < other.moment : arrival < other.arrival;
        }
    };
    void put(std::size_t index, const Node& node) {
        _nodes[index] = node;
        node.place->index = index;
    }
    void settle(std::size_t index, const Node& node);
    void siftUp(std::size_t index, const Node& node);
    void siftDown(std::size_t index, const Node& node);

    static constexpr std::size_t kBranches = 4;

    std::vector<Node> _nodes;
    std::uint64_t _arrivals = 0;
};

}  // namespace pelvor
