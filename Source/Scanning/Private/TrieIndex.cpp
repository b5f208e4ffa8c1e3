// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/TrieIndex.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "Shared/Vectors.h"

namespace pelvor {
namespace {

// A record begins with its header: a count above flags. A count that does not fit takes a cell of its own.
// Then comes the address of the element that ends here, if there is one, then the units, then links to
// records.
//   tail    a bucket and its remaining units
//   run     units one after the other, and one link
//   branch  units in ascending order, each with a link
enum : unsigned {
    kHasElement = 1,
    kIsTail = 2,
    kIsRun = 4,
    kIsDouble = 8,  // of tails and runs: each unit has another form behind it
    kCountShift = 4,
};
constexpr std::size_t kLongCount = 0xFFF;
constexpr std::size_t kLongestRun = 4000;
// The count of longer tails, which are not in the cells.
constexpr std::size_t kTooLong = 0xFFFF;

// Stands for "no place in the cells".
constexpr std::size_t kNowhere = ~std::size_t{0};
// Larger nodes belong to scripts without cases, so they are not searched for links to the same child.
constexpr std::size_t kMostWithTwins = 128;

constexpr std::size_t kElementCells = sizeof(OFTrieBucket*) / sizeof(std::uint16_t);
constexpr std::size_t kLinkCells = 2;
// What a search in blocks may read behind a record.
constexpr std::size_t kPadding = 32;
// The place of a node in the middle of a run.
constexpr std::uint32_t kInsideRun = 0xFFFFFFFF;
// To no record.
constexpr std::uint32_t kNoLink = 0xFFFFFFFF;

std::uint32_t linkAt(const std::uint16_t* cells) {
    std::uint32_t link;
    std::memcpy(&link, cells, sizeof link);
    return link;
}

// Where the unit is among `count` in ascending order; `count` if it is not.
std::size_t indexOfUnit(const std::uint16_t* units, std::size_t count, unichar unit) {
    std::size_t first = 0, left = count;
    while (left > 32) {
        std::size_t half = left / 2;
        first = units[first + half] <= unit ? first + half : first;
        left -= half;
    }
    // Without a branch that depends on where it is.
    const Units8 wanted = vectorOf(unit);
    auto equal = [&](std::size_t i) { return loadUnits(units + first + i) == wanted; };
    unsigned places = bitsOf(equal(0), equal(8));
    if (left > 16) places |= bitsOf(equal(16), equal(24)) << 16;
    return places ? std::min(first + static_cast<unsigned>(std::countr_zero(places)), count) : count;
}

bool hasDoubleForms(const unichar* place, const std::uint16_t* forms, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (place[i] != forms[2 * i] && place[i] != forms[2 * i + 1]) return false;
    return true;
}

// Whether `count` units of `left` are the forms.
bool hasForms(const unichar* place, std::size_t left, const std::uint16_t* forms, std::size_t count) {
    if (left >= 8 && count <= 8) {
        auto different = loadUnits(place) != loadUnits(forms);
        return !(bitsOf(different, different) & ((1u << count) - 1));
    }
    return std::equal(forms, forms + count, place);
}

// The child of a node that has one child alone, under one unit or under both its forms, and at which no
// element ends.
OFTrieNode::Child onlyChildOf(OFTrieNode* node) {
    NSUInteger count = node->childCount();
    if (count < 1 || count > 2 || node->characters()[0] == 0) return {};
    if (count == 2 && node->childAtIndex(0) != node->childAtIndex(1)) return {};
    return node->childWithIndex(0);
}

}  // namespace

std::atomic<std::uint64_t> TrieIndex::edits = 0;

// MARK: Reading

bool TrieIndex::findLongest(const unichar* place, const unichar* end, OFCharacterSet* delimiters,
                            Found& found) const {
    const unichar* const start = place;
    const Cell* element = nullptr;
    std::size_t length = 0;
    std::uint32_t link = 0;
    if (_hasFirstLinks && place < end && *place < _firstLinks.size()) {
        link = _firstLinks[*place++];
        if (link == kNoLink) return true;
    }
    while (true) {
        const Cell* units = _cells.data() + link;
        // What is behind the header is needed as soon as it is known.
        __builtin_prefetch(units + 32);
        __builtin_prefetch(units + 64);
        unsigned flags = *units++;
        std::size_t count = flags >> kCountShift;
        if (count == kLongCount) [[unlikely]]
            count = *units++;
        auto left = static_cast<std::size_t>(end - place);
        if (flags & (kIsTail | kIsRun)) {
            if (count > left || count == kTooLong) return false;
            const Cell* own = units;
            if (flags & kIsTail) units += kElementCells;
            bool isDouble = flags & kIsDouble;
            if (isDouble ? !hasDoubleForms(place, units, count) : !hasForms(place, left, units, count)) break;
            place += count;
            link = linkAt(units + (isDouble ? 2 * count : count));
            if (!(flags & kIsTail)) continue;
            element = own;
            length = static_cast<std::size_t>(place - start);
            break;
        }
        // Without a branch: whether an element ends here is hard to foresee.
        bool hasElement = flags & kHasElement;
        element = hasElement ? units : element;
        length = hasElement ? static_cast<std::size_t>(place - start) : length;
        units += hasElement ? kElementCells : 0;
        if (!left) return false;
        std::size_t index = indexOfUnit(units, count, *place);
        if (index == count) break;
        ++place;
        link = linkAt(units + count + kLinkCells * index);
    }
    if (element && delimiters) {
        if (start + length == end) return false;
        unichar next = start[length];
        if (next && !delimiters->characterIsMember(next)) element = nullptr;
    }
    if (element) {
        std::memcpy(&found.bucket, element, sizeof found.bucket);
        found.length = length;
    }
    return true;
}

// MARK: Making

TrieIndex::TrieIndex(OFTrieNode* head) {
    static std::atomic<std::uint32_t> lastNumber = 0;
    do _number = ++lastNumber;
    while (!_number);
    _edits = edits.load(std::memory_order_relaxed);
    _pending.push_back({{head, nullptr}, kNowhere, kNowhere});
    while (!_pending.empty()) {
        Pending next = _pending.back();
        _pending.pop_back();
        place(next);
    }
    _cells.insert(_cells.end(), kPadding, 0);
    _cells.shrink_to_fit();
    findFirstLinks();
    _pending.shrink_to_fit();
}

// Every search begins at the head: where it is a branch, its links are also at hand by unit.
void TrieIndex::findFirstLinks() {
    const Cell* units = _cells.data() + 1;
    std::size_t count = _cells[0] >> kCountShift;
    _hasFirstLinks = !(_cells[0] & (kIsTail | kIsRun)) && count < kLongCount;
    if (!_hasFirstLinks) return;
    _firstLinks.fill(kNoLink);
    for (std::size_t i = 0; i < count && units[i] < _firstLinks.size(); ++i)
        _firstLinks[units[i]] = linkAt(units + count + kLinkCells * i);
}

void TrieIndex::place(const Pending& pending) {
    auto setLink = [&](std::uint32_t link) {
        if (pending.link != kNowhere) std::memcpy(&_cells[pending.link], &link, sizeof link);
    };
    if (pending.twin != kNowhere) return setLink(linkAt(&_cells[pending.twin]));
    OFTrieNode* node = pending.child.node;
    bool isPlaced = node && node->_indexNumber == _number && node->_indexPlace != kInsideRun;
    if (isPlaced) return setLink(node->_indexPlace);
    auto here = static_cast<std::uint32_t>(_cells.size());
    setLink(here);
    if (!node) return addTail(pending.child.bucket);
    node->_indexNumber = _number;
    node->_indexPlace = here;
    // The empty element, which ends at the head, is never read.
    OFTrieBucket* element = here ? node->endMarker() : nullptr;
    if (onlyChildOf(node))
        addRun(node);
    else
        addBranch(node, element);
}

void TrieIndex::addHeader(unsigned flags, std::size_t count, OFTrieBucket* element) {
    if (element) flags |= kHasElement;
    _cells.push_back(static_cast<Cell>(flags | std::min(count, kLongCount) << kCountShift));
    if (count >= kLongCount) _cells.push_back(static_cast<Cell>(count));
    if (!element) return;
    element->_isIndexed = true;
    _cells.resize(_cells.size() + kElementCells);
    std::memcpy(_cells.data() + _cells.size() - kElementCells, &element, sizeof element);
}

void TrieIndex::addUnits(const unichar* lower, const unichar* upper, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        _cells.push_back(lower[i]);
        if (upper != lower) _cells.push_back(upper[i]);
    }
}

void TrieIndex::addTail(OFTrieBucket* bucket) {
    const unichar *lower = bucket->lowerCharacters(), *upper = bucket->upperCharacters();
    std::size_t count = std::char_traits<unichar>::length(lower);
    if (count > kLongestRun) return addHeader(kIsTail, kTooLong, bucket);
    addHeader(kIsTail | (upper != lower ? kIsDouble : 0u), count, bucket);
    addUnits(lower, upper, count);
}

// Follows nodes as long as they have one child each; the nodes in the middle have no record of their own.
void TrieIndex::addRun(OFTrieNode* node) {
    std::u16string lower, upper;
    OFTrieNode::Child child;
    while (true) {
        ++_nodeCount;
        child = onlyChildOf(node);
        upper += node->characters()[0];
        lower += node->characters()[node->childCount() - 1];
        node = child.node;
        if (!node || node->_indexNumber == _number || !onlyChildOf(node) || lower.size() == kLongestRun)
            break;
        node->_indexNumber = _number;
        node->_indexPlace = kInsideRun;
    }
    bool isDouble = lower != upper;
    addHeader(kIsRun | (isDouble ? kIsDouble : 0u), lower.size(), nullptr);
    addUnits(lower.data(), isDouble ? upper.data() : lower.data(), lower.size());
    _pending.push_back({child, _cells.size(), kNowhere});
    _cells.resize(_cells.size() + kLinkCells);
}

void TrieIndex::addBranch(OFTrieNode* node, OFTrieBucket* element) {
    ++_nodeCount;
    std::vector<NSUInteger> branches;
    for (NSUInteger i = 0; i < node->childCount(); ++i)
        if (node->characters()[i] && node->childWithIndex(i)) branches.push_back(i);
    addHeader(0, branches.size(), element);
    for (NSUInteger i : branches) _cells.push_back(node->characters()[i]);
    std::size_t links = _cells.size();
    _cells.resize(links + kLinkCells * branches.size());
    // The record that is pushed last is placed first: tails directly behind the node, and then the nodes in
    // their order.
    for (bool isTail : {false, true})
        for (std::size_t i = branches.size(); i-- > 0;) {
            Pending next{node->childWithIndex(branches[i]), links + kLinkCells * i, kNowhere};
            if (isTail != (next.child.bucket != nullptr)) continue;
            // Both forms of a unit lead to one child: its other link is before this one.
            for (std::size_t k = 0; k < i && branches.size() <= kMostWithTwins && next.twin == kNowhere; ++k)
                if (node->childAtIndex(branches[k]) == node->childAtIndex(branches[i]))
                    next.twin = links + kLinkCells * k;
            _pending.push_back(next);
        }
}

}  // namespace pelvor
