// SPDX-License-Identifier: Apache-2.0
#include "Foundation/AttributedStrings/RunTree.h"

#include <cstring>
#include <new>

namespace pelvor {

// MARK: Leaves

RunLeaf* RunLeaf::create(unsigned room) {
    constexpr std::size_t kRun = sizeof(NSAttributeDictionary*) + sizeof(std::uint32_t);
    return ::new (::operator new(sizeof(RunLeaf) + room * kRun)) RunLeaf(room);
}

void RunLeaf::destroy(RunLeaf* leaf) noexcept {
    for (unsigned i = 0; i < leaf->count; ++i) leaf->attributes()[i]->release();
    leaf->~RunLeaf();
    ::operator delete(leaf);
}

unsigned RunLeaf::runAt(NSUInteger place) {
    const std::uint32_t* first = starts();
    for (unsigned left = count; left > 1;) {
        unsigned half = left / 2;
        first += first[half] <= place ? half : 0;
        left -= half;
    }
    return static_cast<unsigned>(first - starts());
}

void RunLeaf::append(NSUInteger runLength, NSAttributeDictionary* dictionary) {
    if (count > 0 && attributes()[count - 1] == dictionary) {
        dictionary->release();  // the run before has it too
    } else {
        starts()[count] = length;
        attributes()[count++] = dictionary;
    }
    length += runLength;
}

void RunLeaf::appendFrom(RunLeaf* other, unsigned first, unsigned end) {
    for (unsigned i = first; i < end; ++i)
        append(other->endOf(i) - other->starts()[i], other->attributes()[i]);
}

RunLeaf* RunLeaf::clone() {
    RunLeaf* leaf = create(room);
    for (unsigned i = 0; i < count; ++i) attributes()[i]->retain();
    leaf->appendFrom(this, 0, count);
    return leaf;
}

RunLeaf* RunLeaf::split(NSUInteger place) {
    RunLeaf* rest = create(kMost);
    unsigned cut = runAt(place);
    NSUInteger end = endOf(cut);
    bool isCut = starts()[cut] < place;
    if (isCut) {
        attributes()[cut]->retain();
        rest->append(end - place, attributes()[cut]);
    }
    rest->appendFrom(this, cut + isCut, count);
    count = static_cast<std::uint16_t>(cut + isCut);
    length = place;
    return rest;
}

void RunLeaf::join(NodeRef<RunLeaf>& first, NodeRef<RunLeaf>& second) {
    unsigned counts[] = {first->count, second->count}, all = counts[0] + counts[1];
    bool isOne = all <= kMost / 4 * 3, isThin = first.isThin() || second.isThin();
    bool meets = first.leaf()->attributes()[counts[0] - 1] == second.leaf()->attributes()[0];
    if (!isOne && !isThin && !meets) return;
    first.makeOwn();
    second.makeOwn();
    // The run at the seam goes to the front whole, since the two may have the same attributes.
    unsigned front = isOne ? all : !isThin ? counts[0] + 1 : first.isThin() ? kShare : all - kShare;
    NodeRef<RunLeaf> leaves[] = {NodeRef<RunLeaf>(create(kMost)), NodeRef<RunLeaf>(create(kMost))};
    unsigned done = 0;
    for (auto* from : {&first, &second}) {
        unsigned count = from->get()->count, inFront = std::min(count, front - std::min(front, done));
        leaves[0].leaf()->appendFrom(from->leaf(), 0, inFront);
        leaves[1].leaf()->appendFrom(from->leaf(), inFront, count);
        from->get()->count = 0;
        done += count;
    }
    first = std::move(leaves[0]);
    second = leaves[1]->count > 0 ? std::move(leaves[1]) : NodeRef<RunLeaf>();
}

// MARK: The runs

namespace {

using Leaves = std::vector<NodeRef<RunLeaf>>;
using DroppedAttributes = std::vector<Retained<NSAttributeDictionary>>;

Leaves leavesOf(std::span<AttributeStretch> stretches) {
    Leaves leaves;
    for (AttributeStretch& stretch : stretches) {
        if (stretch.length == 0) continue;
        bool isFull = leaves.empty() || leaves.back()->count == RunLeaf::kUsual;
        if (isFull && !leaves.empty()) {
            RunLeaf* last = leaves.back().leaf();
            isFull = last->attributes()[last->count - 1] != stretch.attributes;
        }
        if (isFull) {
            std::size_t left = stretches.size() - static_cast<std::size_t>(&stretch - stretches.data());
            leaves.emplace_back(
                RunLeaf::create(left < RunLeaf::kUsual ? static_cast<unsigned>(left) : RunLeaf::kMost));
        }
        leaves.back().leaf()->append(stretch.length, stretch.attributes.leak());
    }
    return leaves;
}

// What some runs of a leaf become, joined where neighbours have the same attributes.
struct Patch {
    void add(NSUInteger runLength, NSAttributeDictionary* dictionary) {
        if (runLength == 0) return;
        if (count == 0 || attributes[count - 1] != dictionary) {
            starts[count] = length;
            attributes[count++] = dictionary;
        }
        length += runLength;
    }

    unsigned count = 0;
    NSUInteger length = 0;
    NSAttributeDictionary* attributes[RunLeaf::kMost + 2];
    std::uint32_t starts[RunLeaf::kMost + 2];
};

void makeRoom(NodeRef<RunLeaf>& node, unsigned count) {
    if (count <= node.leaf()->room) return;
    NodeRef<RunLeaf> larger(
        RunLeaf::create(std::min(RunLeaf::kMost, std::max(count, 4 * node.leaf()->room))));
    larger.leaf()->appendFrom(node.leaf(), 0, node->count);
    node->count = 0;
    node = std::move(larger);
}

// Puts the patch in place of the runs from `first` to `last`.
void apply(const Patch& patch, NodeRef<RunLeaf>& node, unsigned first, unsigned last,
           DroppedAttributes& dropped) {
    unsigned count = node->count, removed = last - first + 1, tail = count - last - 1;
    makeRoom(node, count - removed + patch.count);
    RunLeaf* leaf = node.leaf();
    NSUInteger start = leaf->starts()[first], change = patch.length - (leaf->endOf(last) - start);
    for (unsigned i = 0; i < patch.count; ++i) patch.attributes[i]->retain();
    for (unsigned i = first; i <= last; ++i)
        dropped.push_back(Retained<NSAttributeDictionary>::adopting(leaf->attributes()[i]));
    NSAttributeDictionary** attributes = leaf->attributes() + first;
    std::uint32_t* starts = leaf->starts() + first;
    std::memmove(attributes + patch.count, attributes + removed, tail * sizeof *attributes);
    std::memmove(starts + patch.count, starts + removed, tail * sizeof *starts);
    std::copy_n(patch.attributes, patch.count, attributes);
    for (unsigned i = 0; i < patch.count; ++i) starts[i] = start + patch.starts[i];
    for (unsigned i = 0; i < tail; ++i) starts[patch.count + i] += change;
    leaf->count = static_cast<std::uint16_t>(count - removed + patch.count);
    leaf->length += change;
}

// Which sides of a leaf have neighbours.
struct Neighbours {
    bool areBefore, areBehind;
};

// Returns false where neighbouring leaves have to take part.
bool replaceInLeaf(NodeRef<RunLeaf>& node, NSRange range, std::span<AttributeStretch> stretches,
                   Neighbours neighbours, DroppedAttributes& dropped) {
    RunLeaf* leaf = node.leaf();
    NSUInteger end = NSMaxRange(range);
    if (end > leaf->length || stretches.size() > RunLeaf::kMost) return false;
    if ((range.location == 0 && neighbours.areBefore) || (end == leaf->length && neighbours.areBehind))
        return false;
    // The runs that touch the range change with it, since they may be joined.
    unsigned first = leaf->runAt(range.location), last = leaf->runAt(end);
    if (first > 0 && leaf->starts()[first] == range.location) --first;
    Patch patch;
    patch.add(range.location - leaf->starts()[first], leaf->attributes()[first]);
    for (AttributeStretch& stretch : stretches) patch.add(stretch.length, stretch.attributes);
    patch.add(leaf->endOf(last) - end, leaf->attributes()[last]);
    unsigned count = leaf->count - (last - first + 1) + patch.count;
    if (count > RunLeaf::kMost || count == 0) return false;
    bool isOnly = !neighbours.areBefore && !neighbours.areBehind;
    if (!isOnly && count < RunLeaf::kThin && count < leaf->count) return false;
    apply(patch, node, first, last, dropped);
    return true;
}

}  // namespace

RunTree::RunTree(std::span<AttributeStretch> stretches) : _tree(leavesOf(stretches)) {}

PlacedRun RunTree::runAt(NSUInteger place) const {
    static constinit thread_local unsigned next = 0;  // a guess: the run behind that of the last look-up
    auto [leaf, start] = _tree.find(place);
    place -= start;
    unsigned run = next;
    if (run >= leaf->count || leaf->starts()[run] > place || leaf->endOf(run) <= place)
        run = leaf->runAt(place);
    next = run + 1;
    NSUInteger first = leaf->starts()[run];
    return {{start + first, leaf->endOf(run) - first}, leaf->attributes()[run]};
}

void RunTree::stretch(NSUInteger place, NSUInteger added) {
    _tree.editLeaf(place, [added](NodeRef<RunLeaf>& node, NSUInteger inLeaf) {
        RunLeaf* leaf = node.leaf();
        std::uint32_t* starts = leaf->starts();
        for (unsigned i = leaf->runAt(inLeaf) + 1; i < leaf->count; ++i) starts[i] += added;
        leaf->length += added;
        return true;
    });
}

void RunTree::replace(NSRange range, std::span<AttributeStretch> stretches) {
    DroppedAttributes dropped;  // released when the tree is whole again
    NSUInteger length = this->length();
    bool isDone = _tree.editLeaf(range.location, [&](NodeRef<RunLeaf>& node, NSUInteger place) {
        NSUInteger start = range.location - place;
        Neighbours neighbours{start > 0, start + node->length < length};
        return replaceInLeaf(node, {place, range.length}, stretches, neighbours, dropped);
    });
    if (!isDone) _tree.replace(range, Tree(leavesOf(stretches)));
}

void RunTree::replace(NSRange range, const RunTree& with) {
    RunLeaf* leaf = with._tree.onlyLeaf();
    if (!leaf) return _tree.replace(range, with._tree);
    AttributeStretches stretches;
    stretches.reserve(leaf->count);
    for (unsigned i = 0; i < leaf->count; ++i)
        stretches.push_back({leaf->endOf(i) - leaf->starts()[i],
                             Retained<NSAttributeDictionary>::retaining(leaf->attributes()[i])});
    replace(range, stretches);
}

}  // namespace pelvor
