// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Foundation/NSTimer.h"
#include "Foundation/RunLoop/TimerHeap.h"

namespace pelvor {

TimerHeap::~TimerHeap() {
    while (!_nodes.empty()) remove(_nodes.back().place);
}

std::vector<NSTimer*> TimerHeap::timers() const {
    std::vector<Node> nodes = _nodes;
    std::sort(nodes.begin(), nodes.end(), [](const Node& a, const Node& b) { return a.isBefore(b); });
    std::vector<NSTimer*> timers;
    for (const Node& node : nodes) timers.push_back(node.place->timer);
    return timers;
}

void TimerHeap::add(NSTimer* timer, NSTimeInterval moment) {
    timer->retain();
    TimerPlace* place = timer->_firstPlace.heap ? new TimerPlace : &timer->_firstPlace;
    *place = {timer, this, 0, timer->_places};
    timer->_places = place;
    _nodes.emplace_back();
    siftUp(_nodes.size() - 1, {moment, _arrivals++, timer->_places});
}

// The release comes last, since it may end the timer.
void TimerHeap::remove(TimerPlace* place) {
    Node last = _nodes.back();
    _nodes.pop_back();
    if (last.place != place) settle(place->index, last);
    NSTimer* timer = place->timer;
    TimerPlace** link = &timer->_places;
    while (*link != place) link = &(*link)->next;
    *link = place->next;
    if (place == &timer->_firstPlace)
        place->heap = nullptr;
    else
        delete place;
    timer->release();
}

void TimerHeap::move(TimerPlace* place, NSTimeInterval moment) {
    settle(place->index, {moment, _arrivals++, place});
}

void TimerHeap::settle(std::size_t index, const Node& node) {
    if (index > 0 && node.isBefore(_nodes[(index - 1) / kBranches]))
        siftUp(index, node);
    else
        siftDown(index, node);
}

void TimerHeap::siftUp(std::size_t index, const Node& node) {
    while (index > 0) {
        std::size_t parent = (index - 1) / kBranches;
        if (!node.isBefore(_nodes[parent])) break;
        put(index, _nodes[parent]);
        index = parent;
    }
    put(index, node);
}

void TimerHeap::siftDown(std::size_t index, const Node& node) {
    for (std::size_t first; (first = index * kBranches + 1) < _nodes.size();) {
        std::size_t least = first;
        for (std::size_t i = first + 1; i < std::min(first + kBranches, _nodes.size()); ++i)
            if (_nodes[i].isBefore(_nodes[least])) least = i;
        if (!_nodes[least].isBefore(node)) break;
        put(index, _nodes[least]);
        index = least;
    }
    put(index, node);
}

}  // namespace pelvor
